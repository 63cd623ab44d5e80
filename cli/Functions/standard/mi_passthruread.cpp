// `mi_passthruread`.
#include "cli/Functions/standard/mi_passthruread.h"

#include <array>

#include "api/src/interface/wire/command.h"
#include "cli/Functions/standard/identify.h"
#include "cli/Functions/standard/mi_message.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/identify.h"
#include "cli/Public/frame/output_file.h"

const char mi_passthruread_help[] = R"(
mi_passthruread -o <offset> -l <data length> [-f <outputfile>] [-h]

Options:
    -o, --offset.
        Offset of VPD data
    -l, --datalen.
        Data length of VPD data from offset to get
    -f, --outputfile <outputfile>
         Output data into output file.
    -h, --help
Examples:
    mi_passthruread -i <pd id>
    Just use this for send identify passthru command.

    mi_passthruread -o 0 -l 32
    Read VPD data from offset 0 and data length is 32 bytes.

    mi_passthruread -o 0 -l 32 -f raw_data
    Read VPD data from offset 0 and data length is 32 bytes and write into file which named raw_data.

)";

namespace {

using qrx::refuse;

constexpr char kLetters[] = "i:o:l:f:\x01:h";
constexpr option kLong[] = {
    {"pdid", required_argument, nullptr, 'i'},
    {"offset", required_argument, nullptr, 'o'},
    {"datalen", required_argument, nullptr, 'l'},
    {"outputfile", required_argument, nullptr, 'f'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr QRX_U32 kDriveIdentify = 6;
constexpr std::size_t kShownOfMessage = 64;
constexpr std::size_t kShownOfAnswer = 512;
// Identify is a page, of which an answer brings all but the last bytes; they are taken as zeros.
constexpr std::size_t kIdentifySize = qrx::wire::kPageSize;

struct Wish {
    QRX_U32 disk = 0;    // 0-based
    QRX_U32 offset = 0;  // shown, and of no use to the message
    QRX_U32 length = 0;  // bytes for the file
    qrx::OutputFile output;
};

bool takeDisk(const char* word, QRX_U32& disk)
{
    const auto typed = qrx::readHexOrNumber(word);
    if (!typed || *typed < qrx::idBase()) {
        return qrx::complain("-o: Invalid pd id value\n");
    }
    disk = static_cast<QRX_U32>(*typed - qrx::idBase());
    return true;
}

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'i':
        return takeDisk(word, wish.disk);
    case 'o':
        return qrx::mi::takeOffset(word, wish.offset);
    case 'l':
        return qrx::mi::takeLength(word, wish.length);
    default:
        (void)wish.output.open(word);  // a failure is told when all options are good
        return true;
    }
}

// The bytes in rows of a dword.
void showWords(std::span<const QRX_U8> bytes)
{
    constexpr std::size_t kPerRow = sizeof(QRX_U32);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i % kPerRow == 0) {
            qrx::print("\nCDW%d ", static_cast<int>(i / kPerRow));
        }
        qrx::print("0x%02x ", bytes[i]);
    }
}

// The tunnel to a drive, in a message: the drive stands where the NSID would, its opcode in Dword 14.
nvmemi_admin_command_request_message requestFor(QRX_U32 disk)
{
    nvmemi_admin_command_request_message request{};
    request.header = miRequestHeader(kMiAdminCommand);
    request.Opcode = static_cast<QRX_U8>(kTunnelFromDrive);
    request.Submission_Queue_Entry_Dword1 = disk;
    request.Submission_Queue_Entry_Dword10 = qrx::kIdentifyController;
    request.Submission_Queue_Entry_Dword14 = kDriveIdentify;
    return request;
}

// Saves or shows what the drive answered. 0, or 1 after a complaint about the file.
int deliver(PCommand_Info row, Wish& wish, std::span<const QRX_U8> data)
{
    if (wish.output.isNamed()) {
        return wish.output.save(row, data.first(wish.length));
    }
    qrx::print("content.....\n");
    showWords(data.first(kShownOfAnswer));
    qrx::print("\n");
    return 0;
}

}  // namespace

int doMIPassthruRead(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::passOptions(scan, pCmdInfo, "iolf", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (wish.output.hasFailed()) {
        return wish.output.refuse(pCmdInfo);
    }
    if (wish.output.isNamed() && wish.length > kIdentifySize) {
        return refuse(1, "%s: data length %u is over the %zu bytes of Identify\n", pCmdInfo->cmd, wish.length,
                      kIdentifySize);
    }
    std::array<QRX_U8, sizeof(nvmemi_admin_command_request_message)> request{};
    (void)qrx::wire::write(request, 0, requestFor(wish.disk));
    const auto message = std::span<QRX_U8>(request).first<qrx::mi::kMessageMax>();
    qrx::mi::showRange(wish.offset, wish.length);
    qrx::print("after mi_prp_data as below:");
    showWords(message.first<kShownOfMessage>());
    qrx::print("\n\n");
    if (const int status = qrx::mi::sendMessage(message)) {
        return refuse(status, "MI send for VPD read failed.\n");
    }
    std::array<QRX_U8, qrx::mi::kAnswerHead + kIdentifySize> answer{};
    if (const int status = qrx::mi::receiveAnswer(std::span<QRX_U8>(answer).first<qrx::wire::kPageSize>())) {
        return refuse(status, "MI receive for VPD read failed.\n");
    }
    qrx::print("MI send for VPD read success.\n");
    const auto data = std::span<const QRX_U8>(answer).subspan<qrx::mi::kAnswerHead, kIdentifySize>();
    const int result = deliver(pCmdInfo, wish, data);
    _showIDDetail(data);
    return result;
}
