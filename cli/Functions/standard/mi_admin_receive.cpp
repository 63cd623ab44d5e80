// `mi_admin_receive`.
#include "cli/Functions/standard/mi_admin_receive.h"

#include <array>
#include <cstdio>

#include "api/src/interface/globals.h"
#include "cli/Functions/smart/smart.h"
#include "cli/Functions/standard/identify.h"
#include "cli/Functions/standard/mi_message.h"
#include "cli/Public/frame/handler.h"

const char mi_admin_receive_sh[] = ":Standard MI-Receive for admin command set";

const char mi_admin_receive_help[] = R"(
mi_admin_receive [-l <data length>] [-s <idctrl|smart>] [-f <outputfile>] [-h]

Options:
    -l, --datalen <data length>
        Length of the raw data to show, at most 4096 bytes
    -s, --show <idctrl|smart>
        idctrl, show the data as Identify Controller data
        smart, show the data as SMART log
    -f, --outputfile <outputfile>
         Output all 4096 bytes of data into output file.
    -h, --help
Examples:
    mi_admin_receive -l 32
    Show 32 bytes of the answer to the last mi_admin_send.

    mi_admin_receive -s idctrl
    Show the answer as Identify Controller data.

)";

namespace {

using Answer = nvmemi_admin_command_response_message;

constexpr char kLetters[] = "l:f:s:\x01:h";
constexpr option kLong[] = {
    {"datalen", required_argument, nullptr, 'l'},
    {"outputfile", required_argument, nullptr, 'f'},
    {"show", required_argument, nullptr, 's'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Show { kNothing, kIdentify, kSmart };
constexpr qrx::Keyword kShows[] = {{"idctrl", kIdentify}, {"smart", kSmart}};

struct Wish {
    QRX_U32 length = 0;
    int show = kNothing;
    qrx::OutputFile output;
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'l':
        return qrx::mi::takeLength(word, wish.length);
    case 's':
        return qrx::take(qrx::keyword(word, kShows), wish.show) || qrx::complain("-s : invalid show type '%s'\n", word);
    default:
        (void)wish.output.open(word);  // a failure is told when all options are good
        return true;
    }
}

void debug(const Answer& answer)
{
    if (dbg_enable != 0) {
        qrx::print("Completion_Queue_Entry_Dword0:0x%x\n", answer.Completion_Queue_Entry_Dword0);
        qrx::print("Completion_Queue_Entry_Dword1:0x%x\n", answer.Completion_Queue_Entry_Dword1);
        qrx::print("Completion_Queue_Entry_Dword3:0x%x\n", answer.Completion_Queue_Entry_Dword3);
    }
}

// A heading goes where what it heads goes: the page in words to `stream`, the bytes to standard output.
void show(const Wish& wish, std::span<const QRX_U8, kMiAdminDataMax> data)
{
    qrx::print("content.....\n");
    if (wish.show == kIdentify) {
        _showIDDetail(data);
    } else if (wish.show == kSmart) {
        showLogSmartInfo(qrx::wire::read<_qrx_smart_log>(data).value(), 0);
    }
    std::fputs("RAW data.....\n", stdout);
    qrx::mi::showBytes(data.first(wish.length));
}

}  // namespace

int doMIAdminReceive(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "lfs", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("lfs")) {
        return qrx::duplicateOption();
    }
    if (!wish.output.isNamed() && wish.length > kMiAdminDataMax) {  // a file takes all of the data
        return qrx::mi::refuseLength(pCmdInfo, wish.length, kMiAdminDataMax);
    }
    if (wish.output.hasFailed()) {
        return wish.output.refuse(pCmdInfo);
    }
    std::array<QRX_U8, sizeof(Answer)> bytes{};
    if (const int status = qrx::mi::receiveAnswer(bytes)) {
        return qrx::refuse(status, "MI admin receive failed.\n");
    }
    const auto answer = qrx::wire::read<Answer>(bytes).value();
    qrx::print("Status:0x%x\n", unsigned{answer.Status});
    debug(answer);
    constexpr std::size_t kData = offsetof(Answer, NVMe_Response_Data);
    const auto data = std::span<const QRX_U8, sizeof(Answer)>(bytes).subspan<kData, kMiAdminDataMax>();
    if (wish.output.isNamed()) {
        return wish.output.save(pCmdInfo, data);
    }
    show(wish, data);
    return 0;
}
