// `led`.
#include "cli/Functions/simple/simple_led.h"

#include <array>
#include <bit>

#include "api/src/interface/wire/board.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_led_help[] = R"(
led -o <ep|rc> -i <ep id | rc id> -a <on|off|sb|qb >  [-h]

Options:
    -o,  --object, end point or root complex
         ep, end point
         rc, root complex
    -i,  --id
    -a,  --action, off, on(ep only), sb(slow blink) and qb(quick blink)
    -h,  --help
Examples:
    led -o ep -i 0 -a on
    Setting end point 0 as status on.

    led -o ep -i 0 -a off
    Setting end point 0 as status off.

    led -o rc -i 1 -a sb
    Setting root complex 1 as status slow blink.

    led -o ep -i 0 -a qb
    Setting end point 0 as status quick blink.

Notice: This command is using for LED control testing.

)";

namespace {

using qrx::complain;
using qrx::take;

// The digits and their long names are retired: they show the help.
constexpr char kLetters[] = "o:i:a:0:1:2:3:\x01:h";
constexpr option kLong[] = {
    {"object", required_argument, nullptr, 'o'},
    {"id", required_argument, nullptr, 'i'},
    {"action", required_argument, nullptr, 'a'},
    {"smaddr21", required_argument, nullptr, '0'},
    {"smaddr22", required_argument, nullptr, '1'},
    {"smaddr23", required_argument, nullptr, '2'},
    {"smaddr24", required_argument, nullptr, '3'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr qrx::Keyword kObjects[] = {{"ep", kGroupAdapter}, {"rc", kGroupPd}};
constexpr qrx::Keyword kStates[] = {{"off", 0}, {"on", 1}, {"sb", 2}, {"qb", 3}};
constexpr QRX_U8 kSubLed = 0x07;

struct Wish {
    QRX_U8 group = kGroupAdapter;
    QRX_U16 id = 0;
    QRX_U8 state = 0;
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'o':
        return take(qrx::keyword(word, kObjects), wish.group) || complain("-m : invalid object '%s'.\n", word);
    case 'i':
        return take(qrx::narrowId(qrx::readId(word)), wish.id) || complain("-i : invalid id '%s'\n", word);
    default:
        return take(qrx::keyword(word, kStates), wish.state) || complain("-a : invalid action '%s'.\n", word);
    }
}

}  // namespace

QRX_U8 getLEDTargetID(int id)
{
    constexpr std::array<QRX_U8, 4> kTargets{0, 2, 1, 3};
    constexpr QRX_U8 kNone = 255;
    return id >= 0 && id < static_cast<int>(kTargets.size()) ? kTargets[static_cast<std::size_t>(id)] : kNone;
}

int doSLed(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "oia", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("oia")) {
        return qrx::duplicateOption();
    }
    if (const auto result = qrx::requireOptions(scan, pCmdInfo, "oia")) {
        return *result;
    }
    const NVME_AP_LED record{.id = wish.id, .status = wish.state, .reserved = {}};
    const auto words = std::bit_cast<std::array<QRX_U32, 2>>(record);
    const auto command = qrx::vendorCommand(wish.group, kSubLed).word(14, words[0]);
    return qrx::carryOut(command, "LED control failed.\n", "LED control success\n");
}
