// `ns`: its options, and which action they ask for.
#include "cli/Functions/simple/simple_ns.h"

#include <cstddef>
#include <cstring>

#include "api/src/interface/globals.h"
#include "api/src/interface/wire/nvme.h"
#include "cli/Functions/simple/ns_actions.h"
#include "cli/Functions/simple/ns_controllers.h"
#include "cli/Functions/simple/ns_table.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_ns_help[] =
    "\n"
    "ns -p | -a <init -i <pdid> -n <number of namespace> | [attach|detach] [-i <ns id> | -e <eui64>] -d <ctrl id list> "
    "> [-h]\n"
    "\n"
    "Options:\n"
    "    -p,  --primary <ctrl id>\n"
    "           show primary controller id\n"
    "    -a,  --actions init, attach and detach.\n"
    "           init, initial namespace for specific instance(JBOF only)\n"
    "           attach, attach namespace(Windows not support)\n"
    "           detach, detach namespace(Windows not support)\n"
    "    -i,  --id <pd id | ns id >\n"
    "           For init action, need input one pd id\n"
    "    -e,  --EUI64 <ns unique identifier>\n"
    "           Notice: only support attached namespace\n"
    "    -n,  --nn <number of namespace>\n"
    "           For init action, need input number of namespace\n"
    "    -d,  --id <controller ids>\n"
    "           For attach and detach action, input multiple controller ids, use ',' to separate\n"
    "    --list\n"
    "        Information of all namespace which NVMe controller report to OS.\n"
    "           \n"
    "    -h,  --help\n"
    "Examples:\n"
    "    ns -a init -i 0 -n 1\n"
    "    init pd id 0 with 1 namespace\n"
    "\n"
    "    ns -a attach -i 1 -d 0\n"
    "    attach namespace id 1 to controller 0\n"
    "\n"
    "    ns -a detach -i 1 -d 0,1\n"
    "    detach namespace id 1 from controller 0 and 1\n"
    "\n"
    "    ns -a detach -e 00504325385b7601 -d 0,1\n"
    "    detach namespace EUI64 id 00504325385b7601 from controller 0 and 1\n"
    "\n"
    "    ns -p ctrl\n"
    "    show current primary controller id.\n"
    "\n"
    "    ns --list\n"
    "    show current namespace information.\n"
    "\n";

namespace {

using qrx::complain;
using qrx::take;
using qrx::ns::readShifted;
using qrx::ns::Wish;

constexpr char kLetters[] = "a:i:e:n:s:c:l:d:p:\x01:h";
// Letters of the options that have none.
constexpr char kWaive = 'w';
constexpr char kList = 'L';
constexpr option kLong[] = {
    {"waiveconfirmation", no_argument, nullptr, kWaive},  // taken, and not read
    {"action", required_argument, nullptr, 'a'},
    {"id", required_argument, nullptr, 'i'},
    {"EUI64", required_argument, nullptr, 'e'},
    {"nn", required_argument, nullptr, 'n'},
    {"sharing", required_argument, nullptr, 's'},
    {"cid", required_argument, nullptr, 'c'},
    {"size", required_argument, nullptr, 'l'},
    {"ctrllist", required_argument, nullptr, 'd'},
    {"primary", required_argument, nullptr, 'p'},
    {"list", no_argument, nullptr, kList},
    {"unused", no_argument, nullptr, 'h'},
    {"table", no_argument, nullptr, 'h'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr qrx::Keyword kActions[] = {{"init", qrx::ns::kInit},
                                     {"share", qrx::ns::kShare},
                                     {"create", qrx::ns::kCreate},
                                     {"attach", qrx::ns::kAttach},
                                     {"detach", qrx::ns::kDetach}};
constexpr qrx::Keyword kYesNo[] = {{"yes", 1}, {"no", 0}};
constexpr qrx::Keyword kPrimary[] = {{"ctrl", 0}};
constexpr std::size_t kEui64Length = 16;

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'a':
        return take(qrx::keyword(word, kActions), wish.action) || complain("-a : invalid action '%s'.\n", word);
    case 'i': {
        // A PD id, and shifted, only where its action is already known.
        const bool isPd = wish.action == qrx::ns::kInit || wish.action == qrx::ns::kCreate;
        wish.idWord = word;
        return readShifted(word, isPd ? qrx::idBase() : 0, wish.id, "-i: id should be a number\n", qrx::ns::kInvalidId);
    }
    case 'e':
        wish.eui64 = word;
        return std::strlen(word) == kEui64Length || complain("-e : invalid EUI64 '%s'.\n", word);
    case 'n':
        return take(qrx::readNumber(word), wish.count) || complain("-n: number of namespace should be a number\n");
    case 's':
        return take(qrx::keyword(word, kYesNo), wish.shared) || complain("-s : invalid option '%s'.\n", word);
    case 'c': {
        int id = 0;
        return readShifted(word, qrx::idBase(), id, "-c: controller id should be a number\n",
                           qrx::ns::kInvalidController) &&
               (take(qrx::narrowId<QRX_U8>(id), wish.cid) || complain(qrx::ns::kInvalidController, word));
    }
    case 'l':
        wish.gigabytes = qrx::strtoul32(word, 10);
        return isNumber(word) || complain("-l: Invalid NS size\n");
    case 'd':
        return qrx::ns::addControllers(word, qrx::idBase(), wish.controllers);
    case 'p':
        return qrx::keyword(word, kPrimary) || complain("-p : invalid value '%s'\n", word);
    default:
        return true;
    }
}

}  // namespace

int doSNS(int argc, char** argv, PCommand_Info pCmdInfo)
{
    const qrx::NsTable table;
    if (qrx::recordOf(gCurrentAdapter).MaxNS != 0) {
        initNSInfoStrcuture();
        getHostID();
    }
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "aienscldpwL", 0,
                                             [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("ainscldpLe")) {
        return qrx::duplicateOption(0);
    }
    if (scan.has('a')) {
        return qrx::ns::act(pCmdInfo, scan, wish);
    }
    if (scan.has('p')) {
        return qrx::ns::showPrimary(qrx::kIdentifyController, offsetof(nvme_id_ctrl, cntlid));
    }
    if (scan.has(kList)) {
        showNSInfo();
        return 0;
    }
    return qrx::refuse(1, "Error action!\n");
}
