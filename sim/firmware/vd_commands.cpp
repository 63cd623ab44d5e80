// Creation, migration, deletion and import of virtual disks.
#include <algorithm>
#include <array>

#include "sim/firmware/controller.h"
#include "sim/firmware/raid_rules.h"

namespace qrx::sim {

namespace {

std::string list_of(const std::vector<QRX_U16>& ids)
{
    std::string text;
    for (const QRX_U16 id : ids) {
        text += (text.empty() ? "" : ", ") + std::to_string(id);
    }
    return text;
}

// The bit of a stripe size in the adapter's mask, or none for a size that is none.
std::optional<unsigned> stripe_bit(QRX_U16 stripe)
{
    constexpr std::array<QRX_U16, 3> kStripes{256, 512, 1024};
    const auto* const found = std::find(kStripes.begin(), kStripes.end(), stripe);
    return found == kStripes.end() ? std::nullopt : std::optional(static_cast<unsigned>(found - kStripes.begin()));
}

// Replaces the zeros of `sizes` by equal parts of what the others leave of `sectors`. False when there is not room for
// all, or one would be empty.
bool share_out(std::vector<QRX_U64>& sizes, QRX_U64 sectors)
{
    QRX_U64 left = sectors;
    for (const QRX_U64 size : sizes) {
        if (size > left) {
            return false;
        }
        left -= size;
    }
    const auto open = static_cast<QRX_U64>(std::count(sizes.begin(), sizes.end(), QRX_U64{0}));
    if (open == 0) {
        return true;
    }
    std::replace(sizes.begin(), sizes.end(), QRX_U64{0}, left / open);
    return left / open != 0;
}

}  // namespace

Verdict Controller::check_free(QRX_U32 pd) const
{
    const Drive* const drive = reachable_drive(pd);
    if (drive == nullptr) {
        return Verdict::kInvalidPd;
    }
    if (assigned(drive->id)) {
        return Verdict::kPdAssigned;
    }
    if (drive->failed) {
        return Verdict::kFailed;
    }
    return drive->activity ? Verdict::kActivityRuns : Verdict::kGood;
}

Verdict Controller::check_members(std::span<const QRX_U16> members, const VirtualDisk* own, QRX_U64& share) const
{
    for (std::size_t i = 0; i < members.size(); ++i) {
        const Verdict verdict = own != nullptr && own->uses(members[i]) ? Verdict::kGood : check_free(members[i]);
        if (verdict != Verdict::kGood) {
            return verdict;
        }
        const auto earlier = members.first(i);
        if (std::find(earlier.begin(), earlier.end(), members[i]) != earlier.end()) {
            return Verdict::kPdAssigned;
        }
    }
    share = ~QRX_U64{0};
    for (const QRX_U16 pd : members) {
        const Drive& drive = *find_drive(pd);
        share = std::min(share, drive.sectors);
        if (drive.sector_size != find_drive(members.front())->sector_size) {
            return Verdict::kSectorSizeMismatch;
        }
    }
    return Verdict::kGood;
}

Verdict Controller::plan_vd(VirtualDiskPlan& plan, VirtualDisk& made) const
{
    if (!adapter.raid()) {
        return Verdict::kNotSupported;
    }
    const RaidRule* const rule = find_raid_rule(plan.raid_mode);
    if (rule == nullptr || (adapter.raid_modes >> rule->support_bit & 1) == 0) {
        return Verdict::kInvalidRaidMode;
    }
    const auto stripe = stripe_bit(plan.stripe);
    if (!stripe || (adapter.stripes >> *stripe & 1) == 0) {
        return Verdict::kInvalidStripe;
    }
    if (!rule->takes(plan.members.size()) || plan.members.size() > adapter.max_pd_per_vd) {
        return Verdict::kInvalidPdCount;
    }
    const auto parity = rule->parity_of_group(plan.parity_disks, plan.members.size());
    if (!parity) {
        return Verdict::kInvalidParameter;
    }
    QRX_U64 share = 0;
    const Verdict verdict = check_members(plan.members, nullptr, share);
    if (verdict != Verdict::kGood) {
        return verdict;
    }
    if (virtual_disks.size() >= adapter.max_vd) {
        return Verdict::kNoId;
    }
    if (plan.namespace_sizes.size() > adapter.max_ns_per_vd) {
        return Verdict::kInvalidNamespaceCount;
    }
    if (plan.namespace_sizes.size() > free_nsids()) {
        return Verdict::kNoNamespaceSlot;
    }
    while (find_virtual_disk(made.id) != nullptr) {
        ++made.id;
    }
    made.name = plan.name.empty() ? "VD_" + std::to_string(made.id) : plan.name;
    made.raid_mode = rule->mode;
    made.members = plan.members;
    made.parity_disks = *parity;
    made.stripe = plan.stripe;
    made.sectors = usable_sectors(rule->mode, plan.members.size(), *parity, share);
    made.sector_size = find_drive(plan.members.front())->sector_size;
    made.initialized = false;
    return share_out(plan.namespace_sizes, made.sectors) ? Verdict::kGood : Verdict::kNamespaceSize;
}

Verdict Controller::create_vd(VirtualDiskPlan plan)
{
    VirtualDisk made;
    const Verdict verdict = plan_vd(plan, made);
    if (verdict != Verdict::kGood) {
        return verdict;
    }
    const QRX_U8 id = made.id;
    const RaidRule& rule = *find_raid_rule(made.raid_mode);
    for (const QRX_U16 pd : made.members) {
        drive_of(pd)->importable = false;  // what another controller left on it is gone
    }
    tell(Event::kVd, id, "created as " + std::string(rule.name) + " over PD " + list_of(made.members), "_CREATED");
    const QRX_U32 sector_size = made.sector_size == 4096 ? 4096 : 512;
    const auto place = std::find_if(virtual_disks.begin(), virtual_disks.end(),
                                    [id](const VirtualDisk& other) { return other.id > id; });
    virtual_disks.insert(place, std::move(made));
    for (const QRX_U64 sectors : plan.namespace_sizes) {
        make_namespace(kNsParentVd, id, sectors, sector_size).shared = true;
    }
    if (plan.initialize && rule.redundant()) {
        (void)start_initialization(id, QRX_NVME_BGA_TYPE_VD_INIT_QUICK);  // the virtual disk is there without it, too
    }
    return Verdict::kGood;
}

Verdict Controller::start_migration(QRX_U32 id, QRX_U8 raid_mode, QRX_U8 parity_disks, std::span<const QRX_U16> members)
{
    constexpr unsigned kMigrationBit = 3;  // of the adapter's mask of background activities
    Verdict verdict = check_activity(id, kMigrationBit);
    if (verdict != Verdict::kGood) {
        return verdict;
    }
    VirtualDisk* const vd = vd_of(id);
    if (vd->status != kVdFunctional) {
        return Verdict::kNotFunctional;
    }
    const RaidRule* const rule = find_raid_rule(raid_mode);
    if (rule == nullptr || (adapter.raid_modes >> rule->support_bit & 1) == 0) {
        return Verdict::kInvalidRaidMode;
    }
    const bool keeps_all = std::all_of(vd->members.begin(), vd->members.end(), [members](QRX_U16 pd) {
        return std::find(members.begin(), members.end(), pd) != members.end();
    });
    if (!rule->takes(members.size()) || members.size() > adapter.max_pd_per_vd || !keeps_all) {
        return Verdict::kInvalidPdCount;
    }
    const auto parity = rule->parity_of_group(parity_disks, members.size());
    if (!parity) {
        return Verdict::kInvalidParameter;
    }
    QRX_U64 share = 0;
    verdict = check_members(members, vd, share);
    if (verdict != Verdict::kGood) {
        return verdict;
    }
    const QRX_U64 sectors = usable_sectors(rule->mode, members.size(), *parity, share);
    if (sectors < vd->sectors) {
        return Verdict::kNamespaceSize;
    }
    vd->raid_mode = rule->mode;
    vd->members.assign(members.begin(), members.end());
    vd->parity_disks = *parity;
    vd->sectors = sectors;
    for (const QRX_U16 pd : members) {
        drive_of(pd)->importable = false;  // what another controller left on it is gone
    }
    start_activity(*vd, QRX_NVME_BGA_TYPE_VD_MIGRATE);
    tell(Event::kVd, vd->id,
         "migration to " + std::string(rule->name) + " over PD " + list_of(vd->members) + " started");
    return Verdict::kGood;
}

Verdict Controller::delete_vd(QRX_U32 id)
{
    if (!adapter.raid()) {
        return Verdict::kNotSupported;
    }
    const VirtualDisk* const vd = find_virtual_disk(id);
    if (vd == nullptr) {
        return Verdict::kInvalidVd;
    }
    if (vd->activity) {
        return Verdict::kVdBusy;
    }
    drop_namespaces(kNsParentVd, vd->id);
    tell(Event::kVd, vd->id, "deleted", "_DELETE");
    virtual_disks.erase(virtual_disks.begin() + (vd - virtual_disks.data()));
    update_health();
    auto_rebuild();
    return Verdict::kGood;
}

Verdict Controller::import_vd(QRX_U32 id)
{
    if (!adapter.raid() || (adapter.features & kFeatureImport) == 0) {
        return Verdict::kNotSupported;
    }
    VirtualDisk* const vd = vd_of(id);
    if (vd == nullptr) {
        return Verdict::kInvalidVd;
    }
    if (!vd->foreign()) {
        return Verdict::kAlreadyInTable;
    }
    if (!vd->importable) {
        return Verdict::kForeign;
    }
    vd->importable = false;
    vd->status = kVdFunctional;
    for (const QRX_U16 pd : vd->members) {
        if (Drive* const drive = drive_of(pd)) {
            drive->importable = false;
        }
    }
    tell(Event::kVd, vd->id, "imported", "_IMPORT_COMPLETE");
    for (Namespace& ns : namespaces) {
        if (ns.parent_kind == kNsParentVd && ns.parent == vd->id && !ns.valid) {
            ns.valid = true;
            ns.waiting = true;
            tell(Event::kNs, ns.nsid, "imported with VD " + std::to_string(vd->id), "_ONLINE");
        }
    }
    update_status(*vd);
    auto_rebuild();
    return Verdict::kGood;
}

}  // namespace qrx::sim
