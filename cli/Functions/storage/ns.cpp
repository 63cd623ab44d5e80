#include "cli/Functions/storage/ns.h"

#include <cstddef>

#include "api/src/interface/globals.h"
#include "api/src/interface/pd.h"
#include "api/src/interface/vd.h"
#include "api/src/interface/wire/primary.h"
#include "cli/Functions/simple/ns_actions.h"
#include "cli/Functions/simple/ns_controllers.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/read_one.h"

const char ns_help[] = R"(
ns -l ctrl | -a <attach|detach> -i <NS id> -d <ctrl id list> [-h]

Options:
    -l, --list ctrl
        Show primary controller id.
    -a, --action <attach|detach>
        attach, attach namespace
        detach, detach namespace
    -i, --nsid <NS id>
        Namespace id.
    -d <ctrl id list>
        For attach and detach action, input multiple controller ids, use ',' to separate
    -h, --help

Examples:
    ns -l ctrl
    Show primary controller id.

    ns -a attach -i 1 -d 0
    Attach namespace id 1 to controller 0.

    ns -a detach -i 1 -d 0,1
    Detach namespace id 1 from controller 0 and 1.

)";

const char ns_sh[] = ":For attaching and detaching namespaces.";

namespace {

using qrx::complain;
using qrx::take;

constexpr char kLetters[] = "a:i:d:s:l:\x01:h";  // -s shows the help
constexpr option kLong[] = {
    {"action", required_argument, nullptr, 'a'},
    {"nsid", required_argument, nullptr, 'i'},
    {"control id", required_argument, nullptr, 'd'},
    {"list", required_argument, nullptr, 'l'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr qrx::Keyword kActions[] = {{"attach", qrx::ns::kAttach}, {"detach", qrx::ns::kDetach}};
constexpr qrx::Keyword kLists[] = {{"ctrl", 0}};

struct Wish {
    int action = -1;
    int nsid = 0;
    NVME_NS_ATTACHMENT_PRP controllers{};
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'a':
        return take(qrx::keyword(word, kActions), wish.action) || complain("-a : invalid action '%s'\n", word);
    case 'i':
        if (!take(qrx::readNumber(word), wish.nsid)) {
            return complain("-i: Namespace id should be a number\n");
        }
        return wish.nsid > 0 || complain("invalid namespace id %d\n", wish.nsid);
    case 'd':
        return qrx::ns::addControllers(word, 0, wish.controllers);
    default:
        return qrx::keyword(word, kLists) || complain("-l : invalid list '%s'\n", word);
    }
}

template <class Request>
int countOf(QRX_U32 (*ask)(QRX_U8, Request*), int range)
{
    int count = 0;
    Request request{};
    for (int id = 0; id < range; ++id) {
        count += qrx::readOne(ask, static_cast<QRX_U16>(id), request) == 0 ? 1 : 0;
    }
    return count;
}

// Whether there is a disk that could have a namespace; tells when not.
bool hasDisks()
{
    if (qrx::isJbof(qrx::recordOf(gCurrentAdapter))) {
        return getPDCount() != 0 || complain("No physical disk is found.\n");
    }
    return getVDCount() != 0 || complain("No virtual disk is found.\n");
}

int attachOrDetach(PCommand_Info row, const qrx::OptionScan& scan, Wish& wish)
{
    if (const auto result = qrx::requireOptions(scan, row, "id")) {
        return *result;
    }
    const bool attaches = wish.action == qrx::ns::kAttach;
    const int status = qrx::ns::sendAttachment(attaches, static_cast<QRX_U32>(wish.nsid), wish.controllers);
    if (status == 0) {
        qrx::print("%s namespace success\n", qrx::ns::attachmentWord(attaches));
    }
    return status;
}

}  // namespace

int doNS(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "aidl", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("aidl")) {
        return qrx::duplicateOption(0);
    }
    if (!scan.has('a') && !scan.has('l')) {
        return qrx::optionRequired(pCmdInfo, 'a');
    }
    if (!qrx::ns::hasAttachment() || !hasDisks()) {
        return 0;
    }
    if (qrx::recordOf(gCurrentAdapter).MaxNS == 0) {
        return qrx::refuse(0, "Get MaxNS from NVMe Controller info fail.\n");
    }
    return scan.has('a') ? attachOrDetach(pCmdInfo, scan, wish)
                         : qrx::ns::showPrimary(qrx::kIdentifyPrimary, offsetof(_Prim_cntl_cap, cntlid));
}

int getVDCount()
{
    return countOf(QRX_VD_GetInfo, qrx::recordOf(gCurrentAdapter).MaxVD);
}

int getPDCount()
{
    const NVME_Adapter_Info& controller = qrx::recordOf(gCurrentAdapter);
    return countOf(QRX_PD_GetInfo, controller.MaxPD * controller.PortCount);
}
