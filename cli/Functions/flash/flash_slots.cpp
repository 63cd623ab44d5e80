// The firmware slots of a controller or of a disk behind it.
#include <cstdio>

#include "api/src/interface/agent.h"
#include "cli/Functions/flash/flash.h"
#include "cli/Public/frame/admin_command.h"

namespace {

constexpr QRX_U8 kGetLogPage = 2;
constexpr QRX_U8 kIdentify = 6;
constexpr QRX_U32 kIdentifyController = 1;
constexpr QRX_U32 kLogFirmwareSlots = 0x7F0003;  // 128 dwords of log 3
constexpr QRX_U32 kAllNamespaces = 0xFFFFFFFF;
constexpr std::size_t kLogSize = 512;
constexpr std::size_t kSlotsByte = 260;  // of the Identify data: bits 3:1 are the number of slots

// Of all statuses here the low byte alone counts.
bool failed(QRX_U32 status)
{
    return static_cast<QRX_U8>(status) != 0;
}

QRX_U32 ofController(QRX_U8 opcode, QRX_U32 nsid, QRX_U32 cdw10, std::span<QRX_U8> answer)
{
    return QRX_Adapter_Admin(gCurrentAdapter, opcode, nsid, &cdw10, 1, nullptr, 0, answer.data(),
                             static_cast<QRX_U16>(answer.size()));
}

qrx::AdminCommand ofDisk(QRX_U32 pd_id, QRX_U32 cdw10, QRX_U8 opcode)
{
    return qrx::AdminCommand(kTunnelFromDrive).word(1, pd_id).word(10, cdw10).word(14, opcode);
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
    const QRX_U32 identified =
        type == kController ? ofController(kIdentify, 0, kIdentifyController, identity)
                            : static_cast<QRX_U32>(ofDisk(pd_id, kIdentifyController, kIdentify).receive(identity));
    if (failed(identified)) {
        std::puts("Get Firmware Slot Count Fail");
        return;
    }
    std::printf("Slot count: %d\n", identity[kSlotsByte] >> 1U & 7U);

    std::array<QRX_U8, kLogSize> log{};
    const QRX_U32 logged =
        type == kController
            ? ofController(kGetLogPage, kAllNamespaces, kLogFirmwareSlots, log)
            : static_cast<QRX_U32>(ofDisk(pd_id, kLogFirmwareSlots, kGetLogPage).word(15, kAllNamespaces).receive(log));
    if (failed(logged)) {
        std::puts("Get Firmware Slot Information Fail");
        return;
    }
    std::printf("Active Slot: %d, Next Active Slot: %d\n", log[0] & 7U, log[0] >> 4U & 7U);
}
