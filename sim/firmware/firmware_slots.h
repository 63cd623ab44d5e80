// The firmware slots of a device.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "api/src/interface/wire/nvme.h"
#include "sim/firmware/firmware_image.h"

namespace qrx::sim {

struct FirmwareSlots {
    static constexpr std::size_t kMax = 7;

    // What it takes until another image runs.
    enum Need : QRX_U8 { kNothing = 0, kControllerReset = 1, kSubsystemReset = 2, kConventionalReset = 3 };

    QRX_U8 count = 3;                // slots that the device has, 1 to 7
    bool first_read_only = false;    // slot 1 cannot be written
    QRX_U8 need = kControllerReset;  // a Need
    QRX_U8 active = 1;               // slot that runs
    QRX_U8 next = 0;                 // slot that runs after the next reset, 0: the active one
    std::string overwritten;         // revision that runs though its slot has another image by now, or empty
    std::array<FirmwareContent, kMax> contents{{{"2.4.1063", "", 0, 0, false}}};  // of slots 1 to 7

    friend bool operator==(const FirmwareSlots&, const FirmwareSlots&) = default;

    // The revision that runs.
    [[nodiscard]] const std::string& running() const
    {
        return overwritten.empty() ? contents[active - 1U].revision : overwritten;
    }
    [[nodiscard]] bool writable(unsigned slot) const
    {
        return slot >= 1 && slot <= count && (slot != 1 || !first_read_only);
    }
    // The slot that the device takes where a host leaves it the choice: an empty one, else the one behind the active.
    [[nodiscard]] std::optional<unsigned> choose() const;
    // Puts an image into a slot that is writable.
    void store(unsigned slot, FirmwareContent content);
    // Lets the image of a slot run from now on.
    void run(unsigned slot);
    [[nodiscard]] nvme_firmware_slot_log log() const;
    // FRMW of Identify.
    [[nodiscard]] QRX_U8 capabilities() const;
};

}  // namespace qrx::sim
