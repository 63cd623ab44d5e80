// `spi`.
#include "cli/Functions/spi/spi.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "api/src/interface/agent.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/command.h"
#include "cli/Public/frame/handler.h"
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

using qrx::OutputFile;
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

// A command has one open file at a time: naming one for the other direction takes its place, until it is used.
struct Wish {
    int type = kRead;
    OutputFile output;
    const char* outputName = nullptr;
    const char* inputName = nullptr;
    bool inputOpen = false;
    char latest = '\0';  // the option that named the file that is open

    void openOutput(const char* name)
    {
        outputName = name;
        latest = kOutput;
        (void)output.open(name);
    }
    void openInput(const char* name)
    {
        inputName = name;
        latest = kInput;
        inputOpen = open_file(name, "r") == 0;
    }
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 't':
        return qrx::take(qrx::keyword(word, kTypes), wish.type) || qrx::complain("-t : invalid type '%s'\n", word);
    case kOutput:
        wish.openOutput(word);
        return true;
    default:
        wish.openInput(word);
        return true;
    }
}

int readBlock(PCommand_Info row, Wish& wish)
{
    if (wish.outputName != nullptr && wish.latest != kOutput) {
        wish.openOutput(wish.outputName);
    }
    if (wish.output.isNamed() && !wish.output.isOpen()) {
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
    } else if (!wish.output.write(block) || !wish.output.close()) {
        return wish.output.refuse(row);
    }
    return refuse(0, "Read SPI successful.\n");
}

int writeBlock(PCommand_Info row, Wish& wish)
{
    if (wish.inputName == nullptr) {
        return refuse(0, "Please provide input file.\n");
    }
    if (wish.latest != kInput) {
        wish.openInput(wish.inputName);
    }
    if (!wish.inputOpen) {
        return refuse(1, "File is not exist.\n");
    }
    // As much as both hold; the rest of the block stays zero.
    Block block{};
    errno = 0;
    const std::size_t length = std::fread(block.data(), 1, block.size(), file);
    if (std::ferror(file) != 0) {
        return refuse(1, "%s: cannot read '%s': %s\n", row->cmd, wish.inputName, std::strerror(errno));
    }
    qrx::print("spi write data.....");
    _showRAWData(block.data(), static_cast<int>(length));
    std::array<QRX_U32, 3> words{block.size() / sizeof(QRX_U32), 0, qrx::vendorWord(kGroupAdapter, kSubSpiWrite)};
    const QRX_U32 status = QRX_Adapter_Admin(gCurrentAdapter, static_cast<QRX_U8>(kVendorWrite), 0, words.data(),
                                             words.size(), block.data(), block.size(), nullptr, 0);
    return qrx::report(static_cast<int>(status), "Write SPI failed.\n", "Write SPI successful.\n");
}

// What every way out of the command leaves closed.
class FileGuard {
public:
    FileGuard() = default;
    ~FileGuard() { close_file(); }
    FileGuard(const FileGuard&) = delete;
    FileGuard& operator=(const FileGuard&) = delete;
};

}  // namespace

int doSPI(int argc, char** argv, PCommand_Info pCmdInfo)
{
    const FileGuard guard;
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
