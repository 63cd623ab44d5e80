// `i2c`.
#include "cli/Functions/simple/simple_i2c.h"

#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_i2c_help[] =
    "\n"
    "i2c -i <id> [-h]\n"
    "\n"
    "Options:\n"
    "    -i,  --id\n"
    "         id means i2c channel id\n"
    "              i2c channel 1, IDT 9DBV0441\n"
    "              i2c channel 2, M.2 Bay 1\n"
    "              i2c channel 4, M.2 Bay 2\n"
    "    -h,  --help\n"
    "Examples:\n"
    "    i2c -i 1\n"
    "    Test i2c channel 1 device \n"
    "\n"
    "    i2c -i 2\n"
    "    Test i2c channel 2 device \n"
    "\n"
    "    i2c -i 4\n"
    "    Test i2c channel 4 device \n"
    "\n";

namespace {

constexpr char kLetters[] = "i:t:a:\x01:h";  // of which -t and -a show the help
constexpr option kLong[] = {
    {"id", required_argument, nullptr, 'i'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr QRX_U8 kSubI2cTest = 0x14;

bool isChannel(int id)
{
    return id == 1 || id == 2 || id == 4;
}

}  // namespace

int doSi2c(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    int channel = 0;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "i", 0, [&](int) {
            return (qrx::take(qrx::readNumber(scan.word()), channel) && isChannel(channel)) ||
                   qrx::complain("-i : invalid device id '%s'\n", scan.word());
        })) {
        return *result;
    }
    if (!scan.has('i')) {
        return qrx::optionRequired(pCmdInfo, 'i');
    }
    if (scan.repeated("i")) {
        return qrx::duplicateOption();
    }
    (void)qrx::carryOut(qrx::vendorCommand(kGroupAdapter, kSubI2cTest, static_cast<QRX_U16>(channel)), "Fail\n",
                        "Pass\n");
    return 0;
}
