// `vpdread`, and what its later form shares with it.
#include "cli/Functions/standard/mi_vpdread.h"

#include <array>

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

// Fetches the data into `page`. Where in it the data begins, or what the command has to return after a complaint.
struct Fetched {
    int status = 0;
    std::size_t at = 0;
};

Fetched fetch(const Wish& wish, bool headInWords, std::span<QRX_U8, qrx::wire::kPageSize> page)
{
    const auto request = qrx::mi::vpdRequest(kMiVpdRead, wish.offset, wish.length);
    Fetched fetched;
    if (headInWords) {
        fetched.status = qrx::mi::receiveData(request, page);
    } else {
        std::array<QRX_U8, sizeof(request)> message{};
        (void)qrx::wire::write(message, 0, request);
        if (const int status = qrx::mi::sendMessage(message)) {
            return {refuse(status, "MI send for VPD read failed.\n")};
        }
        fetched = {qrx::mi::receiveAnswer(page), qrx::mi::kAnswerHead};
    }
    if (fetched.status != 0) {
        qrx::print("MI receive for VPD read failed.\n");
    }
    return fetched;
}

}  // namespace

int qrx::mi::readVpd(int argc, char** argv, PCommand_Info row, bool headInWords)
{
    OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            readOptions(scan, row, "olf", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("olf")) {
        return duplicateOption();
    }
    if (const auto result = requireOptions(scan, row, "ol")) {
        return *result;
    }
    const std::size_t most = headInWords ? wire::kPageSize : kAnswerDataMax;
    if (wish.length > most) {
        return refuseLength(row, wish.length, most);
    }
    if (wish.output.hasFailed()) {
        return wish.output.refuse(row);
    }
    showRange(wish.offset, wish.length);
    std::array<QRX_U8, wire::kPageSize> page{};
    const Fetched fetched = fetch(wish, headInWords, page);
    if (fetched.status != 0) {
        return fetched.status;
    }
    print("MI send for VPD read success.\n");
    return deliver(row, wish.output, std::span<const QRX_U8>(page).subspan(fetched.at, wish.length));
}

int doVPDRead(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return qrx::mi::readVpd(argc, argv, pCmdInfo, false);
}
