// `mfnd-cmdpermission`: which admin commands child controllers may carry out.
#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <string_view>

#include "api/src/interface/globals.h"
#include "cli/Functions/msft/mfnd.h"
#include "cli/Functions/msft/mfnd_number.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/free_text.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/lines.h"
#include "cli/Public/frame/list.h"
#include "cli/Public/frame/number.h"

const char mfnd_cmdpermission_sh[] = ":For getting and setting MFND operation.";

const char mfnd_cmdpermission_help[] = R"(
mfnd-cmdpermission -a <get|set> [-e <opcode>:<flag>,<opcode>:<flag>...] [-h]

Options:
    -a,  --action
         get, set
    -e,  --entry
         Opcodes of admin commands in hexadecimal, each with its flag, the maximum size is 64 bytes. Required by set.
         1 means allowed on child controllers, 0 not allowed.
    -h,  --help
Examples:
    mfnd-cmdpermission -a get
    Get permissions of admin commands on child controllers

    mfnd-cmdpermission -a set -e 0xaa:1,0xab:0
    Allow admin command 0xaa on child controllers, and don't allow 0xab

)";

namespace {

using List = _MSFT_CHILD_CTRL_PERMISSION_LIST;
using Entry = _MSFT_CHILD_CTRL_PERMISSION_ENTRY;
using Page = std::array<QRX_U8, qrx::wire::kPageSize>;

constexpr char kLetters[] = "a:e:\x01:h";
constexpr option kLong[] = {
    {"action", required_argument, nullptr, 'a'},
    {"entry", required_argument, nullptr, 'e'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr std::size_t kTextMost = 64;

struct Wish {
    bool set = false;
    std::string entries;
};

bool readEntries(const char* word, std::string& entries)
{
    const qrx::FreeText text(word);
    entries = text.view();
    return text.good() && text.fits('e', kTextMost);
}

// Takes the next part off the front of an entry. Parts without letters are passed over; an empty one is the end.
std::string nextPart(std::string_view& entry)
{
    entry.remove_prefix(std::min(entry.find_first_not_of(':'), entry.size()));
    std::string part(entry.substr(0, entry.find(':')));
    entry.remove_prefix(part.size());
    return part;
}

// One entry, such as 0xaa:1. False where a part of it is neither an opcode nor a flag, or no opcode is among them.
bool parseEntry(std::string_view text, Entry& entry)
{
    bool named = false;
    for (std::string part = nextPart(text); !part.empty(); part = nextPart(text)) {
        const bool opcode = part.find("0x") != std::string::npos;
        const char* end = nullptr;
        (void)qrx::strtol32(part.c_str(), opcode ? 16 : 10, &end);
        QRX_U32 value = 0;
        if (qrx::judgeMfndNumber(part.c_str(), opcode ? 0x100 : qrx::kMfndNoLimit, value) != qrx::MfndFault::kNone ||
            *end != '\0') {
            return false;
        }
        if (opcode) {
            entry.adminCmdOpcode = static_cast<QRX_U8>(value);
            named = true;
        } else {
            entry.flags = value & 0xF;
        }
    }
    return named;
}

int set(const std::string& entries)
{
    List list{};
    if (!prepareChildCtrlPermissionData(entries.c_str(), &list)) {
        return 1;
    }
    Page page{};
    (void)qrx::wire::write(page, 0, list);
    qrx::AdminCommand command(qrx::kMfndManage);
    command.word(10, qrx::mfndWord(qrx::kMfndSetPermissions)).flag(0).debug();
    if (const int status = command.transmit(page, qrx::kMfndParent)) {
        return qrx::refuse(1, "\nUnable to set child controller admin command permission (Error Code: 0x%x)\n",
                           static_cast<unsigned>(status));
    }
    return 0;
}

void show(unsigned index, const Entry& entry)
{
    const qrx::Lines lines(20);
    lines.number("Entry#:", index);
    lines.number("Admin Command Opcode:", entry.adminCmdOpcode);
    lines.number("Flags:", entry.flags);
    lines.text("Command on Child Ctrl:", (entry.flags & qrx::kMfndAllowed) != 0 ? "Allow" : "Not Allow");
    lines.yesNo("Changeable on Child Ctrl:", (entry.flags & qrx::kMfndChangeable) != 0);
    qrx::print("\n");
}

int get()
{
    Page page{};
    qrx::AdminCommand command(qrx::kMfndQuery);
    command.word(10, qrx::mfndWord(qrx::kMfndGetPermissions)).flag(0).debug();
    if (const int status = command.receive(page, qrx::kMfndParent)) {
        return qrx::refuse(1, "\nUnable to get child controller admin command permission (Error Code: 0x%x)\n",
                           static_cast<unsigned>(status));
    }
    const List list = *qrx::wire::read<List>(page);
    qrx::print("Command Permission:\n");
    if (list.numOfEntries == 0) {
        qrx::print("No entries exist\n");
    }
    for (unsigned i = 0; i < list.numOfEntries; ++i) {
        show(i, list.entries[i]);
    }
    return 0;
}

}  // namespace

bool prepareChildCtrlPermissionData(const char* text, _MSFT_CHILD_CTRL_PERMISSION_LIST* pChildCtrlPermissionList)
{
    List& list = *pChildCtrlPermissionList;
    const auto add = [&list](const char* element) {
        Entry entry{};
        if (list.numOfEntries == std::numeric_limits<QRX_U8>::max() || !parseEntry(element, entry)) {
            return qrx::complain("-e : invalid entry '%s', should be <opcode>:<flag> such as 0xaa:1\n", element);
        }
        list.entries[list.numOfEntries++] = entry;
        return true;
    };
    if (!qrx::eachElement(text, add)) {
        return false;
    }
    if (dbg_enable != 0) {
        qrx::print("pChildCtrlPermissionList->numOfEntries: %d\n", list.numOfEntries);
        for (int i = 0; i < list.numOfEntries; ++i) {
            qrx::print("#%d, opcode:0x%x, flags:%d\n", i, list.entries[i].adminCmdOpcode, list.entries[i].flags);
        }
    }
    return true;
}

int doMFND_cmdpermission(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "ae", 0, [&](int letter) {
            return letter == 'a' ? qrx::readMfndAction(scan.word(), wish.set) : readEntries(scan.word(), wish.entries);
        })) {
        return *result;
    }
    if (scan.repeated("ae")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('a')) {
        return qrx::optionRequired(pCmdInfo, 'a', 1);
    }
    if (wish.set && !scan.has('e')) {
        return qrx::optionRequired(pCmdInfo, 'o', 1);  // not the option's letter
    }
    return wish.set ? set(wish.entries) : get();
}
