// The firmware slots of a controller or of a disk behind it.
#include <cstdio>

#include "api/src/interface/agent.h"
#include "cli/Functions/flash/flash.h"
#include "cli/Public/frame/identify.h"
#include "cli/Public/frame/tunnel.h"

namespace {

constexpr QRX_U32 kLogFirmwareSlots = 0x7F0003;  // 128 dwords of log 3
constexpr QRX_U32 kAllNamespaces = 0xFFFFFFFF;
constexpr std::size_t kLogSize = 512;
constexpr std::size_t kSlotsByte = 260;  // of the Identify data: bits 3:1 are the number of slots

// Of all statuses here the low byte alone counts.
bool failed(int status)
{
    return static_cast<QRX_U8>(status) != 0;
}

int readSlots(std::span<QRX_U8> log)
{
    QRX_U32 cdw10 = kLogFirmwareSlots;
    return static_cast<int>(QRX_Adapter_Admin(gCurrentAdapter, qrx::kDriveGetLogPage, kAllNamespaces, &cdw10, 1,
                                              nullptr, 0, log.data(), static_cast<QRX_U16>(log.size())));
}

}  // namespace

void showSlotInfo(QRX_U8 /*adapterID*/, QRX_U8 type, QRX_U32 pd_id)
{
    constexpr QRX_U8 kController = 0;
    constexpr QRX_U8 kDisk = 1;
    if (type != kController && type != kDisk) {
        std::puts("Unknown type, please check it again.");
        return;
    }
    std::array<QRX_U8, qrx::wire::kPageSize> identity{};
    const int identified =
        type == kController
            ? qrx::identify(0, qrx::kIdentifyController, identity)
            : qrx::tunnelFromDrive(pd_id, qrx::kIdentify).word(10, qrx::kIdentifyController).receive(identity);
    if (failed(identified)) {
        std::puts("Get Firmware Slot Count Fail");
        return;
    }
    std::printf("Slot count: %d\n", identity[kSlotsByte] >> 1U & 7U);

    std::array<QRX_U8, kLogSize> log{};
    const int logged = type == kController ? readSlots(log)
                                           : qrx::tunnelFromDrive(pd_id, qrx::kDriveGetLogPage)
                                                 .word(10, kLogFirmwareSlots)
                                                 .word(15, kAllNamespaces)
                                                 .receive(log);
    if (failed(logged)) {
        std::puts("Get Firmware Slot Information Fail");
        return;
    }
    std::printf("Active Slot: %d, Next Active Slot: %d\n", log[0] & 7U, log[0] >> 4U & 7U);
}
