// What `create` asks of the number of members, and of parity disks, in each RAID mode.
#pragma once

#include <cstdint>
#include <optional>

#include "api/src/interface/wire/types.h"
#include "api/src/interface/wire/vd.h"

// The word of a RAID mode code where `create` speaks of it; "NA" for one that it has no word for.
const char* RaidModeStrInCreate(QRX_U8 RaidMode);

namespace qrx::vd {

// True when the members of `vd` are as many as its mode takes; NumParityDisk is then set, to `parity` as typed if it
// was. Otherwise false, after a complaint.
bool applyModeRule(NVME_Create_VD& vd, std::optional<std::int32_t> parity);

}  // namespace qrx::vd
