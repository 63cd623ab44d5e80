// `mfnd-identify`: what the multi-function device can do, and its child controllers.
#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "cli/Functions/msft/mfnd.h"
#include "cli/Functions/msft/mfnd_number.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/device_text.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/lines.h"

const char mfnd_identify_sh[] = ":For MFND identify";

const char mfnd_identify_help[] = R"(
mfnd-identify -o <mfnd|child> [-i <CCID>] [--rawdata] [-h]

Options:
    -o,  --object
         mfnd, it means the capabilities of the multi-function device
         child, it means the properties of child controllers
    -i,  --CCID
         Child controller ID, 0xFFFF means all child controllers
    --rawdata
         Display raw data
    -h,  --help
Examples:
    mfnd-identify -o mfnd
    Get capabilities of multi-function device

    mfnd-identify -o child -i 1
    Get properties of child controller 1

)";

namespace {

using Capabilities = _MSFT_MFND_CAPABILITIES;
using Page = std::array<QRX_U8, qrx::wire::kPageSize>;

constexpr char kLetters[] = "o:i:r:\x01:h";
constexpr option kLong[] = {
    {"object", required_argument, nullptr, 'o'},
    {"CCID", required_argument, nullptr, 'i'},
    {"rawdata", no_argument, nullptr, 'r'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

struct Wish {
    bool child = false;
    QRX_U32 ccid = 0;
};

bool readObject(std::string_view word, Wish& wish)
{
    wish.child = word == "child" || word == "CHILD";
    return wish.child || word == "mfnd" || word == "MFND" || qrx::complain("-o : invalid object '%s'\n", word.data());
}

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'o':
        return readObject(word, wish);
    case 'i':
        return qrx::readMfndNumber(word, qrx::kMfndCcid, wish.ccid);
    default:
        return true;  // --rawdata; the short form takes a word that has no effect
    }
}

const qrx::Lines kLines(36);

void showDevice(const Capabilities& mfnd)
{
    const std::string sign = qrx::printable({reinterpret_cast<const char*>(mfnd.sign), sizeof(mfnd.sign)});
    kLines.text("Signature:", sign.c_str());
    kLines.number("MFND Major Version:", mfnd.major_ver);
    kLines.number("MFND Sub Version:", mfnd.sub_ver);
    kLines.number("Maximum Physical Function Count:", mfnd.max_physical_fun_cnt);
    kLines.number("Available Physical Function Count:", mfnd.avail_physical_fun_cnt);
    kLines.number("Maximum Queue Pair Count:", mfnd.max_queue_pair_cnt);
    kLines.number("Available Queue Pair Count:", mfnd.avail_queue_pair_cnt);
    kLines.number("Maximum MSI-X Message Count:", mfnd.max_MSI_X_msg_cnt);
    kLines.number("Available MSI-X Message Count:", mfnd.avail_MSI_X_msg_cnt);
    kLines.number("Maximum Namespace Count:", mfnd.max_ns_cnt);
    kLines.number("Available Namespace Count:", mfnd.avail_ns_cnt);
    kLines.number("Total NVM Storage Size:", mfnd.total_NVM_storage_size);
    kLines.number("Available NVM Storage Size:", mfnd.avail_NVM_storage_size);
    kLines.number("Storage Provision Granularity:", mfnd.storage_provision_granularity);
    kLines.number("Total Read Bandwidth:", mfnd.total_read_bandwidth);
    kLines.number("Available Read Bandwidth:", mfnd.avail_read_bandwidth);
    kLines.number("Total Write Bandwidth:", mfnd.total_write_bandwidth);
    kLines.number("Available Write Bandwidth:", mfnd.avail_write_bandwidth);
    kLines.number("Total Read IOPS:", mfnd.total_read_iops);
    kLines.number("Available Read IOPS:", mfnd.avail_read_iops);
    kLines.number("Total Write IOPS:", mfnd.total_write_iops);
    kLines.number("Available Write IOPS:", mfnd.avail_write_iops);
    kLines.number("Features:", mfnd.features);
    kLines.number("Maximum Supported Child Controller Namespace Count:", mfnd.max_support_child_controller_ns_cnt);
}

void showChild(const _MSFT_CHILD_CTRL_ENTRY& child)
{
    kLines.number("Child Controller ID:", child.ccid);
    kLines.text("Serial number:", qrx::fieldText(child.sn).c_str());
    kLines.hex("Flags:", child.flags);
    if ((child.flags & qrx::kMfndCountsValid) != 0) {
        kLines.number("I/O queue pair count:", child.IO_queue_pair_cnt);
        kLines.number("MSI-X message count:", child.MSI_X_msg_cnt);
        kLines.number("Namespace count:", child.ns_cnt);
        kLines.number("Storage Provision Unit Count:", child.storage_provision_unit_cnt);
    }
}

void showChildren(const Page& page)
{
    const auto head = qrx::wire::read<_MSFT_CHILD_CTRL_LIST>(page).value_or(_MSFT_CHILD_CTRL_LIST{});
    const std::size_t told = head.mumber_of_child_controller;
    kLines.number("Number of returned Child Controller Properties Entry:", told);
    constexpr std::size_t kHeld = (qrx::wire::kPageSize - sizeof(head)) / sizeof(_MSFT_CHILD_CTRL_ENTRY);
    for (std::size_t i = 0; i < std::min(told, kHeld); ++i) {
        showChild(*qrx::wire::read<_MSFT_CHILD_CTRL_ENTRY>(page, sizeof(head) + i * sizeof(_MSFT_CHILD_CTRL_ENTRY)));
    }
    qrx::tellMfndRest(told, kHeld);
}

}  // namespace

int doMFND_identify(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "oir", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("oir")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('o')) {
        return qrx::optionRequired(pCmdInfo, 'o');
    }
    qrx::AdminCommand command(qrx::kMfndQuery);
    if (wish.child) {
        command.word(10, qrx::mfndWord(qrx::kMfndIdentifyChild, static_cast<QRX_U16>(wish.ccid))).word(11, 0);
    } else {
        command.word(10, qrx::mfndWord(qrx::kMfndIdentifyDevice));
    }
    command.debug();
    Page page{};
    if (const int status = command.receive(page)) {
        return qrx::reportCode(status, "command");
    }
    if (scan.has('r')) {
        qrx::print("\n");
        dumpContent(page.data(), static_cast<int>(page.size()));
    }
    if (wish.child) {
        showChildren(page);
    } else {
        showDevice(*qrx::wire::read<Capabilities>(page));
    }
    return qrx::reportCode(0, "command");
}
