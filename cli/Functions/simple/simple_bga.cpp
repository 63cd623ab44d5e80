// `init`, `mp` and `rebuild`: one design, and a table of what differs.
//
// Whether an activity may start is the firmware's judgement. One command stops activities of every kind, so what runs
// is read first, and a stop of another kind is not sent.
#include "cli/Functions/simple/simple_bga.h"

#include <string_view>

#include "api/src/interface/wire/bga.h"
#include "cli/Functions/simple/bga_kind.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_init_help[] = R"(
init [-a <start|stop>] -i <id> [-h]

Notice:For now, only provide VD full initialization.
       VD must be functional.

Options:
    -a, --action <start|stop>
        (DEFAULT:start) - Initialization action to be performed on VD.
    -i,--id <id>
        VD id.
    -h, --help

Examples:
    init -a start -i 0
    Start full background initialization on VD 0.

    init -a stop -i 0
    Stop full background initialization on VD 0.

)";

const char simple_mp_help[] = R"(
mp [-a <start|stop>] -i <VD id> [-h]

Options:
    -a, --action <start|stop>
        (DEFAULT:start) - media patrol action to be performed on a VD.
        only RAID1 and RAID10 support media patrol.
        If VD is not functional, media patrol may fail
    -i, --vdid <VDid>
        virtual disk id.
    -h, --help

Examples:
    mp -a start -i 0
    Start media patrol on VD 0.

    mp -a stop -i 0
    stop media patrol on VD 0.

)";

const char simple_rebuild_help[] = R"(
rebuild [-a <start|stop>] -i <vd id> -d <pd id> [-h]

Options:
    -a, --action <start|stop>
        (DEFAULT:start) - Rebuild action to be performed on VD.
    -i,--id <vd id>
        VD id.
    -d,--pdid <id>
        PD id.
    -h, --help

Examples:
    rebuild -a start -i 0 -d 0
    Start background rebuild on VD 0 with PD 0.

    rebuild -a stop -i 0
    Stop background rebuild on VD 0.

)";

namespace {

using qrx::complain;
using qrx::take;
using qrx::vendorCommand;
using qrx::bga::Kind;
using qrx::bga::kindOf;

constexpr option kAction{"action", required_argument, nullptr, 'a'};
constexpr option kVdId{"vd_id", required_argument, nullptr, 'i'};
constexpr option kPdId{"pd_id", required_argument, nullptr, 'd'};
constexpr option kLong[] = {kAction, kVdId, qrx::kOutputRow, qrx::kHelpRow, qrx::kEndRow};
constexpr option kLongWithPd[] = {kAction, kVdId, kPdId, qrx::kOutputRow, qrx::kHelpRow, qrx::kEndRow};

constexpr QRX_U8 kSubReadStatus = 2;
constexpr QRX_U8 kSubStop = 4;

// What differs between the three.
struct Activity {
    const char* letters;
    const option* rows;
    std::string_view known;
    QRX_U8 subStart;
    QRX_U16 startArgument;  // bits 31 to 16 of CDW14 of a start; with a rebuild the PD id takes its place
    Kind kind;
    const char* name;  // in a refusal
};
constexpr Activity kInit{
    .letters = "a:i:\x01:h",
    .rows = kLong,
    .known = "ai",
    .subStart = 0x06,
    .startArgument = QRX_NVME_BGA_TYPE_VD_INIT_BACKGROUND,
    .kind = Kind::kInit,
    .name = "VD initialization",
};
constexpr Activity kMediaPatrol{
    .letters = "a:i:\x01:h",
    .rows = kLong,
    .known = "ai",
    .subStart = 0x0A,
    .startArgument = 0,
    .kind = Kind::kMediaPatrol,
    .name = "media patrol",
};
constexpr Activity kRebuild{
    .letters = "a:i:d:\x01:h",
    .rows = kLongWithPd,
    .known = "aid",
    .subStart = 0x07,
    .startArgument = 0,
    .kind = Kind::kRebuild,
    .name = "VD rebuild",
};

enum Action { kStart, kStop };
constexpr qrx::Keyword kActions[] = {{"start", kStart}, {"stop", kStop}};

struct Wish {
    int action = kStart;
    QRX_U16 vd = 0;
    QRX_U16 pd = 0;
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'a':
        return take(qrx::keyword(word, kActions), wish.action) || complain("-a : invalid action '%s'.\n", word);
    case 'i':
        return take(qrx::narrowId(qrx::readId(word)), wish.vd) || complain("-i : invalid vd id '%s'.\n", word);
    default:
        // An id that the numbering does not have is told about with the letter of the other id.
        if (const auto number = qrx::readNumber(word); number && *number < qrx::idBase()) {
            return complain("-i : invalid pd id '%s'.\n", word);
        }
        return take(qrx::narrowId(qrx::readId(word)), wish.pd) || complain("-d : invalid pd id '%s'.\n", word);
    }
}

const char* wordOf(Kind kind)
{
    switch (kind) {
    case Kind::kInit:
        return "doing VD initialization";
    case Kind::kRebuild:
        return "rebuilding";
    default:
        return "doing media patrol";
    }
}

bool mayStop(const Activity& activity, QRX_U16 vdId)
{
    const auto question = vendorCommand(kGroupBga, kSubReadStatus).word(14, vdId);
    question.debug();
    qrx::Response response;
    const int status = question.receive(response.bytes());
    const auto bga = response.record<NVME_BGA_STATUS>();
    const Kind running = status == 0 && response.status() == 0 && bga ? kindOf(bga->BgaType) : Kind::kNone;
    if (running == Kind::kNone || running == activity.kind) {
        return running == activity.kind;
    }
    return complain("BGA is %s, it's not allowed to stop %s\n", wordOf(running), activity.name);
}

int send(QRX_U8 subOpcode, QRX_U16 vd, QRX_U16 argument)
{
    return qrx::carryOut(vendorCommand(kGroupBga, subOpcode).word(14, vd | static_cast<QRX_U32>(argument) << 16),
                         "cmd failed.\n", "cmd success\n");
}

int run(const Activity& activity, int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, activity.letters, activity.rows);
    Wish wish;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, activity.known, 0,
                                             [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("ia")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('i')) {
        return qrx::optionRequired(pCmdInfo, 'i');
    }
    if (wish.action == kStop) {
        return mayStop(activity, wish.vd) ? send(kSubStop, wish.vd, QRX_NVME_BGA_OPERATION_ABORT) : 0;
    }
    // Only a start that was asked for by name is held to its PD.
    if (activity.kind == Kind::kRebuild && scan.has('a') && !scan.has('d')) {
        return qrx::optionRequired(pCmdInfo, 'd');
    }
    return send(activity.subStart, wish.vd, activity.kind == Kind::kRebuild ? wish.pd : activity.startArgument);
}

}  // namespace

int doSINIT(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return run(kInit, argc, argv, pCmdInfo);
}

int doSMP(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return run(kMediaPatrol, argc, argv, pCmdInfo);
}

int doSRebuild(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return run(kRebuild, argc, argv, pCmdInfo);
}

bool isValidInitBGAStatus(QRX_U16 vdId)
{
    return mayStop(kInit, vdId);
}

bool isValidMPBGAStatus(QRX_U16 vdId)
{
    return mayStop(kMediaPatrol, vdId);
}

bool isValidRebuildBGAStatus(QRX_U16 vdId)
{
    return mayStop(kRebuild, vdId);
}
