// `hidetemp`.
#include "cli/Functions/simple/simple_hide_temperature.h"

#include <string_view>

#include "api/src/interface/wire/security.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/one_option.h"

const char simple_hide_temperature_sh[] = ":For hide temperature";
const char simple_hide_temperature_help[] =
    "\n"
    "hidetemp -t <enable|disable> [-h]\n"
    "\n"
    "Options:\n"
    "    -t, --target <enable|disable>\n"
    "        enable, hide temperature\n"
    "        disable, show temperature\n"
    "    -h, --help\n"
    "Examples:\n"
    "    hidetemp -t enable\n"
    "    Hide temperature\n"
    "\n";

namespace {

constexpr char kLetters[] = "t:\x01:h";
constexpr option kLong[] = {
    {"target", required_argument, nullptr, 't'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr std::string_view kEnable = "enable";
constexpr std::string_view kDisable = "disable";

}  // namespace

int doSHideTemperature(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    const char* target = "";
    if (const auto result = qrx::readOneOption(scan, pCmdInfo, 't', [&] {
            target = scan.word();  // alone among such words, its case counts
            return kEnable == target || kDisable == target || qrx::complain("-t : invalid target '%s'.\n", scan.word());
        })) {
        return *result;
    }
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubHideTemperature, kEnable == target ? 1 : 0);
    command.debug();
    const int status = command.send();
    return qrx::refuse(status, "Set hide temperature to %s %s.\n", target, status == 0 ? "success" : "failed");
}
