#include "sim/firmware/virtual_disk.h"

#include <algorithm>

#include "sim/firmware/text.h"

namespace qrx::sim {

bool VirtualDisk::uses(QRX_U16 pd) const
{
    return std::find(members.begin(), members.end(), pd) != members.end();
}

bool VirtualDisk::patrolling() const
{
    return activity && activity->running() && activity->type == QRX_NVME_BGA_TYPE_VD_MEDIAPATROL;
}

NVME_VD_Info VirtualDisk::record(std::span<const QRX_U8> nsids) const
{
    NVME_VD_Info info{};
    info.ID = id;
    info.Status = status;
    info.Importable = importable ? 1 : 0;
    info.RaidMode = raid_mode;
    info.MemberCount = static_cast<QRX_U8>(std::min(members.size(), kVdMembersMax));
    info.LBA = sectors;
    std::copy_n(members.begin(), info.MemberCount, std::begin(info.PDIDs));
    info.NumParityDisk = parity_disks;
    info.StripBlockSize = stripe;
    info.SectorSize = sector_size;
    pad_with_zeros(info.Name, name);
    std::copy_n(nsids.begin(), std::min(nsids.size(), std::size(info.NSIDs)), std::begin(info.NSIDs));
    return info;
}

NVME_VD_Config VirtualDisk::config() const
{
    NVME_VD_Config config{};
    config.ID = id;
    pad_with_zeros(config.Name, name);
    return config;
}

NVME_BGA_STATUS VirtualDisk::activity_record() const
{
    if (activity) {
        return activity->record(id);
    }
    NVME_BGA_STATUS record{};
    record.ID = id;
    return record;
}

bool VirtualDisk::online() const
{
    switch (status) {
    case kVdDeleted:
    case kVdMissing:
    case kVdOffline:
    case kVdForeign:
    case kVdImportable:
    case kVdNotImportable:
        return false;
    default:
        return true;
    }
}

bool VirtualDisk::foreign() const
{
    return importable || status == kVdForeign || status == kVdImportable || status == kVdNotImportable;
}

QRX_U64 usable_sectors(QRX_U8 raid_mode, QRX_U64 members, QRX_U8 parity_disks, QRX_U64 share)
{
    const QRX_U64 parity = std::max<QRX_U64>(parity_disks, 2);
    const auto less = [members](QRX_U64 spare) { return members > spare ? members - spare : 0; };
    switch (raid_mode) {
    case kRaid1:
        return members == 0 ? 0 : share;
    case kRaid10:
        return members / 2 * share;
    case kRaid5:
        return less(1) * share;
    case kRaid50:
        return less(2) * share;
    case kRaid6:
        return less(parity) * share;
    case kRaid60:
        return less(2 * parity) * share;
    default:
        return members * share;
    }
}

}  // namespace qrx::sim
