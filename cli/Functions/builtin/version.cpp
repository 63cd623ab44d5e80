// `version`.
#include "cli/Functions/builtin/version.h"

#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/report.h"
#include "cli/Public/messages.h"

const char version_help[] =
    "\n"
    "Options:\n"
    "    -h, --help\n"
    "Examples:\n"
    "    version \n"
    "    CLI Version: 1.0.0.1046\n"
    "    API Version: 1.0.0.1046\n"
    "    Support Firmware Version: 1.0.x.1039 above\n"
    "\n";

namespace {

constexpr option kLong[] = {qrx::kOutputRow, qrx::kHelpRow, qrx::kEndRow};

}  // namespace

int doVersion(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, "i:\x01:h", kLong);
    switch (scan.next()) {
    case qrx::OptionScan::kEnd:
        qrx::print("CLI Version: %s\n", CLI_VERSION);
        qrx::print("Support Firmware Version: 1.0.x.1039 above\n");
        return 0;
    case qrx::OptionScan::kError:
        return 1;
    default:
        return qrx::showHelp(pCmdInfo, 0);
    }
}
