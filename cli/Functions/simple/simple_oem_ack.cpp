// `ack`.
#include "cli/Functions/simple/simple_oem_ack.h"

#include "cli/Functions/simple/oem_security.h"
#include "cli/Public/frame/handler.h"

const char simple_ack_sh[] = ":For set security acknowledgement";
const char simple_ack_help[] =
    "\n"
    "ack -t [ <adapter -r <reset> > | <pd  -i <id> -s <slotattr> -f <fwupdate> ] [-h]\n"
    "\n"
    "Options:\n"
    "    -t, --type <adapter|pd>\n"
    "    -i, --pdid <PD id>\n"
    "    -r, --reset <enable|disable>\n"
    "        Acknowledge the reset of the adapter.\n"
    "    -s, --slotattr <enable|disable>\n"
    "        Acknowledge the slot attention of the PD.\n"
    "    -f, --fwupdate <enable|disable>\n"
    "        Acknowledge the firmware update of the PD.\n"
    "    -h, --help\n"
    "Examples:\n"
    "    ack -t adapter -r enable\n"
    "    Acknowledge the reset of the adapter\n"
    "\n"
    "    ack -t pd -i 1 -s enable -f disable\n"
    "    Acknowledge the slot attention of PD 1\n"
    "\n";

namespace {

using qrx::complain;
using qrx::keyword;
using qrx::take;
using qrx::security::kSwitch;

constexpr char kLetters[] = "t:i:r:s:f:\x01:h";
constexpr option kLong[] = {
    {"type", required_argument, nullptr, 't'},
    {"pdid", required_argument, nullptr, 'i'},
    {"reset", required_argument, nullptr, 'r'},
    {"slotatt", required_argument, nullptr, 's'},
    {"fwupdate", required_argument, nullptr, 'f'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

struct Wish {
    qrx::security::Type type = qrx::security::kAdapter;
    QRX_U16 drive = 0;
    QRX_U32 reset = 0;
    QRX_U32 slot = 0;
    QRX_U32 firmware = 0;
};

// Stores the option's argument; false after a complaint. Three complaints name the option -r.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 't':
        return take(keyword(word, qrx::security::kTypes), wish.type) || complain("-t : invalid type '%s'.\n", word);
    case 'i':
        return qrx::security::readDrive(word, wish.drive, "-i : PD id should be a number\n");
    case 'r':
        return take(keyword(word, kSwitch), wish.reset) ||
               complain("-r : invalid control value for '%s' for reset.\n", word);
    case 's':
        return take(keyword(word, kSwitch), wish.slot) ||
               complain("-r : invalid control value '%s' for slot attention.\n", word);
    default:
        return take(keyword(word, kSwitch), wish.firmware) ||
               complain("-r : invalid control value '%s' for firmware update.\n", word);
    }
}

}  // namespace

int doAck(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "tirsf", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("tirsf")) {
        return qrx::duplicateOption();
    }
    const bool pd = wish.type == qrx::security::kPd;
    if (const auto result = qrx::requireOptions(scan, pCmdInfo, pd ? "tisf" : "tr", 1)) {
        return *result;
    }
    const auto command = qrx::security::command(kSecurityPresence)
                             .word(13, pd ? qrx::security::ofDrive(wish.drive) : 0)
                             .word(14, pd ? wish.firmware << 8U | wish.slot : wish.reset);
    return qrx::security::set(command, "set security acknowledgement");
}
