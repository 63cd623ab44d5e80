// `spi`.
#include "cli/Functions/spi/spi.h"

#include <array>

#include "api/src/interface/agent.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/input_file.h"
#include "cli/Public/frame/output_file.h"
#include "cli/Public/utility.h"

const char spi_help[] = R"(
spi <-t [read|write]> [--outputfile <outputfile>][--inputfile <inputfile>][-h]

Options:
    -t,  --type.
         read, output the SPI data.
         write, write the SPI data.
    --outputfile <outputfile>
         Output data into output file.
    --inputfile <inputfile>
         Input data from input file.
    -h,  --help
Examples:
    spi -t read
    Output raw data on the screen

    spi -t read --outputfile=raw_data
    Output raw data into file "raw_data"

    spi -t write --inputfile=raw_data
    Write SPI of input file "raw_data" via vendor specific command

)";

namespace {

using qrx::refuse;

constexpr char kOutput = '1';
constexpr char kInput = '2';
constexpr char kLetters[] = "t:1:2:\x01:h";
constexpr option kLong[] = {
    {"type", required_argument, nullptr, 't'},
    {"outputfile", required_argument, nullptr, kOutput},
    {"inputfile", required_argument, nullptr, kInput},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Type { kRead, kWrite };
constexpr qrx::Keyword kTypes[] = {{"read", kRead}, {"write", kWrite}};

constexpr QRX_U8 kGetLogPage = 2;
constexpr QRX_U32 kSpiPage = 0x03FF00C0;  // log page 0xC0; number of dwords less 1 in the upper half
constexpr QRX_U8 kSubSpiWrite = 0x08;

using Block = std::array<QRX_U8, qrx::wire::kPageSize>;

struct Wish {
    int type = kRead;
    qrx::OutputFile output;
    qrx::InputFile input;
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 't':
        return qrx::take(qrx::keyword(word, kTypes), wish.type) || qrx::complain("-t : invalid type '%s'\n", word);
    case kOutput:
        (void)wish.output.open(word);  // that a file failed is told when it is to be used
        return true;
    default:
        (void)wish.input.open(word);
        return true;
    }
}

int readBlock(PCommand_Info row, Wish& wish)
{
    if (wish.output.hasFailed()) {
        return wish.output.refuse(row);
    }
    Block block{};
    QRX_U32 page = kSpiPage;
    if (const QRX_U32 status =
            QRX_Adapter_Admin(gCurrentAdapter, kGetLogPage, 0, &page, 1, nullptr, 0, block.data(), block.size())) {
        return refuse(static_cast<int>(status), "Read SPI failed.\n");
    }
    if (!wish.output.isNamed()) {
        _showRAWData(block.data(), static_cast<int>(block.size()));
    } else if (const int lost = wish.output.save(row, block)) {
        return lost;
    }
    return refuse(0, "Read SPI successful.\n");
}

int writeBlock(PCommand_Info row, Wish& wish)
{
    if (!wish.input.isNamed()) {
        return refuse(0, "Please provide input file.\n");
    }
    if (!wish.input.isOpen()) {
        return refuse(1, "File is not exist.\n");
    }
    // As much as both hold; the rest of the block stays zero.
    Block block{};
    const auto length = wish.input.readUpTo(block);
    if (!length) {
        return wish.input.refuse(row);
    }
    qrx::print("spi write data.....");
    _showRAWData(block.data(), static_cast<int>(*length));
    std::array<QRX_U32, 3> words{block.size() / sizeof(QRX_U32), 0, qrx::vendorWord(kGroupAdapter, kSubSpiWrite)};
    const QRX_U32 status = QRX_Adapter_Admin(gCurrentAdapter, static_cast<QRX_U8>(kVendorWrite), 0, words.data(),
                                             words.size(), block.data(), block.size(), nullptr, 0);
    return qrx::report(static_cast<int>(status), "Write SPI failed.\n", "Write SPI successful.\n");
}

}  // namespace

int doSPI(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "t12", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("t12")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('t')) {
        return qrx::optionRequired(pCmdInfo, 't');
    }
    return wish.type == kRead ? readBlock(pCmdInfo, wish) : writeBlock(pCmdInfo, wish);
}
