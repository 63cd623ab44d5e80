#include "sim/firmware/drive.h"

#include <algorithm>
#include <cstring>

#include "sim/firmware/text.h"

namespace qrx::sim {

Drive::Drive()
{
    vendor_id = 0xFADE;
    device_id = 0x0960;
    subsystem_vendor_id = 0xFADE;
    model = "QRX Lab SSD 960GB";
    slots.contents[0].revision = "LAB1.0.4";
    slots.need = FirmwareSlots::kNothing;
    health.temperature = 308;
}

NVME_PD_Info Drive::record(bool assigned, bool patrolled) const
{
    const bool own_patrol = activity && activity->running() && activity->type == QRX_NVME_BGA_TYPE_HD_MEDIAPATROL;
    NVME_PD_Info info{};
    info.ID = id;
    info.Status = static_cast<QRX_U8>((assigned ? kPdAssigned : 0) | (patrolled || own_patrol ? kPdMediaPatrol : 0) |
                                      (importable ? kPdImportable : 0) | (failed ? kPdFailed : 0) |
                                      (health.critical_warning != 0 ? kPdSmartWarning : 0));
    pad_with_blanks(info.Model, model);
    pad_with_blanks(info.SerialNo, serial);
    info.SectorSize = sector_size;
    pad_with_blanks(info.FWVersion, slots.running());
    info.LBA = sectors;
    info.SSDAdapterID = slot;
    info.SSDNSID = nsid;
    std::memcpy(info.Temperature, &health.temperature, sizeof(health.temperature));
    return info;
}

void Drive::make_default_namespace()
{
    namespaces.clear();
    const QRX_U32 size = sector_size == 4096 ? 4096 : 512;
    if (bytes() < size) {
        return;
    }
    Namespace ns;
    ns.nsid = nsid >= 1 && nsid <= 0xFE ? static_cast<QRX_U8>(nsid) : QRX_U8{1};
    ns.parent_kind = kNsParentPd;
    ns.sectors = bytes() / size;
    ns.sector_size = size;
    ns.derive_identifiers(serial);
    namespaces.push_back(std::move(ns));
}

NvmeFunction::Capacity Drive::capacity() const
{
    Capacity capacity;
    capacity.total = bytes();
    capacity.unallocated = capacity.total;
    for (const Namespace& ns : namespaces) {
        capacity.unallocated -= std::min(capacity.unallocated, ns.sectors * ns.sector_size);
    }
    return capacity;
}

QRX_U32 Drive::max_namespaces() const
{
    return std::max<QRX_U32>(kNamespacesMax, namespaces.empty() ? 0 : namespaces.back().nsid);
}

Clock::Duration Drive::next_change() const
{
    return activity ? activity->left() : Clock::Duration::max();
}

void Drive::advance_back_end(Clock::Duration passed)
{
    if (activity) {
        activity->advance(passed);
        if (activity->finished()) {
            activity.reset();
        }
    }
}

}  // namespace qrx::sim
