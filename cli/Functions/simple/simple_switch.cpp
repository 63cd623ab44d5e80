// `qxf`, `protect` and `sriov`: one command under three names.
#include "cli/Functions/simple/simple_switch.h"

#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/one_option.h"

const char simple_qxf_help[] = R"(
qxf <-a on|off > [-h]

Options:
    -a,  --action set on/off.
           on, enable manufacture flash tool
           off, disable manufacture flash tool
    -h,  --help
Examples:
    qxf -a on
    Enable manufacture flash tool

    qxf -a off
    Disable manufacture flash tool

)";

const char simple_protect_help[] = R"(
protect <-a on|off > [-h]

Options:
    -a,  --action set on/off.
           on, enable protection
           off, disable protection
    -h,  --help
Examples:
    protect -a on
    Enable protection

    protect -a off
    Disable protection

)";

const char simple_sriov_help[] = R"(
sriov <-a on|off > [-h]

Options:
    -a,  --action set on/off.
           on, enable SRIOV function
           off, disable SRIOV function
    -h,  --help
Examples:
    sriov -a on
    Enable SRIOV function

    sriov -a off
    Disable SRIOV function

)";

namespace {

constexpr char kLetters[] = "a:\x01:h";
constexpr option kLong[] = {
    {"action", required_argument, nullptr, 'a'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};
constexpr qrx::Keyword kActions[] = {{"on", 1}, {"off", 0}};

// What differs between the three.
struct Feature {
    QRX_U8 subOpcode;
    const char* name;
};
constexpr Feature kFlashTool{.subOpcode = 0x0D, .name = "QXF"};
constexpr Feature kProtection{.subOpcode = 0x15, .name = "Protect"};
constexpr Feature kSriov{.subOpcode = 0x0E, .name = "SRIOV"};

int run(const Feature& feature, int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    QRX_U32 on = 0;
    if (const auto result = qrx::readOneOption(scan, pCmdInfo, 'a', [&] {
            return qrx::take(qrx::keyword(scan.word(), kActions), on) ||
                   qrx::complain("-a : invalid action '%s'.\n", scan.word());
        })) {
        return *result;
    }
    const auto command = qrx::vendorCommand(kGroupAdapter, feature.subOpcode).word(14, on);
    command.debug();
    const int status = command.send();
    const char* const verb = on != 0 ? "enable" : "disable";
    return status != 0
               ? qrx::refuse(status, "%s %s failed.\n", feature.name, verb)
               : qrx::refuse(0,
                             "%s %s success. Please shutdown and boot your system to make function work as normal.\n",
                             feature.name, verb);
}

}  // namespace

int doSQXF(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return run(kFlashTool, argc, argv, pCmdInfo);
}

int doSProtect(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return run(kProtection, argc, argv, pCmdInfo);
}

int doSSRIOV(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return run(kSriov, argc, argv, pCmdInfo);
}
