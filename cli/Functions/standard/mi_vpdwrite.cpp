// `vpdwrite`, and what its twin shares with it.
#include "cli/Functions/standard/mi_vpdwrite.h"

#include <algorithm>
#include <array>

#include "cli/Functions/standard/mi_message.h"
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

constexpr std::size_t kDataOffset = offsetof(nvmemi_command_request_message, Request_Data);
// The message is as long as a request and the file behind it.
constexpr std::size_t kFileMax = qrx::mi::kMessageMax - sizeof(nvmemi_command_request_message);

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

// The bytes of `data` from the offset on, as many as it has; those behind its end are zeros. So what is listed is not
// what is sent, unless the offset is 0.
void list(const Wish& wish, std::span<const QRX_U8> data, bool shortest)
{
    std::array<QRX_U8, qrx::mi::kMessageMax> shown{};
    const auto rest = data.subspan(std::min<std::size_t>(wish.offset, data.size()));
    std::copy(rest.begin(), rest.end(), shown.begin());
    qrx::mi::showBytes(std::span<const QRX_U8>(shown).first(data.size()), wish.offset, shortest);
}

int send(PCommand_Info row, Wish& wish, const qrx::mi::WriteStyle& style)
{
    std::array<QRX_U8, kFileMax> content{};
    const auto fileLength = wish.input.read(content);
    if (!fileLength) {
        return wish.input.refuse(row);
    }
    std::array<QRX_U8, qrx::mi::kMessageMax> page{};
    const auto message = std::span<QRX_U8>(page).first(sizeof(nvmemi_command_request_message) + *fileLength);
    // The controller is told of whole dwords alone.
    const std::size_t room = message.size() / sizeof(QRX_U32) * sizeof(QRX_U32) - kDataOffset;
    if (wish.length > room) {
        return qrx::refuse(1, "%s: data length %u is over the %zu bytes of the message of a file of %zu bytes\n",
                           row->cmd, unsigned{wish.length}, room, *fileLength);
    }
    (void)qrx::wire::write(message, 0, qrx::mi::vpdRequest(kMiVpdWrite, wish.offset, wish.length));
    qrx::mi::showRange(wish.offset, wish.length);
    const auto data = message.subspan(kDataOffset, wish.length);
    const std::size_t held = std::min(*fileLength, data.size());
    std::copy_n(content.begin(), held, data.begin());
    if (style.showsFile) {
        qrx::print("spi write data.....");
        _showRAWData(data.data(), static_cast<int>(held));
    }
    list(wish, data, style.shortestBytes);
    return qrx::report(qrx::mi::sendMessage(message), "MI send for VPD write failed.\n",
                       "MI send for VPD write success.\n");
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
    for (const char letter : {'o', 'l', 'f'}) {
        if (!scan.has(letter)) {
            return optionRequired(pCmdInfo, letter);
        }
    }
    return send(pCmdInfo, wish, style);
}

int doVPDWrite(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return qrx::mi::writeVpd(argc, argv, pCmdInfo, {});
}
