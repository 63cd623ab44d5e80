// The Linux NVMe driver's pass-through interface: our own copy of the layout and the request numbers.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

inline constexpr unsigned long NVME_IOCTL_ID = 0x4e40;
inline constexpr unsigned long NVME_IOCTL_ADMIN_CMD = 0xc0484e41;
inline constexpr unsigned long NVME_IOCTL_SUBMIT_IO = 0x402c4e42;
inline constexpr unsigned long NVME_IOCTL_IO_CMD = 0xc0484e43;

struct nvme_admin_cmd {
    QRX_U8 opcode;
    QRX_U8 flags;
    QRX_U16 rsvd1;
    QRX_U32 nsid;
    QRX_U32 cdw2;
    QRX_U32 cdw3;
    QRX_U64 metadata;      // address of the metadata buffer
    QRX_U64 addr;          // address of the data buffer
    QRX_U32 metadata_len;  // bytes
    QRX_U32 data_len;      // bytes
    QRX_U32 cdw10;
    QRX_U32 cdw11;
    QRX_U32 cdw12;
    QRX_U32 cdw13;
    QRX_U32 cdw14;
    QRX_U32 cdw15;
    QRX_U32 timeout_ms;  // 0: the driver's default
    QRX_U32 result;      // Completion Dword 0, filled by the driver
};
static_assert(sizeof(nvme_admin_cmd) == 72);
static_assert(offsetof(nvme_admin_cmd, addr) == 24);
static_assert(offsetof(nvme_admin_cmd, data_len) == 36);
static_assert(offsetof(nvme_admin_cmd, cdw10) == 40);
static_assert(offsetof(nvme_admin_cmd, result) == 68);
