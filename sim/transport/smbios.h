// The SMBIOS tables of a simulated machine, in the 64-bit (SMBIOS 3) form.
#pragma once

#include <span>
#include <string>

#include "sim/firmware/host.h"

namespace qrx::sim {

struct SmbiosTables {
    std::string entry_point;  // 24 bytes, with valid checksum
    std::string table;        // BIOS, system, one System Slot in use per controller, end of table
};

[[nodiscard]] SmbiosTables make_smbios(std::span<const ControllerNode> controllers);

}  // namespace qrx::sim
