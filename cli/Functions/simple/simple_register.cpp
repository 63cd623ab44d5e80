// `reg`.
#include "cli/Functions/simple/simple_register.h"

#include <array>
#include <cstdio>

#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/register.h"

const char simple_reg_help[] = R"(
reg -i <PCIe ID> -t <[ read | write -d <data> ]> -a <register address> [-h]

Options:
    -i,  --id <PCIe ID>.
         id, specific PCIe ID.
    -t,  --type.
         read, output the PCIe data.
         write, write the PCIe data.
    -d,  --data.
         data, 4 bytes data write to register
    -a,  --address.
         address, location write to register
    -h,  --help

Examples:
    reg -i 0 -t read -a 0xE3200000
    Read 4 bytes register data of register address 0xE3200000 from PCIe on the screen

    reg -i 0 -t write -d 0x0086BC1E -a 0xE3200000
    Write 4 bytes register data 0x0086BC1E to register address 0xE3200000 from PCIe

)";

namespace {

using qrx::complain;
using qrx::take;

constexpr char kLetters[] = "t:i:d:a:\x01:h";
constexpr option kLong[] = {
    {"type", required_argument, nullptr, 't'},
    {"id", required_argument, nullptr, 'i'},
    {"data", required_argument, nullptr, 'd'},
    {"address", required_argument, nullptr, 'a'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Type { kRead, kWrite };
constexpr qrx::Keyword kTypes[] = {{"read", kRead}, {"write", kWrite}};

struct Wish {
    int type = kRead;
    QRX_U8 id = 0;
    QRX_U32 address = 0;
    QRX_U32 data = 0;
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 't':
        return take(qrx::keyword(word, kTypes), wish.type) || complain("-t : invalid type '%s'\n", word);
    case 'i':
        return take(qrx::readWideHexOrNumber(word), wish.id) || complain("-i : invalid PCIe ID '%s'\n", word);
    case 'd':
        std::printf("size of optarg: %d\n", static_cast<int>(sizeof(wish.data)));
        return take(qrx::readWideHexOrNumber(word), wish.data) || complain("-d : invalid data '%s'\n", word);
    default:
        return take(qrx::readWideHexOrNumber(word), wish.address) || complain("-a : invalid address '%s'\n", word);
    }
}

int readRegister(const Wish& wish)
{
    std::array<QRX_U8, sizeof(QRX_U32)> bytes{};
    const auto command = qrx::registerRead(wish.id, wish.address);
    command.debug();
    const int status = command.receive(bytes);
    for (const QRX_U8 byte : bytes) {
        std::printf("0x%02x ", byte);
    }
    if (status != 0) {
        return qrx::refuse(status, "Read register failed.\n");
    }
    return qrx::refuse(0, "Data:0x%x, Address:0x%x\nRead register successful.\n",
                       qrx::wire::read<QRX_U32>(bytes).value_or(0), wish.address);
}

}  // namespace

int doSReg(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "tida", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("tida")) {
        return qrx::duplicateOption();
    }
    if (const auto result = qrx::requireOptions(scan, pCmdInfo, "ta")) {
        return *result;
    }
    return wish.type == kRead ? readRegister(wish)
                              : qrx::carryOut(qrx::registerWrite(wish.id, wish.address, wish.data),
                                              "Write register failed.\n", "Write register successful.\n");
}
