#include "sim/firmware/drive.h"

#include <cstring>

#include "sim/firmware/text.h"

namespace qrx::sim {

NVME_PD_Info Drive::record(bool assigned, bool patrolled) const
{
    const bool own_patrol = activity && activity->running() && activity->type == QRX_NVME_BGA_TYPE_HD_MEDIAPATROL;
    NVME_PD_Info info{};
    info.ID = id;
    info.Status = static_cast<QRX_U8>((assigned ? kPdAssigned : 0) | (patrolled || own_patrol ? kPdMediaPatrol : 0) |
                                      (importable ? kPdImportable : 0) | (failed ? kPdFailed : 0) |
                                      (critical_warning != 0 ? kPdSmartWarning : 0));
    pad_with_blanks(info.Model, model);
    pad_with_blanks(info.SerialNo, serial);
    info.SectorSize = sector_size;
    pad_with_blanks(info.FWVersion, firmware);
    info.LBA = sectors;
    info.SSDAdapterID = slot;
    info.SSDNSID = nsid;
    std::memcpy(info.Temperature, &temperature, sizeof(temperature));
    return info;
}

void Drive::advance(Clock::Duration passed)
{
    if (activity) {
        activity->advance(passed);
        if (activity->finished()) {
            activity.reset();
        }
    }
}

}  // namespace qrx::sim
