#include "sim/firmware/firmware_slots.h"

#include "sim/firmware/text.h"

namespace qrx::sim {

nvme_firmware_slot_log FirmwareSlots::log() const
{
    nvme_firmware_slot_log log{};
    log.afi = static_cast<QRX_U8>((next & 7) << 4 | (active & 7));
    for (std::size_t i = 0; i < revisions.size(); ++i) {
        if (!revisions[i].empty()) {
            pad_with_blanks(log.frs[i], revisions[i]);
        }
    }
    return log;
}

}  // namespace qrx::sim
