// The text form of a virtual disk.
#include <algorithm>

#include "sim/firmware/describe.h"

namespace qrx::sim {

namespace {

constexpr auto kVdStatusWords = std::to_array<JsonWord>({
    {kVdFunctional, "functional"},
    {kVdDegrade, "degraded"},
    {kVdDeleted, "deleted"},
    {kVdMissing, "missing"},
    {kVdOffline, "offline"},
    {kVdPartiallyOptimal, "partially-optimal"},
    {kVdForeign, "foreign"},
    {kVdImportable, "importable"},
    {kVdNotImportable, "not-importable"},
    {kVdInitialization, "initialization"},
    {kVdRebuilding, "rebuilding"},
    {kVdErrorHandling, "error-handling"},
});

constexpr auto kRaidModeWords = std::to_array<JsonWord>({
    {kRaid0, "raid0"},
    {kRaid1, "raid1"},
    {kJbod, "jbod"},
    {kRaid10, "raid10"},
    {kRaid5, "raid5"},
    {kRaid50, "raid50"},
    {kRaid6, "raid6"},
    {kRaid60, "raid60"},
});

template <class Io>
void check_members(Io& io, const VirtualDisk& vd, const Controller& controller)
{
    for (std::size_t i = 0; i < vd.members.size(); ++i) {
        const QRX_U16 pd = vd.members[i];
        if (pd == kMissingMember) {
            continue;
        }
        const std::string name = "PD " + std::to_string(pd);
        io.check(controller.find_drive(pd) != nullptr, "members",
                 "names " + name + ", which is not among the drives; " + std::to_string(kMissingMember) +
                     " marks a missing one");
        io.check(std::find(vd.members.begin(), vd.members.begin() + static_cast<std::ptrdiff_t>(i), pd) ==
                     vd.members.begin() + static_cast<std::ptrdiff_t>(i),
                 "members", "names " + name + " twice");
        for (const VirtualDisk& other : controller.virtual_disks) {
            io.check(&other == &vd || !other.uses(pd), "members",
                     "names " + name + ", which VD " + std::to_string(other.id) + " already uses");
        }
    }
}

QRX_U64 default_sectors(const VirtualDisk& vd, const Controller& controller)
{
    QRX_U64 share = 0;
    for (const QRX_U16 pd : vd.members) {
        const Drive* const drive = controller.find_drive(pd);
        if (drive != nullptr && (share == 0 || drive->sectors < share)) {
            share = drive->sectors;
        }
    }
    return usable_sectors(vd.raid_mode, vd.members.size(), vd.parity_disks, share);
}

}  // namespace

template <class Io>
void describe(Io& io, VirtualDisk& vd, const Controller& controller)
{
    io.number("id", vd.id, 0, kMaxVdId);
    if (Io::kReads) {
        vd.name = "VD_" + std::to_string(vd.id);
        const auto& others = controller.virtual_disks;
        io.check(io.has("id"), "id", "is missing");
        io.check(
            std::none_of(others.begin(), others.end() - 1, [&](const VirtualDisk& other) { return other.id == vd.id; }),
            "id", "is the id of an earlier virtual disk");
        io.check(controller.adapter.raid(), "id",
                 "makes no sense: without the feature \"raid\" there are no virtual disks");
    }
    io.text("name", vd.name, sizeof(NVME_VD_Info::Name));
    io.code("status", vd.status, kVdStatusWords);
    io.flag("importable", vd.importable);
    io.code("raid_mode", vd.raid_mode, kRaidModeWords);
    io.numbers("members", vd.members, kVdMembersMax, kAny16);
    io.number("parity_disks", vd.parity_disks, 0, kAny8);
    io.number("stripe", vd.stripe, 0, kAny16);
    if (Io::kReads) {
        check_members(io, vd, controller);
        if (const Drive* const first = vd.members.empty() ? nullptr : controller.find_drive(vd.members.front())) {
            vd.sector_size = first->sector_size;
        }
        vd.sectors = default_sectors(vd, controller);
    }
    io.number("sectors", vd.sectors, 0, kAny64);
    io.number("sector_size", vd.sector_size, 0, kAny16 + 1);
    io.flag("initialized", vd.initialized);
    describe_activity(io, vd.activity);
    const bool rebuilds = vd.activity && vd.activity->type == QRX_NVME_BGA_TYPE_VD_REBUILD;
    if (Io::kReads && rebuilds && !vd.members.empty()) {
        vd.rebuild_target = vd.members.back();
    }
    io.number("rebuild_target", vd.rebuild_target, 0, kAny16);
    io.check(vd.rebuild_target == kMissingMember || (rebuilds && vd.uses(vd.rebuild_target)), "rebuild_target",
             "names a drive that is no member of a virtual disk in rebuild; " + std::to_string(kMissingMember) +
                 " stands for none");
}

template void describe(JsonReader&, VirtualDisk&, const Controller&);
template void describe(JsonWriter&, VirtualDisk&, const Controller&);

}  // namespace qrx::sim
