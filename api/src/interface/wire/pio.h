// The PIO engine of the controller: configuration reads of the function behind a root complex, by register accesses.
//
//     pio_ctrl = (link + 0x90) << 24 | 4; pio_addr = 0x01000000 | offset; pio_addr_high = 0; pio_start = 1;
//     until pio_isr is 1; pio_isr = 1; pio_status tells how it went, pio_rd_data holds the dword
#pragma once

#include "api/src/interface/wire/types.h"

namespace qrx {

// Addresses.
inline constexpr QRX_U32 kPioCtrl = 0xE2C00000;      // bits 24-31: link plus 0x90; low bits: the kind of access
inline constexpr QRX_U32 kPioStatus = 0xE2C00004;    // bit 31: completion timeout; bits 28-30: completion status
inline constexpr QRX_U32 kPioAddr = 0xE2C00008;      // bus 24-31, device 19-23, function 16-18, offset in bits 2-11
inline constexpr QRX_U32 kPioAddrHigh = 0xE2C0000C;  // 0
inline constexpr QRX_U32 kPioReadData = 0xE2C00018;  // the dword that was read
inline constexpr QRX_U32 kPioStart = 0xE2C0001C;     // 1 starts the access
inline constexpr QRX_U32 kPioIsr = 0xE2C00020;       // 1: the access is complete; written with 1 to clear it

inline constexpr QRX_U32 kPioFirstLink = 0x90;
inline constexpr QRX_U32 kPioConfigRead = 4;
inline constexpr QRX_U32 kPioOffsetMask = 0xFFC;
inline constexpr QRX_U32 kPioBus1 = 0x01000000;  // bus 1, device 0, function 0
inline constexpr QRX_U32 kPioTimeout = 0x80000000;

// Completion status.
inline constexpr QRX_U32 kPioSuccess = 0;
inline constexpr QRX_U32 kPioUnsupported = 1;
inline constexpr QRX_U32 kPioRetry = 2;
inline constexpr QRX_U32 kPioAbort = 4;

}  // namespace qrx

// Configuration space, of the PCI Express standard.
namespace qrx::pci {

inline constexpr QRX_U32 kFirstCapability = 0x40;  // the lowest place of a capability
inline constexpr QRX_U32 kCapabilityExpress = 0x10;
inline constexpr QRX_U32 kLinkStatus = 0x10;  // of the PCI Express capability, in the upper half of this dword
inline constexpr QRX_U32 kFirstExtendedCapability = 0x100;
inline constexpr QRX_U32 kCapabilityAer = 1;        // Advanced Error Reporting
inline constexpr QRX_U32 kAerUncorrectable = 0x04;  // its error status registers
inline constexpr QRX_U32 kAerCorrectable = 0x10;

}  // namespace qrx::pci
