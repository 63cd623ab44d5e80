// Records of the debug console as the pair command road reads it.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/pair.h"
#include "api/src/interface/wire/types.h"

struct _NVME_Debug_Dump_Status {
    QRX_U32 debugDumpBuffSize;  // bytes of text that the console can hold
    QRX_U8 reserved[4];
};
using NVME_Debug_Dump_Status = _NVME_Debug_Dump_Status;
using PNVME_Debug_Dump_Status = _NVME_Debug_Dump_Status*;
static_assert(sizeof(_NVME_Debug_Dump_Status) == 8);

struct _NVME_Debug_Dump_Config {
    QRX_U8 dumpOn;  // 1 on, else off
    QRX_U8 reserved[7];
};
using NVME_Debug_Dump_Config = _NVME_Debug_Dump_Config;
using PNVME_Debug_Dump_Config = _NVME_Debug_Dump_Config*;
static_assert(sizeof(_NVME_Debug_Dump_Config) == 8);

// A page of the console's text. The last bytes of `data` never come: kDumpTextMax is what an answer has room for.
struct _NVME_Debug_Dump_Request {
    QRX_U32 length;  // bytes of text in this page, in the low 16 bits; 0 when nothing is left
    QRX_U8 Reserved[4];
    QRX_U8 data[qrx::wire::kPageSize - 8];
};
using NVME_Debug_Dump_Request = _NVME_Debug_Dump_Request;
using PNVME_Debug_Dump_Request = _NVME_Debug_Dump_Request*;
static_assert(sizeof(_NVME_Debug_Dump_Request) == 4096);
static_assert(offsetof(_NVME_Debug_Dump_Request, data) == 8);

inline constexpr std::size_t kDumpTextMax = qrx::kPairAnswerMax - offsetof(_NVME_Debug_Dump_Request, data);
static_assert(kDumpTextMax == 4080);
