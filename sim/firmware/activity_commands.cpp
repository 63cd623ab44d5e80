// Background activities of virtual and physical disks: when they may start, how they are controlled, how they end.
#include <algorithm>
#include <array>

#include "sim/firmware/controller.h"
#include "sim/firmware/raid_rules.h"

namespace qrx::sim {

namespace {

// Bits of the adapter's mask of background activities.
constexpr unsigned kInitializationBit = 0;
constexpr unsigned kRebuildBit = 1;
constexpr unsigned kSynchronizationBit = 2;
constexpr unsigned kMediaPatrolBit = 4;

std::string percent(const BackgroundActivity& activity)
{
    return std::to_string(activity.percentage()) + "%";
}

std::string pd_name(QRX_U32 pd)
{
    return "PD " + std::to_string(pd);
}

// The ring's word for what became of an activity; empty for an activity that it does not know.
std::string word_of(QRX_U8 type, const char* end)
{
    const std::string word = activity_word(type);
    return word.empty() ? word : word + end;
}

bool redundant(const VirtualDisk& vd)
{
    const RaidRule* const rule = find_raid_rule(vd.raid_mode);
    return rule != nullptr && rule->redundant();
}

// Pauses, resumes or aborts an activity, but for the aborting itself.
Verdict control(std::optional<BackgroundActivity>& activity, QRX_U16 operation)
{
    switch (operation) {
    case QRX_NVME_BGA_OPERATION_PAUSE:
    case QRX_NVME_BGA_OPERATION_RESUME:
    case QRX_NVME_BGA_OPERATION_ABORT:
        break;
    default:
        return Verdict::kInvalidAction;
    }
    if (!activity || (operation == QRX_NVME_BGA_OPERATION_PAUSE && !activity->running())) {
        return Verdict::kNoActivityRuns;
    }
    if (operation == QRX_NVME_BGA_OPERATION_RESUME && activity->running()) {
        return Verdict::kActivityRuns;
    }
    if (operation != QRX_NVME_BGA_OPERATION_ABORT) {
        activity->state =
            operation == QRX_NVME_BGA_OPERATION_PAUSE ? QRX_NVME_BGA_STATUS_PAUSE : QRX_NVME_BGA_STATUS_RUNNING;
    }
    return Verdict::kGood;
}

}  // namespace

QRX_U64 Controller::share_of(const VirtualDisk& vd) const
{
    const QRX_U64 shares = usable_sectors(vd.raid_mode, vd.members.size(), vd.parity_disks, 1);
    return shares == 0 ? 0 : vd.sectors / shares;
}

bool Controller::member_lost(const VirtualDisk& vd, std::size_t index) const
{
    const Drive* const drive = find_drive(vd.members[index]);
    return drive == nullptr || drive->failed || vd.members[index] == vd.rebuild_target;
}

void Controller::update_status(VirtualDisk& vd)
{
    const RaidRule* const rule = find_raid_rule(vd.raid_mode);
    if (rule == nullptr || vd.foreign()) {
        return;
    }
    std::array<bool, kVdMembersMax> lost{};
    for (std::size_t i = 0; i < vd.members.size(); ++i) {
        lost[i] = member_lost(vd, i);
    }
    const auto marks = std::span<const bool>(lost).first(vd.members.size());
    const QRX_U8 before = vd.status;
    if (!rule->survives(marks, vd.parity_disks)) {
        if (vd.activity) {
            abort_activity(vd, "members are lost");
        }
        vd.status = kVdOffline;
    } else if (std::count(marks.begin(), marks.end(), true) == 0) {
        vd.status = kVdFunctional;
    } else {
        vd.status = vd.rebuild_target != kMissingMember ? kVdRebuilding : kVdDegrade;
    }
    if (vd.status != before) {
        switch (vd.status) {
        case kVdOffline:
            tell(Event::kVd, vd.id, "is offline", "_OFFLINE", QRX_NVME_EVT_SEVERITY_CRITICAL);
            break;
        case kVdDegrade:
            tell(Event::kVd, vd.id, "is degraded", "_DEGRADED", QRX_NVME_EVT_SEVERITY_WARNING);
            break;
        case kVdFunctional:
            tell(Event::kVd, vd.id, "is functional", "_ONLINE");
            break;
        default:
            break;
        }
    }
    update_health();
}

void Controller::update_health()
{
    constexpr QRX_U8 kReliabilityDegraded = 1U << 2;
    const bool impaired = std::any_of(virtual_disks.begin(), virtual_disks.end(), [](const VirtualDisk& vd) {
        return vd.status == kVdDegrade || vd.status == kVdRebuilding || vd.status == kVdOffline;
    });
    health.critical_warning =
        static_cast<QRX_U8>((health.critical_warning & ~kReliabilityDegraded) | (impaired ? kReliabilityDegraded : 0));
}

void Controller::start_activity(VirtualDisk& vd, QRX_U8 type)
{
    const QRX_U64 bytes = share_of(vd) * std::max<QRX_U32>(vd.sector_size, 512);
    BackgroundActivity activity;
    activity.type = type;
    activity.duration = activity_duration(type, bytes, config.rate);
    vd.activity = activity;
}

Verdict Controller::start_initialization(QRX_U32 id, QRX_U16 type)
{
    if (!adapter.raid() || (adapter.background >> kInitializationBit & 1) == 0) {
        return Verdict::kNotSupported;
    }
    VirtualDisk* const vd = vd_of(id);
    if (vd == nullptr) {
        return Verdict::kInvalidVd;
    }
    if (type != QRX_NVME_BGA_TYPE_VD_INIT_QUICK && type != QRX_NVME_BGA_TYPE_VD_INIT_BACKGROUND) {
        return Verdict::kInvalidAction;
    }
    if (vd->activity) {
        return Verdict::kActivityRuns;
    }
    if (vd->status != kVdFunctional) {
        return Verdict::kNotFunctional;
    }
    start_activity(*vd, static_cast<QRX_U8>(type));
    vd->status = kVdInitialization;
    vd->initialized = false;
    tell(Event::kVd, vd->id, std::string(activity_name(vd->activity->type)) + " started", "_INIT_START");
    return Verdict::kGood;
}

Verdict Controller::check_activity(QRX_U32 id, unsigned bit) const
{
    if (!adapter.raid() || (adapter.background >> bit & 1) == 0) {
        return Verdict::kNotSupported;
    }
    const VirtualDisk* const vd = find_virtual_disk(id);
    if (vd == nullptr) {
        return Verdict::kInvalidVd;
    }
    return vd->activity ? Verdict::kActivityRuns : Verdict::kGood;
}

Verdict Controller::check_redundant_activity(QRX_U32 id, unsigned bit) const
{
    const Verdict verdict = check_activity(id, bit);
    return verdict == Verdict::kGood && !redundant(*find_virtual_disk(id)) ? Verdict::kNotRedundant : verdict;
}

Verdict Controller::start_media_patrol(QRX_U32 id)
{
    const Verdict verdict = check_redundant_activity(id, kMediaPatrolBit);
    if (verdict != Verdict::kGood) {
        return verdict;
    }
    VirtualDisk* const vd = vd_of(id);
    if (vd->status != kVdFunctional) {
        return Verdict::kNotFunctional;
    }
    if (!vd->initialized) {
        return Verdict::kNotInitialized;
    }
    start_activity(*vd, QRX_NVME_BGA_TYPE_VD_MEDIAPATROL);
    tell(Event::kVd, vd->id, "media patrol started", "_MP_START");
    return Verdict::kGood;
}

Verdict Controller::check_rebuild_target(const VirtualDisk& vd, QRX_U32 pd) const
{
    const Verdict verdict = check_free(pd);
    if (verdict != Verdict::kGood) {
        return verdict;
    }
    const Drive& drive = *find_drive(pd);
    if (drive.sector_size != vd.sector_size) {
        return Verdict::kSectorSizeMismatch;
    }
    return drive.sectors < share_of(vd) ? Verdict::kRebuildTargetTooSmall : Verdict::kGood;
}

Verdict Controller::start_rebuild(QRX_U32 id, QRX_U32 pd)
{
    Verdict verdict = check_redundant_activity(id, kRebuildBit);
    if (verdict != Verdict::kGood) {
        return verdict;
    }
    VirtualDisk* const vd = vd_of(id);
    if (vd->status == kVdFunctional) {
        return Verdict::kFunctional;
    }
    if (vd->status == kVdOffline || vd->status == kVdMissing) {
        return Verdict::kNoRebuildSource;
    }
    std::size_t place = 0;
    while (place < vd->members.size() && !member_lost(*vd, place)) {
        ++place;
    }
    if (vd->status != kVdDegrade || place == vd->members.size()) {
        return Verdict::kNotFunctional;
    }
    verdict = check_rebuild_target(*vd, pd);
    if (verdict != Verdict::kGood) {
        return verdict;
    }
    vd->members[place] = static_cast<QRX_U16>(pd);
    vd->rebuild_target = static_cast<QRX_U16>(pd);
    start_activity(*vd, QRX_NVME_BGA_TYPE_VD_REBUILD);
    drive_of(pd)->importable = false;
    tell(Event::kVd, vd->id, "rebuild onto " + pd_name(pd) + " started", "_REBUILD_START");
    update_status(*vd);
    return Verdict::kGood;
}

Verdict Controller::start_synchronization(QRX_U32 id)
{
    const Verdict verdict = check_redundant_activity(id, kSynchronizationBit);
    if (verdict != Verdict::kGood) {
        return verdict;
    }
    VirtualDisk* const vd = vd_of(id);
    if (vd->status != kVdFunctional) {
        return Verdict::kNotFunctional;
    }
    start_activity(*vd, QRX_NVME_BGA_TYPE_VD_SYNC);
    tell(Event::kVd, vd->id, "synchronization started");
    return Verdict::kGood;
}

Verdict Controller::start_drive_patrol(QRX_U32 pd)
{
    Drive* const drive = reachable_drive(pd);
    if (drive == nullptr) {
        return Verdict::kInvalidPd;
    }
    if ((adapter.background >> kMediaPatrolBit & 1) == 0) {
        return Verdict::kNotSupported;
    }
    if (drive->failed) {
        return Verdict::kFailed;
    }
    const bool busy = std::any_of(virtual_disks.begin(), virtual_disks.end(),
                                  [&](const VirtualDisk& vd) { return vd.uses(drive->id) && vd.activity; });
    if (busy || drive->activity) {
        return Verdict::kActivityRuns;
    }
    BackgroundActivity activity;
    activity.type = QRX_NVME_BGA_TYPE_HD_MEDIAPATROL;
    activity.duration = activity_duration(activity.type, drive->bytes(), config.rate);
    drive->activity = activity;
    tell(Event::kPd, drive->id, "media patrol started");
    return Verdict::kGood;
}

Verdict Controller::control_vd_activity(QRX_U32 id, QRX_U16 operation)
{
    if (!adapter.raid()) {
        return Verdict::kNotSupported;
    }
    VirtualDisk* const vd = vd_of(id);
    if (vd == nullptr) {
        return Verdict::kInvalidVd;
    }
    const bool migrates = vd->activity && vd->activity->type == QRX_NVME_BGA_TYPE_VD_MIGRATE;
    if (migrates && operation == QRX_NVME_BGA_OPERATION_ABORT) {
        return Verdict::kInvalidAction;  // there is no way back, as its data lie in two layouts
    }
    const Verdict verdict = control(vd->activity, operation);
    if (verdict != Verdict::kGood) {
        return verdict;
    }
    if (operation == QRX_NVME_BGA_OPERATION_ABORT) {
        abort_activity(*vd, "by command", true);
        update_status(*vd);
    } else {
        tell(Event::kVd, vd->id,
             std::string(activity_name(vd->activity->type)) +
                 (operation == QRX_NVME_BGA_OPERATION_PAUSE ? " paused at " : " resumed at ") + percent(*vd->activity));
    }
    return Verdict::kGood;
}

Verdict Controller::control_pd_activity(QRX_U32 pd, QRX_U16 operation)
{
    Drive* const drive = drive_of(pd);
    if (drive == nullptr) {
        return Verdict::kInvalidPd;
    }
    const Verdict verdict = control(drive->activity, operation);
    if (verdict == Verdict::kGood && operation == QRX_NVME_BGA_OPERATION_ABORT) {
        tell(Event::kPd, drive->id, "media patrol stopped by command at " + percent(*drive->activity));
        drive->activity.reset();
    }
    return verdict;
}

void Controller::abort_activity(VirtualDisk& vd, const std::string& why, bool wanted)
{
    tell(Event::kVd, vd.id,
         std::string(activity_name(vd.activity->type)) + " stopped at " + percent(*vd.activity) + ": " + why,
         word_of(vd.activity->type, wanted ? "_ABORT" : "_TERMINATED"),
         wanted ? QRX_NVME_EVT_SEVERITY_NOTIFY : QRX_NVME_EVT_SEVERITY_WARNING);
    vd.activity.reset();
    // What a rebuild has written so far is worth nothing; its target is free again.
    std::replace(vd.members.begin(), vd.members.end(), vd.rebuild_target, kMissingMember);
    vd.rebuild_target = kMissingMember;
    if (vd.status == kVdInitialization) {
        vd.status = kVdFunctional;
    }
}

void Controller::finish_activity(VirtualDisk& vd)
{
    const QRX_U8 type = vd.activity->type;
    vd.activity.reset();
    switch (type) {
    case QRX_NVME_BGA_TYPE_VD_INIT_QUICK:
    case QRX_NVME_BGA_TYPE_VD_INIT_BACKGROUND:
        vd.initialized = vd.initialized || type == QRX_NVME_BGA_TYPE_VD_INIT_BACKGROUND;
        vd.status = vd.status == kVdInitialization ? kVdFunctional : vd.status;
        tell(Event::kVd, vd.id, std::string(activity_name(type)) + " done", word_of(type, "_COMPLETE"));
        break;
    case QRX_NVME_BGA_TYPE_VD_REBUILD:
        tell(Event::kVd, vd.id,
             vd.rebuild_target == kMissingMember ? "rebuild done"
                                                 : "rebuild onto " + pd_name(vd.rebuild_target) + " done",
             word_of(type, "_COMPLETE"));
        vd.rebuild_target = kMissingMember;
        update_status(vd);
        auto_rebuild();
        break;
    case QRX_NVME_BGA_TYPE_VD_SYNC:
    case QRX_NVME_BGA_TYPE_VD_MIGRATE:
        vd.initialized = true;  // both write its redundancy over its whole length
        tell(Event::kVd, vd.id, std::string(activity_name(type)) + " done");
        auto_rebuild();  // a migration goes on without a member that is lost
        break;
    default:
        tell(Event::kVd, vd.id, std::string(activity_name(type)) + " done", word_of(type, "_COMPLETE"));
        break;
    }
}

void Controller::auto_rebuild()
{
    if (config.auto_rebuild != 1 || !adapter.raid()) {
        return;
    }
    for (VirtualDisk& vd : virtual_disks) {
        if (vd.status != kVdDegrade || vd.activity) {
            continue;
        }
        for (const Drive& drive : drives) {
            const bool healthy = drive.health.critical_warning == 0 && !drive.importable;
            if (healthy && check_rebuild_target(vd, drive.id) == Verdict::kGood) {
                (void)start_rebuild(vd.id, drive.id);
                break;
            }
        }
    }
}

}  // namespace qrx::sim
