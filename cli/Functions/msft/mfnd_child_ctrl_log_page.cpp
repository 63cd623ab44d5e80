// `mfnd-child-ctrl-log-page`: a log page of a child controller.
#include <array>

#include "cli/Functions/msft/mfnd.h"
#include "cli/Functions/msft/mfnd_number.h"
#include "cli/Functions/smart/smart.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"

const char mfnd_child_ctrl_log_page_sh[] = ":For MFND child controller control get log page";

const char mfnd_child_ctrl_log_page_help[] = R"(
mfnd-child-ctrl-log-page -i <CCID> -d <LID> -l <LEN> [-1 <CDW11>] [-2 <CDW12>] [-3 <CDW13>] [-h]

Options:
    -i,  --CCID
         Child controller ID
    -d,  --LID
         Log page identifier
    -l,  --LEN
         Data length in bytes, 4 to 4096
    -1,  --CDW11
    -2,  --CDW12
    -3,  --CDW13
         Command dwords 11, 12 and 13
    -h,  --help
Examples:
    mfnd-child-ctrl-log-page -i 1 -d 2 -l 512
    Get SMART log of child controller 1

)";

namespace {

constexpr char kLetters[] = "i:d:l:1:2:3:\x01:h";
constexpr option kLong[] = {
    {"CCID", required_argument, nullptr, 'i'},
    {"LID", required_argument, nullptr, 'd'},
    {"LEN", required_argument, nullptr, 'l'},
    {"CDW11", required_argument, nullptr, '1'},
    {"CDW12", required_argument, nullptr, '2'},
    {"CDW13", required_argument, nullptr, '3'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr std::int64_t kWord = std::int64_t{1} << 31;  // one that saturates would send something else
constexpr auto kRules = std::to_array<std::pair<char, qrx::MfndNumber>>({
    {'i', qrx::kMfndCcid},
    {'d', {'l', "LID", "LID", qrx::kMfndId}},  // the complaint names the other option
    {'l', {'l', "data length", "data length", qrx::kMfndId}},
    {'1', {'1', " CDW 11", "CDW 11", kWord}},
    {'2', {'2', " CDW 12", "CDW 12", kWord}},
    {'3', {'3', " CDW 13", "CDW 13", kWord}},
});

constexpr char kCommand[] = "mfnd_child_ctrl_log_page command";
constexpr QRX_U32 kSmartLog = 2;
constexpr QRX_U32 kLeast = sizeof(QRX_U32);

}  // namespace

void show_mfnd_child_SmartInfo(const _qrx_smart_log& smart)
{
    qrx::showSmart("SMART Information", smart, true, true);
}

int doMFND_child_ctrl_log_page(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    std::array<QRX_U32, kRules.size()> values{};
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "idl123", 0, [&](int letter) {
            std::size_t index = 0;
            while (kRules.at(index).first != letter) {
                ++index;
            }
            return qrx::readMfndNumber(scan.word(), kRules.at(index).second, values.at(index));
        })) {
        return *result;
    }
    if (scan.repeated("idl123")) {
        return qrx::duplicateOption();
    }
    if (const auto result = qrx::requireOptions(scan, pCmdInfo, "idl")) {
        return *result;
    }
    const auto& [ccid, lid, length, cdw11, cdw12, cdw13] = values;
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    if (length < kLeast || length > page.size()) {
        return qrx::refuse(0, "invalid data length '%u', should be 4 to 4096\n", length);
    }
    qrx::AdminCommand command(qrx::kMfndQuery);
    command.word(10, qrx::mfndWord(qrx::kMfndChildLogPage, static_cast<QRX_U16>(ccid)))
        .word(11, cdw11)
        .word(12, cdw12)
        .word(13, cdw13)
        .word(14, (length / 4 - 1) << 16 | lid)
        .debug();
    if (const int status = command.receive(std::span(page).first(length))) {
        return qrx::reportCode(status, kCommand);
    }
    qrx::print("\n");
    dumpContent(page.data(), static_cast<int>(length));
    if (lid == kSmartLog) {
        show_mfnd_child_SmartInfo(*qrx::wire::read<_qrx_smart_log>(page));
    }
    return qrx::reportCode(0, kCommand);
}
