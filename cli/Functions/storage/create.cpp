// `create`.
#include "cli/Functions/storage/create.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "api/src/interface/globals.h"
#include "api/src/interface/pd.h"
#include "api/src/interface/vd.h"
#include "cli/Functions/simple/vd_command.h"
#include "cli/Functions/storage/mode_rules.h"
#include "cli/Functions/storage/namespace_sizes.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/name.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/raid_only.h"
#include "cli/Public/frame/read_one.h"

const char create_help[] =
    "\n"
    "create -d <physical disk id list> -r <0|1|10|JBOD> [-n <name>] [-i <quick|none>] [-b <128|256|512>] [-h]\n"
    "\n"
    "Options:\n"
    "    -n, --name <name>\n"
    "        Name of the VD, at most 16 digits, letters, blanks and underscores.\n"
    "        (DEFAULT:VD_<number>, with the first number that is free)\n"
    "    -r, --raidmode <0|1|10|JBOD>\n"
    "        RAID level.\n"
    "    -p, --paritydisks <number of parity disks>\n"
    "        Only with RAID 6 and RAID 60.\n"
    "    -d, --pdid <physical disk id list>\n"
    "        Physical disk IDs used to create the VD, separated by commas.\n"
    "    -i, --init <quick|none>\n"
    "        (DEFAULT:quick) initialization of the VD.\n"
    "    -b, --stripblocksize <128|256|512>\n"
    "        (DEFAULT:128) stripe block size in KB unit.\n"
    "    -x, --xsize <namespace size list>\n"
    "        (DEFAULT:0) sizes of the namespaces in GB, separated by commas.\n"
    "        0 is all that the others leave. An empty list is asked for.\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    create -d 0,1 -r 1\n"
    "    Create a RAID 1 VD using disk 0, 1 with one namespace\n"
    "\n"
    "    create -d 0,1 -r 0 -n data -b 512 -x 20,0\n"
    "    Create a RAID 0 VD with the name data and two namespaces, of which the first has 20 GB\n"
    "\n";

namespace {

using qrx::complain;
using qrx::take;

constexpr char kLetters[] = "n:r:p:d:i:b:x:\x01:h";
constexpr option kLong[] = {
    {"name", required_argument, nullptr, 'n'},
    {"raidmode", required_argument, nullptr, 'r'},
    {"paritydisks", required_argument, nullptr, 'p'},
    {"pdid", required_argument, nullptr, 'd'},
    {"init", required_argument, nullptr, 'i'},
    {"stripblocksize", required_argument, nullptr, 'b'},
    {"xsize", required_argument, nullptr, 'x'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr qrx::Keyword kInitializations[] = {{"quick", 0}, {"none", 3}};
constexpr unsigned kSmallestStripe = 256;  // in sectors, code 0
constexpr QRX_U16 kNamespacesMax = 32;

struct Wish {
    NVME_Create_VD vd{};
    std::optional<std::string> name;
    std::optional<std::int32_t> parity;
    std::string sizes = "0";  // of the namespaces: one, as large as the virtual disk
};

// An id that is there already is dropped in silence.
bool readMembers(const char* list, NVME_Create_VD& vd)
{
    std::vector<QRX_U16> ids;
    const bool good = qrx::vd::eachPd(list, [&](std::int32_t id) {
        const auto pd = qrx::narrowId(id);
        if (pd && ids.size() <= kVdMembersMax && std::find(ids.begin(), ids.end(), *pd) == ids.end()) {
            ids.push_back(*pd);
        }
        return pd.has_value();
    });
    if (!good) {
        return complain("-d : invalid PD ID '%s'\n", list);
    }
    if (ids.size() > kVdMembersMax) {
        return complain("-d : number of PDs should be no more than %d\n", static_cast<int>(kVdMembersMax));
    }
    std::fill(std::copy(ids.begin(), ids.end(), std::begin(vd.PDIDs)), std::end(vd.PDIDs), QRX_U16{0});
    vd.MemberCount = static_cast<QRX_U8>(ids.size());
    return true;
}

bool readSizes(const char* word, std::string& sizes)
{
    std::array<char, kNamespaceListMax + 8> text{};  // what is cut off a longer one does not make it short enough
    if (qrx::noQuoteCopy(text, word) != 0) {
        return false;
    }
    sizes = text.data();
    return sizes.size() <= kNamespaceListMax ||
           complain("-x : length of namespace size list should be no more than %d characters\n",
                    static_cast<int>(kNamespaceListMax));
}

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'n':
        wish.name = qrx::readName(word);
        return wish.name.has_value();
    case 'r':
        return qrx::vd::readMode(word, wish.vd.RAIDMode);
    case 'p':
        wish.parity = qrx::readNumber(word);
        return wish.parity || complain("-p : invalid number of parity disks '%s'\n", word);
    case 'd':
        return readMembers(word, wish.vd);
    case 'i':
        return take(qrx::keyword(word, kInitializations), wish.vd.InitializationOption) ||
               complain("-i : invalid initialization mode '%s'\n", word);
    case 'b': {
        QRX_U8 code = 0;
        const bool good = qrx::vd::readStripe(word, code);
        wish.vd.StripeBlockSize = static_cast<QRX_U16>(kSmallestStripe << code);
        return good;
    }
    default:
        return readSizes(word, wish.sizes);
    }
}

// True when a disk can be a member; false after a complaint.
bool isUsable(QRX_U16 id)
{
    const int shown = id + qrx::idBase();
    NVME_PD_Info_Request pd{};
    if (qrx::readOne(QRX_PD_GetInfo, id, pd) != 0) {
        return complain("Failed to get status for PD %d\n", shown);
    }
    if ((pd.pd_info.Status & kPdAssigned) != 0) {
        return complain("assigned disk %d can not be used to create VD.\n", shown);
    }
    return (pd.pd_info.Status & kPdMediaPatrol) == 0 ||
           complain("Has BGA disk %d can not be used to create VD.\n", shown);
}

// With the number of the first virtual disk that there is not.
std::string defaultName()
{
    int number = 0xFFFF;
    for (QRX_U16 index = 0; index < qrx::recordOf(gCurrentAdapter).MaxVD; ++index) {
        NVME_VD_Info_Request vd{};
        if (qrx::readOne(QRX_VD_GetInfo, index, vd) != 0) {
            number = index + qrx::idBase();
            break;
        }
    }
    return "VD_" + std::to_string(number);
}

int create(NVME_Create_VD& vd, const std::string& sizes)
{
    NVME_PreCreate_VD room{};
    if (QRX_VD_QuerySize(gCurrentAdapter, &vd, &room) != 0) {
        return qrx::refuse(0, "\nFailed to pre-create virtual disk.\n");
    }
    if (assignNamespaceList(&vd, &room, sizes.c_str())) {
        return qrx::refuse(1, "\nNo namespace sizes, the virtual disk is not created.\n");
    }
    if (vd.NSCount > kNamespacesMax) {
        return qrx::refuse(0, "\nFailed to create virtual disk, total namespace cannot over than 32.\n");
    }
    const QRX_U32 status = QRX_VD_Create(gCurrentAdapter, &vd);
    return qrx::report(static_cast<QRX_U8>(status), "\nFailed to create virtual disk.\n",
                       "Create virtual disk successfully.\n");
}

}  // namespace

int doCreate(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    wish.vd.StripeBlockSize = kSmallestStripe;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "nrpdibx", 1,
                                             [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (qrx::refusedInJbof()) {
        return qrx::kJbofResult;
    }
    if (scan.repeated("rpdnib")) {
        return qrx::duplicateOption();
    }
    for (const char letter : {'r', 'd'}) {
        if (!scan.has(letter)) {
            (void)qrx::optionRequired(pCmdInfo, letter);
        }
    }
    if (!scan.has('r') || !scan.has('d')) {
        return 1;
    }
    const std::span members = std::span(wish.vd.PDIDs).first(wish.vd.MemberCount);
    if ((wish.name && !qrx::checkName(*wish.name)) || !qrx::vd::applyModeRule(wish.vd, wish.parity) ||
        !std::all_of(members.begin(), members.end(), isUsable)) {
        return 1;
    }
    qrx::storeName(wish.name ? *wish.name : defaultName(), wish.vd.Name);
    return create(wish.vd, wish.sizes);
}
