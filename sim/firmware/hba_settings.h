// The settings that the controller keeps in its flash, beside those that other things of the model hold.
#pragma once

#include <optional>
#include <string_view>

#include "api/src/interface/wire/hba_info.h"
#include "api/src/interface/wire/types.h"
#include "sim/firmware/result.h"

namespace qrx::sim {

struct HbaSettings {
    bool debug_dump = false;   // debug messages go to the SPI log
    bool flash_tools = false;  // manufacturing flash tool
    bool sriov = false;
    bool protection = false;   // hosts do not write the SPI flash; not in the stored record
    bool vpd_in_spi = false;   // VPD lies in the SPI flash, not in the EEPROM
    bool errors_only = false;  // log level
    bool dsp = true;
    QRX_U32 nguid_offset = 0;
    QRX_U8 fuse_id = 0;
    QRX_U8 max_vf = 32;
    QRX_U8 max_namespaces = 32;
    bool virtual_namespaces = false;
    QRX_U8 firmware_slot = 0;
    QRX_U32 gpio_enable = 0x00000F3F;
    QRX_U32 gpio_levels = 0x00000F30;
    QRX_U32 gpio_values = 0x00000131;
    bool gpio_from_settings = true;  // the pins are set from here at the next boot
    QRX_U8 gpio_inverse = 0;         // GPIO 8 to 11: 0 as they are, 1 inverted

    enum Damage : QRX_U8 { kIntact, kBadSignature, kBadChecksum };
    QRX_U8 damage = kIntact;  // of the stored record

    friend bool operator==(const HbaSettings&, const HbaSettings&) = default;

    // Fills the parts of the stored record that these settings own, all but its checksum.
    void fill(_hba_info& info) const;
    // Makes the 32-bit words of the filled record sum to 0, and damages it as it is to be damaged.
    void seal(_hba_info& info) const;
    // "intact", "bad-signature" or "bad-checksum"; refuses any other word.
    std::optional<Failure> set_damage(std::string_view what);
};

}  // namespace qrx::sim
