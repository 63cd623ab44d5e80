// Firmware Image Download and Firmware Commit of an NVMe function, and the reset after which another image runs.
#include <algorithm>

#include "sim/firmware/nvme_function.h"

namespace qrx::sim {

namespace {

enum class Action : QRX_U8 { kReplace = 0, kReplaceAndActivate = 1, kActivate = 2, kActivateNow = 3 };

// What a host is told of an image that waits for more than the reset it expects.
QRX_U32 status_of(QRX_U8 need)
{
    switch (need) {
    case FirmwareSlots::kControllerReset:
        return status::kNeedsControllerReset;
    case FirmwareSlots::kSubsystemReset:
        return status::kNeedsSubsystemReset;
    default:
        return status::kNeedsConventionalReset;
    }
}

}  // namespace

Completion NvmeFunction::download_firmware(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    const QRX_U64 length = (QRX_U64{command.cdw10} + 1) * 4;
    const QRX_U64 offset = QRX_U64{command.cdw11} * 4;
    // A host whose buffer is not the length it tells would lose bytes of the image.
    if (length != data.size() || offset + length > firmware_limit()) {
        return complete(status::kInvalidField);
    }
    if (offset == 0 && !download.empty() && download.pieces.begin()->first == 0) {
        download.clear();  // the host begins anew
    }
    return complete(download.add(static_cast<QRX_U32>(offset), data) ? status::kSuccess : status::kOverlappingRange);
}

Completion NvmeFunction::commit_firmware(const nvme_admin_cmd& command)
{
    unsigned target = command.cdw10 & 7;
    const QRX_U32 code = command.cdw10 >> 3 & 7;
    if (code > static_cast<QRX_U32>(Action::kActivateNow)) {
        return complete(status::kInvalidField);  // reserved, or for boot partitions, of which there are none
    }
    const auto action = static_cast<Action>(code);
    const bool replaces = action == Action::kReplace || action == Action::kReplaceAndActivate ||
                          (action == Action::kActivateNow && !download.empty());
    if (target == 0 && replaces) {
        target = slots.choose().value_or(0);
    }
    if (target == 0 || target > slots.count || (replaces && !slots.writable(target))) {
        return complete(status::kInvalidFirmwareSlot);
    }
    if (replaces) {
        const auto image = download.whole();
        auto content = image ? examine_image(*image) : std::nullopt;
        const bool revoked = content && content->revoked && action != Action::kReplace;
        download.clear();
        if (!content || revoked) {
            return complete(revoked ? status::kActivationProhibited : status::kInvalidFirmwareImage);
        }
        remember_version();
        slots.store(target, *std::move(content));
        firmware_stored(target);
    } else if (slots.contents[target - 1].revision.empty()) {
        return complete(status::kInvalidFirmwareImage);
    } else if (slots.contents[target - 1].revoked) {
        return complete(status::kActivationProhibited);
    }
    if (action == Action::kReplace) {
        return complete(status::kSuccess);
    }
    if (action == Action::kActivateNow && slots.need == FirmwareSlots::kNothing) {
        run_firmware(target);
        return complete(status::kSuccess);
    }
    slots.next = static_cast<QRX_U8>(target);
    // That it takes a controller's reset is what the host expects, unless it asked for less.
    const bool expected = slots.need <= FirmwareSlots::kControllerReset && action != Action::kActivateNow;
    return complete(expected ? status::kSuccess : status_of(slots.need));
}

void NvmeFunction::remember_version()
{
    FirmwareContent& running = slots.contents[slots.active - 1U];
    if (running.version.empty() && slots.overwritten.empty()) {
        running.version = firmware_version();
    }
}

void NvmeFunction::run_firmware(unsigned target)
{
    remember_version();
    slots.run(target);
    if (const std::string& version = slots.contents[target - 1].version; !version.empty()) {
        take_version(version);
    }
}

void NvmeFunction::restart()
{
    download.clear();
    run_firmware(slots.next != 0 ? slots.next : slots.active);
    features = Features();
}

void NvmeFunction::reset()
{
    restart();
    clock = Clock();
    ++health.power_cycles;
    reset_back_end();
}

}  // namespace qrx::sim
