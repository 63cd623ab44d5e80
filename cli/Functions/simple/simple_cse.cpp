// `cse`.
#include "cli/Functions/simple/simple_cse.h"

#include <array>
#include <cstddef>

#include "api/src/interface/agent.h"
#include "api/src/interface/wire/cse.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/list.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/utility.h"

const char simple_cse_sh[] = ":For enable or disable opcodes of physical and virtual functions";
const char simple_cse_help[] =
    "\n"
    "cse [-a <on|off> -c <PF|VF> -l <OPcodes> | --list | -h ]\n"
    "\n"
    "Options:\n"
    "    -a, --action <on|off>\n"
    "        on, enable opcodes\n"
    "        off, disable opcodes\n"
    "    -c, --ctl <PF|VF>\n"
    "        PF, of physical functions (DEFAULT)\n"
    "        VF, of virtual functions\n"
    "    -l, --opcode <OPcodes>\n"
    "        Opcodes, separated by commas.\n"
    "        Accept value by decimal or hexadecimal.\n"
    "    --list\n"
    "        Show opcodes that the controller supports.\n"
    "    -h, --help\n"
    "Examples:\n"
    "    cse -a on -c VF -l 0xc2,0xc3,0xc7\n"
    "    Enable opcodes 0xc2, 0xc3 and 0xc7 of virtual functions\n"
    "\n"
    "    cse -a off -c PF -l 0xc3\n"
    "    Disable opcode 0xc3 of physical functions\n"
    "\n"
    "    cse --list\n"
    "    Show opcodes that the controller supports\n"
    "\n";

namespace {

using qrx::complain;
using qrx::take;

constexpr int kList = 'L';  // the long option alone
constexpr char kLetters[] = "a:c:l:\x01:h";
constexpr option kLong[] = {
    {"action", required_argument, nullptr, 'a'},
    {"ctl", required_argument, nullptr, 'c'},
    {"opcode", required_argument, nullptr, 'l'},
    {"list", no_argument, nullptr, kList},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};
constexpr qrx::Keyword kActions[] = {{"on", kCseOn}, {"off", 0}};
constexpr qrx::Keyword kFunctions[] = {{"PF", 0}, {"VF", kCseVirtualFunctions}};

constexpr QRX_U8 kSubEnable = 0x16;

struct Wish {
    QRX_U32 action = 0;
    QRX_U32 functions = 0;
    NVME_SetCmd_Support opcodes{};
};

bool addOpcodes(const char* list, NVME_SetCmd_Support& opcodes)
{
    return qrx::eachElement(list, [&](const char* element) {
        const auto opcode = qrx::readHexOrNumber(element);
        if (!opcode) {
            return complain("-l : OPcode should be a number\n");
        }
        if (*opcode < 0 || static_cast<QRX_U32>(*opcode) > kCseOpcodeLast) {
            return complain("invalid OPcode '%s', out of range\n", element);
        }
        if (opcodes.total_cnt == kCseOpcodesMax) {
            return complain("-l : at most %zu OPcodes\n", kCseOpcodesMax);
        }
        opcodes.opcode[opcodes.total_cnt++] = static_cast<QRX_U16>(*opcode);
        return true;
    });
}

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'a':
        return take(qrx::keyword(word, kActions), wish.action) || complain("-a : invalid action '%s'.\n", word);
    case 'c':
        return take(qrx::keyword(word, kFunctions), wish.functions) || complain("-c : invalid action '%s'.\n", word);
    case 'l':
        return addOpcodes(word, wish.opcodes);
    default:
        return true;  // --list
    }
}

int enable(const Wish& wish)
{
    constexpr std::size_t kShown = 1024;  // bytes of the data, for who debugs
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    (void)qrx::wire::write(page, 0, wish.opcodes);  // it fits
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubEnable, 0, kVendorWrite)
                             .word(10, qrx::kWholePage)
                             .word(14, wish.action | wish.functions);
    command.debug();
    if (dbg_enable != 0) {
        qrx::print("Total Cnt= %02x\n", wish.opcodes.total_cnt);
        _showRAWData(page.data(), kShown);
    }
    return qrx::reportCode(command.transmit(page), "cse command");
}

// Prints the opcodes of one half of the log, ten to a line. Returns how many there are.
int showOpcodes(const char* heading, std::span<const QRX_U8> page, std::size_t firstEntry)
{
    constexpr unsigned kOpcodes = 256;
    constexpr int kPerLine = 10;
    qrx::print("%s:\n      ", heading);
    int count = 0;
    for (unsigned opcode = 0; opcode < kOpcodes; ++opcode) {
        const auto entry = qrx::wire::read<NVME_GetLOG_CSE>(page, (firstEntry + opcode) * sizeof(NVME_GetLOG_CSE));
        if (entry && entry->CSUPP != 0) {
            qrx::print("0x%02x ", opcode);
            if (++count % kPerLine == 0) {
                qrx::print("\n      ");
            }
        }
    }
    return count;
}

}  // namespace

int ShowSupportOpcode()
{
    constexpr QRX_U8 kGetLogPage = 2;
    constexpr QRX_U32 kEveryNamespace = 0xFFFFFFFF;
    constexpr std::size_t kFirstIoEntry = 256;
    QRX_U32 wholeCommandsLog = 0x3FF0005;  // CDW10: the log's id, and above it dwords less 1
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    const auto status = static_cast<int>(QRX_Adapter_Admin(gCurrentAdapter, kGetLogPage, kEveryNamespace,
                                                           &wholeCommandsLog, 1, nullptr, 0, page.data(), page.size()));
    if (status != 0) {
        return qrx::refuse(status, "\nFailed to get commands supported and effects log.\n");
    }
    qrx::print("Opcodes Supported List(hexadecimal):\n    ");
    int count = showOpcodes("Admin Opcodes", page, 0);
    qrx::print("\n    ");
    count += showOpcodes("I/O Opcodes", page, kFirstIoEntry);
    return qrx::refuse(0, "\n\nTotal # of support OPcode:    %d\n", count);
}

int doScse(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "aclL", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("aclL")) {
        return qrx::duplicateOption();
    }
    if (scan.has('a')) {
        return enable(wish);
    }
    return scan.has(kList) ? ShowSupportOpcode() : qrx::optionRequired(pCmdInfo, 'a');
}
