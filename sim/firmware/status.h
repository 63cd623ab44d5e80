// The statuses with which the simulated firmware ends a command, and their names.
#pragma once

#include <string>

#include "api/src/interface/wire/types.h"
#include "sim/firmware/host.h"

namespace qrx::sim {

// NVMe status: bits 7 to 0 code, bits 10 to 8 type.
namespace status {
inline constexpr QRX_U32 kSuccess = 0x000;
inline constexpr QRX_U32 kInvalidOpcode = 0x001;
inline constexpr QRX_U32 kInvalidField = 0x002;
inline constexpr QRX_U32 kDataTransferError = 0x004;
inline constexpr QRX_U32 kInvalidNamespace = 0x00B;
inline constexpr QRX_U32 kSequenceError = 0x00C;
inline constexpr QRX_U32 kOperationDenied = 0x015;
inline constexpr QRX_U32 kLbaOutOfRange = 0x080;
inline constexpr QRX_U32 kNamespaceNotReady = 0x082;
inline constexpr QRX_U32 kInvalidQueueId = 0x101;
inline constexpr QRX_U32 kAerLimitExceeded = 0x105;
inline constexpr QRX_U32 kInvalidFirmwareSlot = 0x106;
inline constexpr QRX_U32 kInvalidFirmwareImage = 0x107;
inline constexpr QRX_U32 kInvalidLogPage = 0x109;
inline constexpr QRX_U32 kInvalidFormat = 0x10A;
inline constexpr QRX_U32 kNeedsConventionalReset = 0x10B;
inline constexpr QRX_U32 kFeatureNotSaveable = 0x10D;
inline constexpr QRX_U32 kFeatureNotChangeable = 0x10E;
inline constexpr QRX_U32 kNeedsSubsystemReset = 0x110;
inline constexpr QRX_U32 kNeedsControllerReset = 0x111;
inline constexpr QRX_U32 kActivationProhibited = 0x113;
inline constexpr QRX_U32 kOverlappingRange = 0x114;
inline constexpr QRX_U32 kInsufficientCapacity = 0x115;
inline constexpr QRX_U32 kNamespaceIdUnavailable = 0x116;
inline constexpr QRX_U32 kNamespaceAttached = 0x118;
inline constexpr QRX_U32 kNamespacePrivate = 0x119;
inline constexpr QRX_U32 kNamespaceNotAttached = 0x11A;
inline constexpr QRX_U32 kThinProvisioning = 0x11B;
inline constexpr QRX_U32 kControllerListInvalid = 0x11C;
inline constexpr QRX_U32 kInvalidControllerId = 0x11F;
inline constexpr QRX_U32 kInvalidSecondaryState = 0x120;
inline constexpr QRX_U32 kInvalidResourceCount = 0x121;
inline constexpr QRX_U32 kInvalidResourceId = 0x122;
inline constexpr QRX_U32 kUnrecoveredRead = 0x281;
inline constexpr QRX_U32 kCompareFailure = 0x285;
inline constexpr QRX_U32 kVendorType = 0x700;
}  // namespace status

// The firmware's verdict on a vendor request. A command with a page of data carries it in `cmd_status` of its
// envelope and succeeds as an NVMe command; a command without data ends with it as a vendor specific status.
// So the probing of ids that do not exist leaves no trace in the error log.
enum class Verdict : QRX_U8 {
    kGood = 0,
    kFailed = 1,
    kInvalidRequest = 3,
    kInvalidParameter = 4,
    kNotSupported = 5,
    kInvalidPd = 6,
    kInvalidVd = 7,
    kNoNamespaceSlot = 11,
    kNamespaceAttached = 12,
    kNotRedundant = 51,
    kNotInitialized = 52,
    kNotFunctional = 53,
    kFunctional = 54,
    kNoTable = 56,
    kAlreadyInTable = 57,
    kForeign = 58,
    kPdAssigned = 59,
    kInvalidRaidMode = 60,
    kInvalidPdCount = 61,
    kInvalidStripe = 62,
    kNoId = 63,
    kSectorSizeMismatch = 64,
    kNamespaceSize = 65,
    kVdBusy = 66,
    kInvalidAction = 68,
    kActivityRuns = 69,
    kNoActivityRuns = 70,
    kNoRebuildSource = 71,
    kRebuildTargetTooSmall = 72,
    kInvalidNamespaceCount = 74,
};

// The completion of a vendor command without data.
[[nodiscard]] inline Completion complete(Verdict verdict)
{
    return {verdict == Verdict::kGood ? status::kSuccess : status::kVendorType | static_cast<QRX_U32>(verdict), 0, 0};
}

[[nodiscard]] inline Completion complete(QRX_U32 nvme_status, QRX_U32 result = 0)
{
    return {nvme_status, result, 0};
}

// The name of an NVMe status, "unknown status" for one that has none here.
[[nodiscard]] std::string status_name(QRX_U32 nvme_status);

}  // namespace qrx::sim
