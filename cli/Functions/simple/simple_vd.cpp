// `vd`. Whether the disks fit the RAID mode is the firmware's judgement; only the deletion of a virtual disk that
// carries the running system is refused here.
#include "cli/Functions/simple/simple_vd.h"

#include "api/src/interface/globals.h"
#include "api/src/interface/vd.h"
#include "cli/Functions/simple/vd_command.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_vd_help[] =
    "\n"
    "vd <-a create -r <0|1|JBOD> -d <physical disk id list>  [-b <128|256|512>] | delete [-i vd id]>[-h]\n"
    "\n"
    "Options:\n"
    "    -i,  --vd_id.\n"
    "    -a,  --action create and delete VD.\n"
    "           create, create VD with specific RAID mode and stripe block size\n"
    "           delete, delete VD with specific VD id.\n"
    "    -r,  --raid mode <0|1|JBOD> RAID level.\n"
    "           Now just support raid 0, raid 1, raid 10 and JBOD.\n"
    "           The free PD cannot be seen as OS disk until it is created as JBOD.\n"
    "           The first name space of JBOD disk can be seen in OS.\n"
    "    -d,  --pdid <physical disk id list> Physical disk IDs used to create the VD.\n"
    "           separated by commas.\n"
    "    -b,  --stripe block size <128|256|512>\n"
    "           (DEFAULT:128) stripe block size in KB unit.\n"
    "    -h,  --help\n"
    "Examples:\n"
    "    vd -a create -r 0 -d 0,1\n"
    "    Create a RAID0 VD using disk 0, 1 with creating 1 namespaces\n"
    "\n"
    "    vd -a create -r JBOD -d 0  \n"
    "    Create a JBOD VD using disk 0\n"
    "\n"
    "    vd -a create -r 1 -d 0,1  \n"
    "    Create a RAID 1 VD using disk 0, 1 with creating 1 namespaces\n"
    "\n"
    "    vd -a create -r 1 -d 0,1 -b 512 \n"
    "    Create a RAID 1 VD using disk 0, 1 and stripe block size is 512 KB\n"
    "\n"
    "    vd -a delete -i 0\n"
    "    delete VD id 0.\n"
    "\n";

namespace {

using qrx::complain;
using qrx::take;

constexpr char kLetters[] = "a:i:r:d:b:\x01:h";
constexpr option kLong[] = {
    {"action", required_argument, nullptr, 'a'},
    {"vd_id", required_argument, nullptr, 'i'},
    {"raidmode", required_argument, nullptr, 'r'},
    {"pdid", required_argument, nullptr, 'd'},
    {"sbs", optional_argument, nullptr, 'b'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Action { kNoAction, kCreate, kDelete };
constexpr qrx::Keyword kActions[] = {{"create", kCreate}, {"delete", kDelete}};

constexpr std::int32_t kZeroAgain = 255;  // another way to write PD 0

struct Wish {
    int action = kNoAction;
    int id = 0;
    QRX_U8 mode = 0;
    QRX_U8 stripe = 0;
    QRX_U32 members = 0;  // bit n: PD n
};

// Adds the ids of a list to the bitmap; false where one is none of a PD.
bool addMembers(const char* list, QRX_U32& members)
{
    return qrx::vd::eachPd(list, [&](std::int32_t id) {
        const std::int32_t pd = id == kZeroAgain ? 0 : id;
        if (pd >= static_cast<std::int32_t>(kVdMembersMax)) {
            return false;
        }
        members |= 1U << static_cast<unsigned>(pd);
        return true;
    });
}

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'a':
        return take(qrx::keyword(word, kActions), wish.action) || complain("-a : invalid action '%s'.\n", word);
    case 'i':
        if (!take(qrx::readNumber(word), wish.id)) {
            return complain("-i : invalid vd id '%s'.\n", word);
        }
        wish.id -= qrx::idBase();
        return wish.id >= 0 || complain("-i : invalid id '%s'\n", word);
    case 'r':
        return qrx::vd::readMode(word, wish.mode);
    case 'd':
        return addMembers(word, wish.members) || complain("-d : invalid PD ID '%s'\n", word);
    default:
        return qrx::vd::readStripe(word, wish.stripe);
    }
}

int create(const Wish& wish)
{
    return qrx::vd::carryOut(qrx::vd::createCommand(wish.mode, wish.stripe).word(13, wish.members).word(14, 0));
}

int remove(const Wish& wish)
{
    const auto id = static_cast<QRX_U16>(wish.id);
    if (QRX_VD_Has_OS(gCurrentAdapter, id, qrx::recordOf(gCurrentAdapter).MaxNS) == kVdHasOs) {
        return qrx::refuse(0, "\nUnable to delete VD %d. Because it contains a OS volume.\n", wish.id + qrx::idBase());
    }
    return qrx::vd::carryOut(qrx::vd::deleteCommand(id).word(13, 0).word(14, 0));
}

}  // namespace

int doSVD(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "airdb", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("iadb")) {
        return qrx::duplicateOption();
    }
    switch (wish.action) {
    case kCreate:
        if (!scan.has('r')) {
            return qrx::optionRequired(pCmdInfo, 'r');
        }
        return scan.has('d') ? create(wish) : qrx::optionRequired(pCmdInfo, 'd');
    case kDelete:
        return scan.has('i') ? remove(wish) : qrx::optionRequired(pCmdInfo, 'i');
    default:
        return qrx::refuse(static_cast<int>(scan.count('r')), "Error action!\n");
    }
}
