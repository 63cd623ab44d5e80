// `smart`.
#include "cli/Functions/smart/smart.h"

#include <array>

#include "api/src/interface/agent.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/tunnel.h"

const char smart_help[] = R"(
smart [-i <SSD backend RC/Slot ID> | -o hba] [-h]

Options:
    -i,  --SSD backend RC/Slot ID.
         SSD backend RC/Slot ID, field in PD info.
    -o,  --object
         hba, it means getting SMART from adapter
    -h,  --help
Examples:
    smart -i 0
    get SSD backend RC/Slot ID 0 smart info

    smart -o hba
    get current NVMe Controller SMART info

)";

namespace {

using qrx::complain;
using qrx::take;

constexpr char kLetters[] = "i:n:u:o:\x01:h";
constexpr option kLong[] = {
    {"pd_id", required_argument, nullptr, 'i'},
    {"object", required_argument, nullptr, 'o'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Object { kHba, kNamespace };
constexpr qrx::Keyword kObjects[] = {{"hba", kHba}, {"ns", kNamespace}};

constexpr QRX_U8 kGetLogPage = 2;
constexpr QRX_U8 kSubNsSmart = 8;
constexpr QRX_U32 kAllNamespaces = 0xFFFFFFFF;

using Log = std::array<QRX_U8, sizeof(_qrx_smart_log)>;

struct Wish {
    int disk = 0;
    int nsid = 0;
    int object = kHba;
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'i':
        return take(qrx::readId(word), wish.disk) || complain("-i : invalid NVMe Controller id '%s'\n", word);
    case 'n':
        return (take(qrx::readNumber(word), wish.nsid) && wish.nsid > 0) ||
               complain("-n : invalid namespace id '%s'\n", word);
    default:
        return take(qrx::keyword(word, kObjects), wish.object) || complain("-o : invalid object '%s'\n", word);
    }
}

int fetchOfController(Log& log)
{
    QRX_U32 cdw10 = kSmartLogPage;
    return static_cast<int>(QRX_Adapter_Admin(gCurrentAdapter, kGetLogPage, kAllNamespaces, &cdw10, 1, nullptr, 0,
                                              log.data(), static_cast<QRX_U16>(log.size())));
}

int fetchOfNamespace(int nsid, Log& log)
{
    const auto command = qrx::vendorCommand(kGroupNs, kSubNsSmart, static_cast<QRX_U16>(nsid))
                             .word(9, static_cast<QRX_U32>(log.size()))
                             .word(10, static_cast<QRX_U32>(log.size() / 4 - 1));
    if (dbg_enable != 0) {
        for (const unsigned index : {0U, 9U, 10U, 12U}) {  // aligned, unlike those of the other commands
            qrx::print(index < 10 ? "CDW[%u]  : 0x%08x\n" : "CDW[%u] : 0x%08x\n", index, command.record().CDW[index]);
        }
    }
    return command.receive(log);
}

int fetchOfDisk(int disk, Log& log)
{
    return qrx::tunnelFromDrive(static_cast<QRX_U32>(disk), qrx::kDriveGetLogPage)
        .word(10, kSmartLogPage)
        .word(15, kAllNamespaces)
        .receive(log);
}

// `status` of the fetch, after its log or a complaint.
int show(int status, const Log& log, void (*printer)(const _qrx_smart_log&, int), int hbaMode)
{
    const auto smart = qrx::wire::read<_qrx_smart_log>(log);
    if (status != 0 || !smart) {
        return qrx::refuse(status, "get smart info failed.\n");
    }
    printer(*smart, hbaMode);
    return status;
}

}  // namespace

int doSmart(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "ino", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.has('o') && scan.has('i')) {
        return qrx::optionValNotRequired(pCmdInfo, 'i');
    }
    if (!scan.has('o') && !scan.has('i')) {
        return qrx::optionRequired(pCmdInfo, 'i');
    }
    if (scan.repeated("oi")) {
        return qrx::duplicateOption();
    }
    Log log{};
    if (scan.has('i')) {
        return show(fetchOfDisk(wish.disk, log), log, showLogSmartInfo, 0);
    }
    if (wish.object == kHba) {
        return show(fetchOfController(log), log, showLogSmartInfo, 1);
    }
    if (!scan.has('n')) {
        return qrx::optionRequired(pCmdInfo, 'i');  // the letter of the other source
    }
    return show(fetchOfNamespace(wish.nsid, log), log, showLogSmartInfo_no_calculator, 0);
}
