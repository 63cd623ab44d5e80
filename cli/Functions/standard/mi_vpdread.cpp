// `vpdread`.
#include "cli/Functions/standard/mi_vpdread.h"

#include <array>
#include <cstdio>

#include "cli/Functions/standard/mi_message.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/output_file.h"

const char vpdread_help[] = R"(
vpdread -o <offset> -l <data length> [-f <outputfile>] [-h]

Options:
    -o, --offset.
        Offset of VPD data
    -l, --datalen.
        Data length of VPD data from offset to get
    -f, --outputfile <outputfile>
         Output data into output file.
    -h, --help
Examples:
    vpdread -o 0 -l 32
    Read VPD data from offset 0 and data length is 32 bytes.

    vpdread -o 0 -l 32 -f raw_data
    Read VPD data from offset 0 and data length is 32 bytes and write into file which named raw_data.

)";

namespace {

using qrx::refuse;

constexpr char kLetters[] = "o:l:f:\x01:h";
constexpr option kLong[] = {
    {"offset", required_argument, nullptr, 'o'},
    {"datalen", required_argument, nullptr, 'l'},
    {"outputfile", required_argument, nullptr, 'f'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

struct Wish {
    QRX_U16 offset = 0;
    QRX_U16 length = 0;
    qrx::OutputFile output;
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
        (void)wish.output.open(word);  // a failure is told when all options are good
        return true;
    }
}

int save(PCommand_Info row, qrx::OutputFile& output, std::span<const QRX_U8> data)
{
    return output.write(data) && output.close() ? 0 : output.refuse(row);
}

}  // namespace

int doVPDRead(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "olf", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("olf")) {
        return qrx::duplicateOption();
    }
    for (const char letter : {'o', 'l'}) {
        if (!scan.has(letter)) {
            return qrx::optionRequired(pCmdInfo, letter);
        }
    }
    if (wish.length > qrx::mi::kAnswerDataMax) {
        return refuse(1, "%s: data length %u is over the %zu bytes of one answer\n", pCmdInfo->cmd,
                      unsigned{wish.length}, qrx::mi::kAnswerDataMax);
    }
    if (wish.output.isNamed() && !wish.output.isOpen()) {
        return wish.output.refuse(pCmdInfo);
    }
    std::array<QRX_U8, sizeof(nvmemi_command_request_message)> message{};
    (void)qrx::wire::write(message, 0, qrx::mi::vpdRequest(kMiVpdRead, wish.offset, wish.length));
    qrx::mi::showRange(wish.offset, wish.length);
    if (const int status = qrx::mi::sendMessage(message)) {
        return refuse(status, "MI send for VPD read failed.\n");
    }
    std::array<QRX_U8, qrx::wire::kPageSize> answer{};
    if (const int status = qrx::mi::receiveAnswer(answer)) {
        return refuse(status, "MI receive for VPD read failed.\n");
    }
    qrx::print("MI send for VPD read success.\n");
    const auto data = std::span<const QRX_U8>(answer).subspan(qrx::mi::kAnswerHead, wish.length);
    if (wish.output.isNamed()) {
        return save(pCmdInfo, wish.output, data);
    }
    std::fputs("content.....\n", stdout);
    qrx::mi::showBytes(data);
    return 0;
}
