// The earlier `init`, `mp` and `rebuild`: one design, and a table of what differs.
//
// Unlike the commands of these names they leave nothing to the firmware that they can judge themselves: the record of
// the VD and its activity are read first, and what does not fit is refused without being sent.
#include "cli/Functions/storage/bga.h"

#include <string_view>

#include "api/src/interface/agent.h"
#include "api/src/interface/bga.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/vd.h"
#include "cli/Functions/simple/bga_kind.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/raid_only.h"
#include "cli/Public/frame/read_one.h"

const char init_help[] = R"(
init [-a <start|stop>] -i <VD id> [-h]

Options:
    -a, --action <start|stop>
        (DEFAULT:start) - Initialization action to be performed on VD.
    -i, --id <VD id>
        VD id.
    -h, --help

Examples:
    init -a start -i 0
    Start full background initialization on VD 0.

    init -a stop -i 0
    Stop full background initialization on VD 0.

)";

const char init_sh[] = ":For start or stop VD initialization.";

const char mp_help[] = R"(
mp [-a <start|stop>] -i <VD id> [-h]

Options:
    -a, --action <start|stop>
        (DEFAULT:start) - media patrol action to be performed on a VD.
        only RAID1 and RAID10 support media patrol.
    -i, --vdid <VD id>
        virtual disk id.
    -h, --help

Examples:
    mp -a start -i 0
    Start media patrol on VD 0.

    mp -a stop -i 0
    Stop media patrol on VD 0.

)";

const char mp_sh[] = ":For start or stop media patrol for a virtual disk.";

const char rebuild_help[] = R"(
rebuild [-a <start|stop>] -i <VD id> -d <PD id> [-h]

Options:
    -a, --action <start|stop>
        (DEFAULT:start) - Rebuild action to be performed on VD.
    -i, --id <VD id>
        VD id.
    -d, --pdid <PD id>
        PD id, for start.
    -h, --help

Examples:
    rebuild -a start -i 0 -d 0
    Start background rebuild on VD 0 with PD 0.

    rebuild -a stop -i 0
    Stop background rebuild on VD 0.

)";

const char rebuild_sh[] = ":For start or stop VD rebuild.";

namespace {

using qrx::complain;
using qrx::refuse;
using qrx::take;
using qrx::bga::Kind;

constexpr option kAction{"action", required_argument, nullptr, 'a'};
constexpr option kId{"id", required_argument, nullptr, 'i'};
constexpr option kVdId{"vdid", required_argument, nullptr, 'i'};
constexpr option kPdId{"pdid", required_argument, nullptr, 'd'};
constexpr option kLongOfInit[] = {kAction, kId, qrx::kOutputRow, qrx::kHelpRow, qrx::kEndRow};
constexpr option kLongOfMp[] = {kAction, kVdId, qrx::kOutputRow, qrx::kHelpRow, qrx::kEndRow};
constexpr option kLongOfRebuild[] = {kAction, kId, kPdId, qrx::kOutputRow, qrx::kHelpRow, qrx::kEndRow};

constexpr QRX_U8 kStart = QRX_NVME_BGA_OPERATION_START;
constexpr QRX_U8 kStop = QRX_NVME_BGA_OPERATION_ABORT;
constexpr QRX_U8 kNoAction = 255;

struct Wish {
    QRX_U8 action = kStart;
    QRX_U16 vd = 0;
    QRX_U16 pd = 0;
};

// What a VD is and does before anything is asked of it.
struct State {
    NVME_VD_Info vd;
    NVME_BGA_STATUS activity;
};

// Why a start is not sent: what the handler returns, after the complaint. Nothing: it may be sent.
using Refusal = std::optional<int>;

Refusal refuseBusy(const State& state, QRX_U16 vd)
{
    if (state.activity.BgaType != QRX_NVME_BGA_TYPE_NONE) {
        return refuse(0, "\nVD %d is currently having background activities.\n", vd);
    }
    return std::nullopt;
}

Refusal refusePatrol(const State& state, QRX_U16 vd)
{
    if (state.activity.BgaStatus != QRX_NVME_BGA_STATUS_NONE) {
        return refuse(0, "\nVD %d is currently having background activity.\n", vd);
    }
    if (state.vd.Status != kVdFunctional) {
        return refuse(1, "\nVD %d is not an functional.\n", vd);
    }
    if (state.vd.RaidMode != kRaid1 && state.vd.RaidMode != kRaid10) {
        return refuse(1, "\nVD %d is not an redundancy.\n", vd);
    }
    return std::nullopt;
}

QRX_U32 startInit(const Wish& wish)
{
    return QRX_VD_Init(gCurrentAdapter, wish.vd, QRX_NVME_BGA_TYPE_VD_INIT_BACKGROUND);
}

QRX_U32 startPatrol(const Wish& wish)
{
    return QRX_VD_MP(gCurrentAdapter, wish.vd);
}

QRX_U32 startRebuild(const Wish& wish)
{
    NVME_Rebuild request{wish.vd, wish.pd, {}};
    return QRX_VD_Rebuild(gCurrentAdapter, &request);
}

// What differs between the three. A text of a refusal or a failure takes the VD id, and what is told of it besides.
struct Activity {
    const char* letters;
    const option* rows;
    std::string_view known;
    Kind kind;
    const char* badVd;
    int jbofResult;
    const char* noRecord;
    std::optional<int> noRecordResult;  // if not the status
    const char* noStateToStart;
    const char* noStateToStop;
    const char* otherKind;
    const char* notRunning;
    const char* stopped;
    const char* notStopped;  // and the status, and its text
    Refusal (*mayStart)(const State&, QRX_U16);
    QRX_U32 (*start)(const Wish&);
    const char* started;
    const char* notStarted;  // and, if there is a PD, its id, the status, and its text
};
constexpr Activity kInit{
    .letters = "a:i:\x01:h",
    .rows = kLongOfInit,
    .known = "ai",
    .kind = Kind::kInit,
    .badVd = "-i : VD id should be a number\n",
    .jbofResult = qrx::kJbofResult,
    .noRecord = "Unable to get info of VD %d.\n",
    .noRecordResult = std::nullopt,
    .noStateToStart = "\nUnable to get status of VD %d.\n",
    .noStateToStop = "\nUnable to get status of VD %d.\n",
    .otherKind = "\nVD %d is not initializing.\n",
    .notRunning = "\nVD %d is not having any background activity.\n",
    .stopped = "Abort successfully\n",
    .notStopped = "\nUnable to abort initialization on VD %d.\n",
    .mayStart = refuseBusy,
    .start = startInit,
    .started = "Start initialization successfully\n",
    .notStarted = "\nUnable to start initialization on VD %d.\n",
};
constexpr Activity kMediaPatrol{
    .letters = "a:i:\x01:h",
    .rows = kLongOfMp,
    .known = "ai",
    .kind = Kind::kMediaPatrol,
    .badVd = "-i : invalid vd id\n",
    .jbofResult = 1,
    .noRecord = "\nUnable to get info of VD %d.\n",
    .noRecordResult = 1,
    .noStateToStart = "\nFailed to start media patrol on VD %d\n",
    .noStateToStop = "\nFailed to stop media patrol on VD %d\n",
    .otherKind = "\nVD %d is not in media patrol\n",
    .notRunning = "\nVD %d is currently does not have any background activity.\n",
    .stopped = "Abort media patrol successfully\n",
    .notStopped = "\nUnable to abort media patrol on VD %d\n",
    .mayStart = refusePatrol,
    .start = startPatrol,
    .started = "Start media patrol successfully\n",
    .notStarted = "\nFailed to start media patrol on VD %d\n",
};
constexpr Activity kRebuild{
    .letters = "a:i:d:\x01:h",
    .rows = kLongOfRebuild,
    .known = "aid",
    .kind = Kind::kRebuild,
    .badVd = "-i : VD id should be a number\n",
    .jbofResult = qrx::kJbofResult,
    .noRecord = "\nUnable to get info of VD %d.\n",
    .noRecordResult = std::nullopt,
    .noStateToStart = "\nUnable to get status of VD %d.\n",
    .noStateToStop = "\nUnable to get status of VD %d.\n",
    .otherKind = "\nVD %d is not rebuilding.\n",
    .notRunning = "\nVD %d is not having any background activity.\n",
    .stopped = "Abort successfully\n",
    .notStopped = "\nUnable to abort rebuild on VD %d (error 0x%x: %s).\n",
    .mayStart = refuseBusy,
    .start = startRebuild,
    .started = "Start rebuild successfully\n",
    .notStarted = "\nUnable to start rebuild on VD %d with PD %d (error 0x%x: %s).\n",
};

// Stores the option's argument; false after a complaint. Ids are not shifted in one-based mode.
bool read(const Activity& activity, int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'a':
        wish.action = chooseBGAAction(word);
        return wish.action != kNoAction || complain("-a : invalid action '%s'\n", word);
    case 'i':
        return take(qrx::narrowId(qrx::readNumber(word)), wish.vd) || complain("%s", activity.badVd);
    default:
        return take(qrx::narrowId(qrx::readNumber(word)), wish.pd) || complain("-d : PD id should be a number\n");
    }
}

// What the handler has to return at once, after a complaint, or nothing: `state` is read.
std::optional<int> readState(const Activity& activity, const Wish& wish, State& state)
{
    NVME_VD_Info_Request record{};
    if (const QRX_U32 status = qrx::readOne(QRX_VD_GetInfo, wish.vd, record)) {
        return refuse(activity.noRecordResult.value_or(static_cast<int>(status)), activity.noRecord, wish.vd);
    }
    NVME_BGA_REQUEST running{};
    if (const QRX_U32 status = qrx::readOne(QRX_VD_GetBGAStatus, wish.vd, running)) {
        return refuse(static_cast<int>(status), wish.action == kStop ? activity.noStateToStop : activity.noStateToStart,
                      wish.vd);
    }
    state = {record.vd_info, running.data};
    return std::nullopt;
}

// A text without a place for the status leaves it out.
int stop(const Activity& activity, const State& state, const Wish& wish)
{
    if (qrx::bga::kindOf(state.activity.BgaType) != activity.kind) {
        return refuse(0, activity.otherKind, wish.vd);
    }
    if (state.activity.BgaStatus != QRX_NVME_BGA_STATUS_RUNNING) {
        return refuse(0, activity.notRunning, wish.vd);
    }
    if (const QRX_U32 status = QRX_VD_BGAControl(gCurrentAdapter, wish.vd, kStop)) {
        return refuse(static_cast<int>(status), activity.notStopped, wish.vd, status,
                      ErrorMessage(static_cast<QRX_U8>(status)));
    }
    return refuse(0, "%s", activity.stopped);
}

int start(const Activity& activity, const State& state, const Wish& wish)
{
    if (const Refusal refusal = activity.mayStart(state, wish.vd)) {
        return *refusal;
    }
    if (const QRX_U32 status = activity.start(wish)) {
        return refuse(static_cast<int>(status), activity.notStarted, wish.vd, wish.pd, status,
                      ErrorMessage(static_cast<QRX_U8>(status)));
    }
    return refuse(0, "%s", activity.started);
}

int run(const Activity& activity, int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, activity.letters, activity.rows);
    Wish wish;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, activity.known, 1,
                                             [&](int letter) { return read(activity, letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("ai")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('i')) {
        return qrx::optionRequired(pCmdInfo, 'i', 1);
    }
    if (activity.kind == Kind::kRebuild && wish.action == kStart && !scan.has('d')) {
        return qrx::optionRequired(pCmdInfo, 'd', 1);
    }
    if (qrx::refusedInJbof()) {
        return activity.jbofResult;
    }
    State state{};
    if (const auto result = readState(activity, wish, state)) {
        return *result;
    }
    return wish.action == kStop ? stop(activity, state, wish) : start(activity, state, wish);
}

}  // namespace

int doInit(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return run(kInit, argc, argv, pCmdInfo);
}

int doMP(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return run(kMediaPatrol, argc, argv, pCmdInfo);
}

int doRebuild(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return run(kRebuild, argc, argv, pCmdInfo);
}
