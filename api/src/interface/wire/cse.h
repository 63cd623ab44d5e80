// The opcodes that hosts may use: which ones are opened or closed, and one entry of the log that tells them.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

inline constexpr std::size_t kCseOpcodesMax = 1023;
inline constexpr QRX_U32 kCseOpcodeLast = 1024;         // the highest that may be named
inline constexpr QRX_U32 kCseVirtualFunctions = 0x001;  // in CDW14: virtual functions are meant, not physical ones
inline constexpr QRX_U32 kCseOn = 0x100;                // in CDW14: they are opened, not closed

// The opcodes to be opened or closed, at the head of a page of zeros.
struct _NVME_SetCmd_Support {
    QRX_U16 total_cnt;  // valid entries of opcode
    QRX_U16 opcode[kCseOpcodesMax];
};
using NVME_SetCmd_Support = _NVME_SetCmd_Support;
static_assert(sizeof(_NVME_SetCmd_Support) == 2048);
static_assert(offsetof(_NVME_SetCmd_Support, opcode) == 2);

// One entry of the Commands Supported and Effects log of the NVM Express base standard.
struct _NVME_GetLOG_CSE {
    QRX_U16 CSUPP : 1;  // supported
    QRX_U16 LBCC : 1;   // may change the content of logical blocks
    QRX_U16 NCC : 1;    // may change a namespace's capabilities
    QRX_U16 NIC : 1;    // may change the inventory of namespaces
    QRX_U16 CCC : 1;    // may change the controller's capabilities
    QRX_U16 Reserved : 11;
    QRX_U16 CSE : 2;  // what else may be under way at the same time
    QRX_U16 Reserved1 : 14;
};
using NVME_GetLOG_CSE = _NVME_GetLOG_CSE;
static_assert(sizeof(_NVME_GetLOG_CSE) == 4);
