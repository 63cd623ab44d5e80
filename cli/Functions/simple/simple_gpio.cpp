// `gpio`.
#include "cli/Functions/simple/simple_gpio.h"

#include <array>
#include <cstdio>

#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_gpio_help[] = R"(
gpio --func-switch=<func-switch bitmap> --level=<level bitmap> --value=<value bitmap> --set-default=<yes|no> [-h]

Options:
    --func-switch, bitmaps for switch to GPIO or other function.
      0: Other function
      0x30: GPIO4, 5
      0xC0: GPIO6, 7
      0xF0: GPIO4, 5, 6, 7
      Only support above setting.
    --level, bitmaps for default the voltage level base on customer's schematic design.
      0: low
      1: high
    --value, bitmaps for the GPIO default value.(Default: 0x30, it means GPIO4, 5)
    --set-default, whether want to use the setting from HBA info.
      0: no
      1: yes
    -h, --help
Examples:
    gpio --set-default=no
    use firmware default setting

    gpio --set-default=yes
    use Customer defined setting that stored in HBA info

    gpio --func-switch 0x30
    use GPIO function in GPIO4, 5(bitmap: bit4, 5)

    gpio --func-switch 0x00
    use other function in GPIO4, 5(bitmap: bit4, 5)

    gpio --func-switch 0x30 --level=0x10 --value=0x10 --set-default=yes
    set value '1' to GPIO4, 5 and GPIO4 pin level is high.

    gpio --func-switch 0x30 --level=0x10 --value=0x00 --set-default=yes
    set value '0' to GPIO4, 5 and GPIO4 pin level is high.

    gpio --func-switch 0x30 --level=0x00 --value=0x10 --set-default=yes
    set value '1' to GPIO4, 5 and GPIO4 pin level is low.

    gpio --func-switch 0x30 --level=0x00 --value=0x00 --set-default=yes
    set value '0' to GPIO4, 5 and GPIO4 pin level is low.

    gpio --func-switch 0x30 --level=0x30 --value=0x30 --set-default=yes
    set value '1' to GPIO4, 5 and GPIO4, 5 pin level is high.

    gpio --func-switch 0x30 --level=0x30 --value=0x00 --set-default=yes
    set value '0' to GPIO4, 5 and GPIO4, 5 pin level is high.

    gpio --func-switch 0x30 --level=0x00 --value=0x30 --set-default=yes
    set value '1' to GPIO4, 5 and GPIO4, 5 pin level is low.

    gpio --func-switch 0x30 --level=0x00 --value=0x00 --set-default=yes
    set value '0' to GPIO4, 5 and GPIO4, 5 pin level is low.


)";

namespace {

constexpr char kLetters[] = "0:1:2:3:\x01:h";
constexpr option kLong[] = {
    {"func-switch", required_argument, nullptr, '0'},
    {"level", required_argument, nullptr, '1'},
    {"value", required_argument, nullptr, '2'},
    {"set-default", required_argument, nullptr, '3'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr qrx::Keyword kAnswers[] = {{"yes", 1}, {"no", 0}};
constexpr QRX_U8 kSubGpio = 0x11;

// The three bitmaps, in which bit n stands for GPIO n.
struct Bitmap {
    char letter;
    unsigned word;  // of the command
    const char* noNumber;
    const char* outOfRange;  // on standard output, with the value
};
constexpr std::array<Bitmap, 3> kBitmaps{{
    {'0', 13, "--func-switch: Function switch range is not correct. \n", "Func-switch value is not correct: 0x%08x\n"},
    {'1', 14, "--level: Level range is not correct. \n", "Level value is not correct: 0x%08x\n"},
    {'2', 15, "--value: Value range is not correct. \n", "Default value is not correct: 0x%08x\n"},
}};
constexpr QRX_U32 kSettable = 0xF0;  // GPIO 4 to 7
constexpr QRX_U32 kDefault = 0x30;

struct Wish {
    std::array<QRX_U32, kBitmaps.size()> bitmaps{};
    QRX_U16 setDefault = 0;
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    for (std::size_t i = 0; i < kBitmaps.size(); ++i) {
        if (letter == kBitmaps[i].letter) {
            return qrx::take(qrx::readHexOrNumber(word), wish.bitmaps[i]) || qrx::complain("%s", kBitmaps[i].noNumber);
        }
    }
    return qrx::take(qrx::keyword(word, kAnswers), wish.setDefault) ||
           qrx::complain("--set-default: Set default is not correct \n");
}

// False, after a complaint, when a bitmap names a pin that is not among the four.
bool inRange(const Wish& wish)
{
    std::printf("result: %d\n", static_cast<int>(wish.bitmaps[0] & ~kSettable));
    for (std::size_t i = 0; i < kBitmaps.size(); ++i) {
        if ((wish.bitmaps[i] & ~kSettable) != 0) {
            std::printf(kBitmaps[i].outOfRange, wish.bitmaps[i]);
            return false;
        }
    }
    return true;
}

}  // namespace

int doSGPIO(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "0123", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (!inRange(wish)) {
        return 0;
    }
    auto command = qrx::vendorCommand(kGroupAdapter, kSubGpio, wish.setDefault);
    for (std::size_t i = 0; i < kBitmaps.size(); ++i) {
        command.word(kBitmaps[i].word, scan.has(kBitmaps[i].letter) ? wish.bitmaps[i] : kDefault);
    }
    return qrx::carryOut(command, "GPIO setting failed.\n", "GPIO setting success.\n");
}
