// `reset`.
#include "cli/Functions/simple/simple_reset.h"

#include <bit>

#include "api/src/interface/wire/board.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_reset_help[] =
    "\n"
    "reset -i <id> -t <device | perstn | power -a <cycle|on|off> > [-h]\n"
    "\n"
    "Options:\n"
    "    -i,  --id\n"
    "         When type is power, id means power pin id\n"
    "         When type is device or perstn, id means pd id\n"
    "    -t,  --type, device, power and perstn\n"
    "         device, device disable and enable\n"
    "         power, power off and on\n"
    "         perstn, PCIe reset cycle\n"
    "    -a,  --action\n"
    "         power, cycle, on and off only\n"
    "           cycle, for power off and on a cycle(Default)\n"
    "           on, power on\n"
    "           off, power off\n"
    "    -h,  --help\n"
    "Examples:\n"
    "    reset -i 0 -t device\n"
    "    Device PD id 0 as reset cycle \n"
    "\n"
    "    reset -i 0 -t perstn -a on\n"
    "    Device PD id 0 as PCIe cycle reset on\n"
    "\n"
    "    reset -i 0 -t perstn -a off\n"
    "    Device PD id 0 as PCIe cycle reset off\n"
    "\n"
    "    reset -i 0 -t perstn -a cycle\n"
    "    Device PD id 0 as PCIe cycle reset\n"
    "\n"
    "    reset -i 0 -t power -a cycle\n"
    "    Device Power Pin id 0 as a power cycle reset\n"
    "\n"
    "    reset -i 0 -t power -a on\n"
    "    Device Power Pin id 0 as power on\n"
    "\n"
    "    reset -i 0 -t power -a off\n"
    "    Device Power Pin id 0 as power off\n"
    "\n";

const char simple_reset_short_help[] =
    ":For reset back-end device\n"
    "[Notice]\n"
    "  <Default GPIO setting>\n"
    "    Set power: \n"
    "        Power pin id 0 means control GPIO4\n"
    "        Power pin id 1 means control GPIO5\n"
    "    Set perstn\n"
    "        PD id 0 means control GPIO8\n"
    "        PD id 1 means control GPIO10\n"
    "        PD id 2 means control GPIO9\n"
    "        PD id 3 means control GPIO11\n";

namespace {

using qrx::complain;
using qrx::take;

constexpr char kLetters[] = "i:t:a:\x01:h";
constexpr option kLong[] = {
    {"pdid", required_argument, nullptr, 'i'},
    {"type", required_argument, nullptr, 't'},
    {"action", optional_argument, nullptr, 'a'},  // as --action=<value> alone
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Type : QRX_U8 { kDevice, kPower, kPerstn };
constexpr qrx::Keyword kTypes[] = {{"device", kDevice}, {"power", kPower}, {"perstn", kPerstn}};
enum Action : QRX_U8 { kCycle, kOn, kOff };
constexpr qrx::Keyword kActions[] = {{"cycle", kCycle}, {"on", kOn}, {"off", kOff}};

constexpr QRX_U8 kSubReset = 0x08;
constexpr int kPowerPins = 2;
constexpr char kInvalidId[] = "-i : invalid device id '%s'\n";

struct Wish {
    int id = 0;
    const char* idWord = "";
    QRX_U8 type = kDevice;
    QRX_U8 action = kCycle;
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'i':
        wish.idWord = word;
        return take(qrx::readId(word), wish.id) || complain(kInvalidId, word);
    case 't':
        return take(qrx::keyword(word, kTypes), wish.type) || complain("-t : invalid type '%s'.\n", word);
    default:
        return take(qrx::keyword(word, kActions), wish.action) || complain("-a : invalid action '%s'.\n", word);
    }
}

}  // namespace

int doSReset(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "ita", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("ita")) {
        return qrx::duplicateOption();
    }
    if (wish.type != kDevice && !scan.has('a')) {
        return qrx::optionRequired(pCmdInfo, 'a');
    }
    if (wish.type == kDevice && scan.has('a')) {
        return qrx::refuse(0, "Option action is not allow.\n");
    }
    if (wish.type == kPower && wish.id >= kPowerPins) {
        return qrx::refuse(1, "Power Pin ID only support %d or %d\n", qrx::idBase(), qrx::idBase() + 1);
    }
    const auto id = qrx::narrowId(wish.id);
    if (!id) {
        return qrx::refuse(0, kInvalidId, wish.idWord);
    }
    const NVME_AP_Reset word{*id, wish.type, wish.action};
    return qrx::carryOut(qrx::vendorCommand(kGroupPd, kSubReset).word(14, std::bit_cast<QRX_U32>(word)),
                         "Reset failed.\n", "Reset success\n");
}
