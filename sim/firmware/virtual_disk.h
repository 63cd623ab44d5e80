// A virtual disk: a RAID set over physical disks.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "api/src/interface/wire/vd.h"
#include "sim/firmware/background.h"
#include "sim/firmware/drive.h"

namespace qrx::sim {

struct VirtualDisk {
    QRX_U8 id = 0;
    std::string name;  // at most 16 letters
    QRX_U8 status = kVdFunctional;
    bool importable = false;
    QRX_U8 raid_mode = kRaid1;
    std::vector<QRX_U16> members;  // at most 32; kMissingMember where one is missing
    QRX_U8 parity_disks = 0;       // of RAID60 those of each half
    QRX_U16 stripe = 256;          // sectors of 512 bytes
    QRX_U64 sectors = 0;
    QRX_U32 sector_size = 512;  // bytes, 0 unknown
    bool initialized = true;    // its redundancy has been written once over its whole length
    // The member that a rebuild is writing, and that holds no data before its end; kMissingMember without a rebuild.
    QRX_U16 rebuild_target = kMissingMember;
    std::optional<BackgroundActivity> activity;

    friend bool operator==(const VirtualDisk&, const VirtualDisk&) = default;

    [[nodiscard]] bool uses(QRX_U16 pd) const;
    [[nodiscard]] bool patrolling() const;
    // `nsids`: the namespaces that lie on it.
    [[nodiscard]] NVME_VD_Info record(std::span<const QRX_U8> nsids) const;
    [[nodiscard]] NVME_VD_Config config() const;
    // The record of its background activity; of type and status "none" when there is none.
    [[nodiscard]] NVME_BGA_STATUS activity_record() const;
    // It is ours, and its data can be read and written.
    [[nodiscard]] bool online() const;
    // It carries the configuration of another controller.
    [[nodiscard]] bool foreign() const;
};

// The sectors that a RAID set of `members` equal shares of `share` sectors offers.
[[nodiscard]] QRX_U64 usable_sectors(QRX_U8 raid_mode, QRX_U64 members, QRX_U8 parity_disks, QRX_U64 share);

}  // namespace qrx::sim
