// The firmware slots of a device.
#pragma once

#include <array>
#include <string>

#include "api/src/interface/wire/nvme.h"

namespace qrx::sim {

struct FirmwareSlots {
    static constexpr std::size_t kMax = 7;

    QRX_U8 count = 3;                                     // slots that the device has, 1 to 7
    QRX_U8 active = 1;                                    // slot that runs
    QRX_U8 next = 0;                                      // slot that runs after the next reset, 0: the active one
    std::array<std::string, kMax> revisions{"2.4.1063"};  // of slots 1 to 7, at most 8 letters; empty: nothing there

    friend bool operator==(const FirmwareSlots&, const FirmwareSlots&) = default;

    [[nodiscard]] const std::string& running() const { return revisions[active - 1U]; }
    [[nodiscard]] nvme_firmware_slot_log log() const;
};

}  // namespace qrx::sim
