// What the controller keeps of the security of its drives, and of its light; and two switches beside them.
#pragma once

#include <vector>

#include "api/src/interface/wire/types.h"
#include "sim/firmware/status.h"

namespace qrx::sim {

// A drive about which something is noted.
struct SecureDrive {
    QRX_U16 id = 0;
    bool help_provided = false;
    bool slot_attention = false;   // acknowledged
    bool firmware_update = false;  // acknowledged

    friend bool operator==(const SecureDrive&, const SecureDrive&) = default;
};

struct Security {
    bool secure_mode = false;
    bool help_complete = false;
    bool reset_acknowledged = false;
    std::vector<SecureDrive> drives;  // in order of id, each once
    bool eeprom = true;
    bool hide_temperature = false;

    friend bool operator==(const Security&, const Security&) = default;

    // The entry of a drive, made if need be.
    SecureDrive& of(QRX_U16 drive);

    // The blocks that hosts read. `drives_there` are the ids of the drives, in order.
    [[nodiscard]] std::vector<QRX_U8> light_block(const std::vector<QRX_U16>& drives_there) const;
    [[nodiscard]] std::vector<QRX_U8> info_block(const std::vector<QRX_U16>& drives_there) const;
};

}  // namespace qrx::sim
