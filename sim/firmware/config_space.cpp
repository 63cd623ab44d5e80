#include "sim/firmware/config_space.h"

#include <array>

#include "api/src/interface/wire/adapter.h"
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/pio.h"
#include "sim/firmware/json_fields.h"

namespace qrx::sim {

namespace {

constexpr QRX_U32 kPowerManagement = 0x01;
constexpr QRX_U32 kMsi = 0x05;
constexpr QRX_U32 kMsiX = 0x11;
constexpr QRX_U32 kSerialNumber = 0x0003;
constexpr QRX_U32 kSecondaryExpress = 0x0019;
constexpr QRX_U32 kExpressAt = 0x70;
constexpr QRX_U32 kMsiXAt = 0xB0;
constexpr QRX_U32 kSecondaryExpressAt = 0x190;
// Of Advanced Error Reporting.
constexpr QRX_U32 kUncorrectableMask = 0x08;
constexpr QRX_U32 kSeverity = 0x0C;
constexpr QRX_U32 kCorrectableMask = 0x14;
constexpr QRX_U32 kAerControl = 0x18;
constexpr QRX_U32 kHeaderLog = 0x1C;
constexpr QRX_U32 kPrefixLog = 0x38;

constexpr auto kAnswerWords = std::to_array<JsonWord>({{ConfigSpace::kData, "data"},
                                                       {ConfigSpace::kUnsupported, "unsupported-request"},
                                                       {ConfigSpace::kRetry, "retry"},
                                                       {ConfigSpace::kTimeout, "timeout"},
                                                       {ConfigSpace::kAbort, "abort"},
                                                       {ConfigSpace::kNone, "none"}});

constexpr QRX_U32 capability(QRX_U32 id, QRX_U32 next)
{
    return id | next << 8;
}

QRX_U32 dword_of(const std::array<QRX_U8, 16>& log, QRX_U32 offset)
{
    return wire::read<QRX_U32>(log, offset).value_or(0);
}

constexpr QRX_U32 extended(QRX_U32 id, QRX_U32 version, QRX_U32 next)
{
    return id | version << 16 | next << 20;
}

}  // namespace

QRX_U32 ConfigSpace::dword(QRX_U32 offset) const
{
    constexpr QRX_U32 kDriveDeviceId = 0x0D01;
    constexpr QRX_U32 kNvmeClass = 0x01080200;
    constexpr QRX_U32 kSlotClock = 0x1000;  // both ends run from one clock
    switch (offset) {
    case 0x00:
        return kControllerVendorId | kDriveDeviceId << 16;
    case 0x04:
        return 0x00100406;  // a list of capabilities; bus master, memory
    case 0x08:
        return kNvmeClass;
    case 0x34:
        return pci::kFirstCapability;
    case pci::kFirstCapability:
        return capability(kPowerManagement, 0x50) | 0x00030000;
    case 0x50:
        return capability(kMsi, express ? kExpressAt : kMsiXAt) | 0x00860000;
    case kExpressAt:
        return express ? capability(pci::kCapabilityExpress, kMsiXAt) | 0x00020000 : 0;
    case kExpressAt + pci::kLinkStatus:
        return express ? (kSlotClock | (width & 0x3FU) << 4 | (speed & 0xFU)) << 16 | 0x0040 : 0;
    case kMsiXAt:
        return capability(kMsiX, 0) | 0x001F0000;
    case pci::kFirstExtendedCapability:
        return extended(kSerialNumber, 1, aer ? kAerAt : kSecondaryExpressAt);
    case kAerAt:
        return aer ? extended(pci::kCapabilityAer, 2, kSecondaryExpressAt) : 0;
    case kAerAt + pci::kAerUncorrectable:
        return aer ? uncorrectable : 0;
    case kAerAt + pci::kAerCorrectable:
        return aer ? correctable : 0;
    case kAerAt + kUncorrectableMask:
        return aer ? uncorrectable_mask : 0;
    case kAerAt + kSeverity:
        return aer ? severity : 0;
    case kAerAt + kCorrectableMask:
        return aer ? correctable_mask : 0;
    case kAerAt + kAerControl:
        return aer ? aer_control : 0;
    case kAerAt + kHeaderLog:
    case kAerAt + kHeaderLog + 4:
    case kAerAt + kHeaderLog + 8:
    case kAerAt + kHeaderLog + 12:
        return aer ? dword_of(header_log, offset - kAerAt - kHeaderLog) : 0;
    case kAerAt + kPrefixLog:
    case kAerAt + kPrefixLog + 4:
    case kAerAt + kPrefixLog + 8:
    case kAerAt + kPrefixLog + 12:
        return aer ? dword_of(prefix_log, offset - kAerAt - kPrefixLog) : 0;
    case kSecondaryExpressAt:
        return extended(kSecondaryExpress, 1, 0);
    default:
        return 0;
    }
}

std::span<const JsonWord> config_answer_words()
{
    return kAnswerWords;
}

std::optional<ConfigSpace::Answer> config_answer(std::string_view word)
{
    for (const JsonWord& row : kAnswerWords) {
        if (word == row.word) {
            return static_cast<ConfigSpace::Answer>(row.value);
        }
    }
    return std::nullopt;
}

std::string config_answers()
{
    std::string text;
    for (const JsonWord& row : kAnswerWords) {
        text += (text.empty() ? "" : ", ") + std::string(row.word);
    }
    return text;
}

}  // namespace qrx::sim
