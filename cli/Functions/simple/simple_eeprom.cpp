// `eeprom`.
#include "cli/Functions/simple/simple_eeprom.h"

#include "api/src/interface/wire/security.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"

const char simple_eeprom_sh[] = ":For switch EEPROM on or off";
const char simple_eeprom_help[] =
    "\n"
    "eeprom -a <on|off|show> [-h]\n"
    "\n"
    "Options:\n"
    "    -a, --action <on|off|show>\n"
    "        on, switch EEPROM on\n"
    "        off, switch EEPROM off\n"
    "        show, show whether EEPROM is on\n"
    "    -h, --help\n"
    "Examples:\n"
    "    eeprom -a on\n"
    "    Switch EEPROM on\n"
    "\n"
    "    eeprom -a show\n"
    "    Show whether EEPROM is on\n"
    "\n";

namespace {

constexpr char kLetters[] = "a:\x01:h";
constexpr option kLong[] = {
    {"action", required_argument, nullptr, 'a'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Action : QRX_U8 { kOff, kOn, kShow };  // the first two are the values to be set
constexpr qrx::Keyword kActions[] = {{"on", kOn}, {"off", kOff}, {"show", kShow}};

const char* nameOf(QRX_U32 value)
{
    return value == kOn ? "on" : value == kOff ? "off" : "unknown";
}

int set(QRX_U32 value)
{
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubSetEeprom).word(14, value);
    command.debug();
    const int status = command.send();
    return status == 0 ? qrx::refuse(0, "Set EEPROM success\n")
                       : qrx::refuse(status, "Set EEPROM %s fail\n", nameOf(value));
}

int show()
{
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubGetEeprom);
    command.debug();
    qrx::Response response;
    int status = command.receive(response.bytes());
    if (status == 0) {
        status = response.checkSign() ? response.status() : 1;
    }
    if (status != 0) {
        return qrx::refuse(status, "Get EEPROM show fail\n");
    }
    const QRX_U32 value = response.record<QRX_U32>().value_or(0);
    return qrx::refuse(0, "Get EEPROM success: %s (0x%x)\n", nameOf(value), value);
}

}  // namespace

int doSEEPROM(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Action action = kOff;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "a", 0, [&](int) {
            return qrx::take(qrx::keyword(scan.word(), kActions), action) ||
                   qrx::complain("-a : invalid action '%s'.\n", scan.word());
        })) {
        return *result;
    }
    if (scan.repeated("a")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('a')) {
        return qrx::refuse(0, "Unknown error(0x%x)\n", 0U);
    }
    return action == kShow ? show() : set(action);
}
