// Records of a namespace as the controller lists it.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

// Bits of _NVME_NS_Info::Status. 0 is an empty slot.
inline constexpr QRX_U8 kNsValid = 1U << 0;
inline constexpr QRX_U8 kNsWaitsForAttach = 1U << 1;
inline constexpr QRX_U8 kNsActive = 1U << 2;

// Values of _NVME_NS_Info::device_type.
inline constexpr QRX_U8 kNsParentPd = 0;
inline constexpr QRX_U8 kNsParentVd = 1;

// One namespace. A list response carries MaxNS of these behind its envelope.
struct _NVME_NS_Info {
    QRX_U8 NSID;         // as the host sees it
    QRX_U8 device_type;  // kNsParent values
    QRX_U16 ID;          // parent id, 0-based
    QRX_U8 Status;       // kNs bits
    QRX_U8 VDStatus;     // the parent VD's status code
    QRX_U8 reserved1;
    QRX_U8 LBADataSize;
    QRX_U32 SectorSize;  // bytes
    QRX_U8 reserved2[4];
    QRX_U64 LBA;  // sectors
    QRX_U8 reserved3[72];
};
using NVME_NS_Info = _NVME_NS_Info;
using PNVME_NS_Info = _NVME_NS_Info*;
using NVME_NS_Info_Request = _NVME_NS_Info;  // a bare array, with no header
static_assert(sizeof(_NVME_NS_Info) == 96);
static_assert(offsetof(_NVME_NS_Info, SectorSize) == 8);
static_assert(offsetof(_NVME_NS_Info, LBA) == 16);

// Sharing state of one namespace.
struct _NMIC_Data {
    QRX_U8 mode;    // 0 private
    QRX_U8 ctrlID;  // the owning controller when private
    QRX_U8 reserved[6];
};
using NMIC_Data = _NMIC_Data;
static_assert(sizeof(_NMIC_Data) == 8);

// Controller list of the Namespace Attachment command.
inline constexpr std::size_t kControllerListMax = 2047;
struct _controller_list_format {
    QRX_U16 num_of_id;
    QRX_U16 id[kControllerListMax];
};
static_assert(sizeof(_controller_list_format) == 4096);

// The same list, as the namespace commands fill it.
struct _NVME_NS_ATTACHMENT_PRP {
    QRX_U16 NumOfIdentifiers;
    QRX_U16 Identifier[kControllerListMax];
};
using NVME_NS_ATTACHMENT_PRP = _NVME_NS_ATTACHMENT_PRP;
static_assert(sizeof(_NVME_NS_ATTACHMENT_PRP) == 4096);

// What the Namespace Management command is told of a namespace to be made; it lies at the start of a page of zeros.
struct _NVME_NS_HSSF {
    QRX_U64 nsze;  // logical blocks
    QRX_U64 ncap;  // logical blocks
    QRX_U8 reserved1[10];
    QRX_U8 flbas;  // LBA format
    QRX_U8 reserved2[2];
    QRX_U8 dps;   // end-to-end protection
    QRX_U8 nmic;  // sharing
    QRX_U8 reserved3[353];
};
using NVME_NS_HSSF = _NVME_NS_HSSF;
static_assert(sizeof(_NVME_NS_HSSF) == 384);
static_assert(offsetof(_NVME_NS_HSSF, ncap) == 8);
static_assert(offsetof(_NVME_NS_HSSF, flbas) == 26);
static_assert(offsetof(_NVME_NS_HSSF, dps) == 29);
static_assert(offsetof(_NVME_NS_HSSF, nmic) == 30);
static_assert(offsetof(_NVME_NS_HSSF, reserved3) == 31);
