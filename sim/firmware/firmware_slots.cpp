#include "sim/firmware/firmware_slots.h"

#include <utility>

#include "sim/firmware/text.h"

namespace qrx::sim {

std::optional<unsigned> FirmwareSlots::choose() const
{
    for (unsigned slot = 1; slot <= count; ++slot) {
        if (writable(slot) && contents[slot - 1].revision.empty()) {
            return slot;
        }
    }
    for (unsigned step = 1; step <= count; ++step) {
        const unsigned slot = (active - 1U + step) % count + 1;
        if (writable(slot)) {
            return slot;
        }
    }
    return std::nullopt;
}

void FirmwareSlots::store(unsigned slot, FirmwareContent content)
{
    if (slot == active && overwritten.empty()) {
        overwritten = contents[slot - 1].revision;
    }
    contents[slot - 1] = std::move(content);
}

void FirmwareSlots::run(unsigned slot)
{
    active = static_cast<QRX_U8>(slot);
    next = 0;
    overwritten.clear();
}

nvme_firmware_slot_log FirmwareSlots::log() const
{
    nvme_firmware_slot_log log{};
    log.afi = static_cast<QRX_U8>((next & 7) << 4 | (active & 7));
    for (std::size_t i = 0; i < contents.size(); ++i) {
        if (!contents[i].revision.empty()) {
            pad_with_blanks(log.frs[i], contents[i].revision);
        }
    }
    return log;
}

QRX_U8 FirmwareSlots::capabilities() const
{
    constexpr unsigned kWithoutReset = 1U << 4;
    return static_cast<QRX_U8>((need == kNothing ? kWithoutReset : 0U) | unsigned{count} << 1 |
                               (first_read_only ? 1U : 0U));
}

}  // namespace qrx::sim
