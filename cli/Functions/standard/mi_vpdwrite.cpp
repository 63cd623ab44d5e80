// `vpdwrite`, and what its twins share with it.
#include "cli/Functions/standard/mi_vpdwrite.h"

#include "cli/Functions/standard/mi_message.h"
#include "cli/Functions/standard/mi_payload.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/input_file.h"
#include "cli/Public/utility.h"

const char vpdwrite_help[] = R"(
vpdwrite -o <offset> -l <data length> -f <input file> [-h]

Options:
    -o, --offset.
        Offset of VPD data
    -l, --datalen.
        Data length of input data from offset to set
    -f, --inputfile <inputfile>
         Input data which want to write into VPD.
    -h, --help
Examples:
    vpdwrite -o 0 -l 32 -f raw_data
    Write VPD data from offset 0 and data length is 32 bytes from file 'raw_data'.

)";

namespace {

constexpr char kLetters[] = "o:l:f:\x01:h";
constexpr option kLong[] = {
    {"offset", required_argument, nullptr, 'o'},
    {"datalen", required_argument, nullptr, 'l'},
    {"outputfile", required_argument, nullptr, 'f'},  // of this name, though it is read
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

struct Wish {
    QRX_U16 offset = 0;
    QRX_U16 length = 0;
    qrx::InputFile input;
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'o':
        return qrx::mi::takeOffset(word, wish.offset);
    case 'l':
        return qrx::mi::takeLength(word, wish.length);
    default:
        (void)wish.input.open(word);  // a failure is told when all options are good
        return true;
    }
}

// What was read from the file, and then what goes to the offset.
void show(const Wish& wish, const qrx::mi::WriteStyle& style, std::span<const QRX_U8> ofFile,
          std::span<const QRX_U8> data)
{
    if (style.showsFile) {
        qrx::print("spi write data.....");
        _showRAWData(ofFile.data(), static_cast<int>(ofFile.size()));
    }
    qrx::mi::showFrom(wish.offset, data, style.shortestBytes);
}

int report(int status)
{
    return qrx::report(status, "MI send for VPD write failed.\n", "MI send for VPD write success.\n");
}

int send(PCommand_Info row, Wish& wish, const qrx::mi::WriteStyle& style)
{
    const auto request = qrx::mi::vpdRequest(kMiVpdWrite, wish.offset, wish.length);
    if (style.headInWords) {
        qrx::mi::FilePayload payload;
        if (const auto result = payload.load(row, wish.input, wish.length)) {
            return *result;
        }
        show(wish, style, payload.ofFile(), payload.data());
        return report(qrx::mi::sendData(request, payload.data()));
    }
    qrx::mi::FileMessage message;
    if (const auto result = message.make(row, &wish.input, request, wish.length)) {
        return *result;
    }
    qrx::mi::showRange(wish.offset, wish.length);
    show(wish, style, message.ofFile(), message.data());
    return report(qrx::mi::sendMessage(message.bytes()));
}

}  // namespace

int qrx::mi::writeVpd(int argc, char** argv, PCommand_Info pCmdInfo, const WriteStyle& style)
{
    OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    const auto reader = [&](int letter) { return read(letter, scan.word(), wish); };
    if (const auto result = style.helpsWhenBare ? readOptions(scan, pCmdInfo, "olf", 0, reader)
                                                : passOptions(scan, pCmdInfo, "olf", 0, reader)) {
        return *result;
    }
    if (scan.repeated("olf")) {
        return duplicateOption();
    }
    if (const auto result = requireOptions(scan, pCmdInfo, "olf")) {
        return *result;
    }
    return send(pCmdInfo, wish, style);
}

int doVPDWrite(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return qrx::mi::writeVpd(argc, argv, pCmdInfo, {});
}
