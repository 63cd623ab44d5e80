// The log area of the controller's SPI flash, to which its firmware writes the debug console while that is on.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/envelope.h"
#include "api/src/interface/wire/types.h"

// Whether the log is written: CDW14 of the switch command, and behind the envelope of the status.
struct _NVME_AP_Debug_Dump_Config {
    QRX_U8 on;  // 1 on, 0 off
    QRX_U8 reserved[3];
};
using NVME_AP_Debug_Dump_Config = _NVME_AP_Debug_Dump_Config;
static_assert(sizeof(_NVME_AP_Debug_Dump_Config) == 4);

// Head of a page of the log, behind the envelope; the text follows.
struct _NVME_AP_Debug_Dump_Request {
    QRX_U32 length;  // bytes of text in this page, in the low 16 bits; 0 when nothing is left
    QRX_U32 reserved;
};
using NVME_AP_Debug_Dump_Request = _NVME_AP_Debug_Dump_Request;
static_assert(sizeof(_NVME_AP_Debug_Dump_Request) == 8);

inline constexpr std::size_t kLogTextOffset = kReceiveDataOffset + sizeof(_NVME_AP_Debug_Dump_Request);  // in a page
inline constexpr std::size_t kLogTextMax = qrx::wire::kPageSize - kLogTextOffset;                        // of a page
static_assert(kLogTextMax == 4080);
