// `debuglv`.

#include "cli/Functions/simple/simple_config.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/one_option.h"

const char simple_debuglv_help[] = R"(
debuglv <-t 0|1 > [-h]

Options:
    -t,  --target set debug level.
           0, set debug level to normal
           1, set debug level to error only
    -h,  --help
Examples:
    debuglv -t 0
    Set debug level to normal

    debuglv -t 1
    Set debug level to error only

)";

namespace {

constexpr char kLetters[] = "t:\x01:h";
constexpr option kLong[] = {
    {"target", required_argument, nullptr, 't'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Level { kNormal, kErrorOnly };
constexpr qrx::Keyword kLevels[] = {{"0", kNormal}, {"1", kErrorOnly}};
constexpr QRX_U8 kSubDebugLevel = 0x12;

}  // namespace

int doSDEBUGLV(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    QRX_U16 level = kNormal;
    if (const auto result = qrx::readOneOption(scan, pCmdInfo, 't', [&] {
            return qrx::take(qrx::keyword(scan.word(), kLevels), level) ||
                   qrx::complain("-t : invalid target '%s'.\n", scan.word());
        })) {
        return *result;
    }
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubDebugLevel, level);
    return level == kNormal ? qrx::carryOut(command, "debug level access to normal failed.\n",
                                            "debug level access to normal success.\n")
                            : qrx::carryOut(command, "debug level access to error only failed.\n",
                                            "debug level access to error only success.\n");
}
