// `mi_receive`.
#include "cli/Functions/standard/mi_receive.h"

#include <array>
#include <cstring>

#include "cli/Functions/standard/mi_message.h"
#include "cli/Public/frame/handler.h"

const char mi_receive_sh[] = ":Standard MI-Receive for management interface command set";

const char mi_receive_help[] = R"(
mi_receive [-l <data length>] [-f <outputfile>] [-h]

Options:
    -l, --datalen <data length>
        Length of the data to get, at most 1024 bytes
    -f, --outputfile <outputfile>
         Output data into output file.
    -h, --help
Examples:
    mi_receive -l 32
    Show 32 bytes of the answer to the last mi_send.

    mi_receive -l 32 -f raw_data
    Write 32 bytes of the answer to the last mi_send into file which named raw_data.

)";

namespace {

constexpr char kLetters[] = "l:f:\x01:h";
constexpr option kLong[] = {
    {"datalen", required_argument, nullptr, 'l'},
    {"outputfile", required_argument, nullptr, 'f'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};
constexpr QRX_U32 kMostDecimal = kMiDataMax;  // a hexadecimal length may go to the end of the answer

struct Wish {
    QRX_U32 length = 0;
    qrx::OutputFile output;
};

bool takeLength(const char* word, QRX_U32& length)
{
    if (!qrx::mi::takeLength(word, length)) {
        return false;
    }
    const bool decimal = std::strstr(word, "0x") == nullptr;
    return !decimal || length <= kMostDecimal ||
           qrx::complain("-l: invalid length '%s', the maximum size is %u\n", word, kMostDecimal);
}

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    if (letter == 'l') {
        return takeLength(word, wish.length);
    }
    (void)wish.output.open(word);  // a failure is told when all options are good
    return true;
}

}  // namespace

int doMIReceive(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "lf", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("lf")) {
        return qrx::duplicateOption();
    }
    if (wish.length > qrx::mi::kAnswerDataMax) {
        return qrx::mi::refuseLength(pCmdInfo, wish.length, qrx::mi::kAnswerDataMax);
    }
    if (wish.output.hasFailed()) {
        return wish.output.refuse(pCmdInfo);
    }
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    if (const int status = qrx::mi::receiveAnswer(page)) {
        return qrx::refuse(status, "MI receive failed.\n");
    }
    const auto answer = qrx::wire::read<nvmemi_command_response_message>(page).value();
    qrx::print("Status:0x%x\n", unsigned{answer.Status});
    qrx::print("NVMe_Management_Response:0x%x\n", unsigned{answer.NVMe_Management_Response});
    return qrx::mi::deliver(pCmdInfo, wish.output,
                            std::span<const QRX_U8>(page).subspan(qrx::mi::kAnswerHead, wish.length));
}
