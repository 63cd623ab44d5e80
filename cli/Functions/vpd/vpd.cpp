// `vpd`.
#include "cli/Functions/vpd/vpd.h"

#include <array>

#include "api/src/interface/agent.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/wire/command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/input_file.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/output_file.h"
#include "cli/Public/utility.h"

const char old_vpd_sh[] = ":Read and write VPD data";

const char old_vpd_help[] = R"(
vpd <-t [read|vsw]> [--outputfile <outputfile>][--inputfile <inputfile>][-o offset][-l data_len][-h]

Options:
    -t,  --type.
         read, output the VPD data.
         vsw, write the VPD data via vendor specific command.
    --outputfile <outputfile>
         Output data into output file.
    --inputfile <inputfile>
         Input data from input file.
    -o,  --offset.
         Offset of VPD data. All of it is read and written.
    -l,  --data_len.
         Data length of VPD data. All of it is read and written.
    -h,  --help
Examples:
    vpd -t read
    Output raw data on the screen

    vpd -t read --outputfile=raw_data
    Output raw data into file "raw_data"

    vpd -t vsw --inputfile=raw_data
    Write VPD of input file "raw_data" via vendor specific command

)";

namespace {

using qrx::refuse;

constexpr char kOutput = '1';
constexpr char kInput = '2';
constexpr char kLetters[] = "t:1:2:o:l:\x01:h";
constexpr option kLong[] = {
    {"type", required_argument, nullptr, 't'},
    {"outputfile", required_argument, nullptr, kOutput},
    {"inputfile", required_argument, nullptr, kInput},
    {"offset", required_argument, nullptr, 'o'},
    {"data_len", required_argument, nullptr, 'l'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Type { kRead, kWrite };
constexpr qrx::Keyword kTypes[] = {{"read", kRead}, {"vsw", kWrite}};

constexpr QRX_U8 kGetLogPage = 2;
constexpr QRX_U32 kVpdPage = 0x004000C0;
constexpr QRX_U32 kVpdDwords = 64;

using Vpd = std::array<QRX_U8, 256>;

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
    case 'o':
        return qrx::readHexOrNumber(word) || qrx::complain("-o : invalid offset '%s'\n", word);
    case 'l':
        return qrx::readHexOrNumber(word) || qrx::complain("-l : invalid data_len '%s'\n", word);
    case kOutput:
        (void)wish.output.open(word);  // that a file failed is told when it is to be used
        return true;
    default:
        (void)wish.input.open(word);
        return true;
    }
}

int readVpd(PCommand_Info row, Wish& wish)
{
    if (wish.output.hasFailed()) {
        return wish.output.refuse(row);
    }
    Vpd vpd{};
    QRX_U32 page = kVpdPage;
    if (const QRX_U32 status =
            QRX_Adapter_Admin(gCurrentAdapter, kGetLogPage, 0, &page, 1, nullptr, 0, vpd.data(), vpd.size())) {
        return refuse(static_cast<int>(status), "Read VPD failed.\n");
    }
    if (wish.output.isNamed()) {
        return wish.output.save(row, vpd);
    }
    _showRAWData(vpd.data(), static_cast<int>(vpd.size()));
    return 0;
}

int writeVpd(PCommand_Info row, Wish& wish)
{
    if (!wish.input.isNamed()) {
        return refuse(0, "Please provide input file.\n");
    }
    Vpd vpd{};
    if (!wish.input.readUpTo(vpd)) {
        return wish.input.refuse(row);
    }
    QRX_U32 length = kVpdDwords;
    const QRX_U32 status = QRX_Adapter_Admin(gCurrentAdapter, static_cast<QRX_U8>(kVendorWrite), 0, &length, 1,
                                             vpd.data(), vpd.size(), nullptr, 0);
    return qrx::report(static_cast<int>(status), "Write VPD via vendor specific failed.\n",
                       "Write VPD via vendor specific successful.\n");
}

}  // namespace

int doVPD(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "t12ol", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("t12ol")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('t')) {
        return qrx::optionRequired(pCmdInfo, 't');
    }
    return wish.type == kRead ? readVpd(pCmdInfo, wish) : writeVpd(pCmdInfo, wish);
}
