// `--debug`.
#include "cli/Functions/builtin/debug.h"

#include <strings.h>

#include "api/src/interface/globals.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/report.h"

namespace {

constexpr option kLong[] = {{"action", required_argument, nullptr, 'a'}, qrx::kOutputRow, qrx::kHelpRow, qrx::kEndRow};

}  // namespace

int doDebug(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, "a:\x01:h", kLong);
    bool enable = true;
    for (;;) {
        switch (scan.next()) {
        case 'a':
            enable = strcasecmp(scan.word(), "disable") != 0;  // any other word enables
            break;
        case qrx::OptionScan::kEnd:
        case qrx::OptionScan::kError:  // a bad option doesn't stop the change
            dbg_enable = enable ? 1 : 0;
            qrx::print("Set debug mode to %s\n", enable ? "enable" : "disable");
            return 0;
        default:
            return qrx::showHelp(pCmdInfo, 0);
        }
    }
}
