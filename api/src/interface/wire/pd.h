// Records of a physical disk behind the controller.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/envelope.h"
#include "api/src/interface/wire/types.h"

// Bits of _NVME_PD_Info::Status. A PD is free while bit 0 is clear.
inline constexpr QRX_U8 kPdAssigned = 1U << 0;
inline constexpr QRX_U8 kPdMediaPatrol = 1U << 1;
inline constexpr QRX_U8 kPdImportable = 1U << 3;
inline constexpr QRX_U8 kPdFailed = 1U << 4;
inline constexpr QRX_U8 kPdSmartWarning = 1U << 5;

struct _NVME_PD_Info {
    QRX_U16 ID;     // 0-based
    QRX_U8 Status;  // kPd bits
    QRX_U8 reserved1[9];
    QRX_U8 Model[40];     // blank-padded, not terminated
    QRX_U8 SerialNo[20];  // blank-padded, not terminated
    QRX_U32 SectorSize;   // bytes
    QRX_U8 FWVersion[8];  // blank-padded, not terminated
    QRX_U8 reserved2[4];
    QRX_U64 LBA;           // sectors
    QRX_U16 SSDAdapterID;  // back-end root complex or slot, 0-based
    QRX_U16 SSDNSID;       // namespace on the back-end drive
    QRX_U8 Temperature[2];
    QRX_U8 reserved3[2];
};
using NVME_PD_Info = _NVME_PD_Info;
using PNVME_PD_Info = _NVME_PD_Info*;
static_assert(sizeof(_NVME_PD_Info) == 104);
static_assert(offsetof(_NVME_PD_Info, Model) == 12);
static_assert(offsetof(_NVME_PD_Info, SerialNo) == 52);
static_assert(offsetof(_NVME_PD_Info, SectorSize) == 72);
static_assert(offsetof(_NVME_PD_Info, LBA) == 88);
static_assert(offsetof(_NVME_PD_Info, SSDAdapterID) == 96);

struct _NVME_PD_Info_Request {
    RequestHeader header;
    NVME_PD_Info pd_info;  // one or more
};
using NVME_PD_Info_Request = _NVME_PD_Info_Request;
using PNVME_PD_Info_Request = _NVME_PD_Info_Request*;
static_assert(sizeof(_NVME_PD_Info_Request) == 120);

struct _NVME_PD_MP {
    QRX_U16 PDID;
    QRX_U8 Reserved[6];
};
using NVME_PD_MP = _NVME_PD_MP;
static_assert(sizeof(_NVME_PD_MP) == 8);

// Head of an item of OEM data of a disk; cbSize bytes of it follow at once.
#pragma pack(push, 1)
struct _QRXItem_OEM_Data {
    QRX_U16 ID;      // PD id, 0-based
    QRX_U16 cbSize;  // bytes behind this head
    QRX_U8 reserved[13];
};
#pragma pack(pop)
using QRXItem_OEM_Data = _QRXItem_OEM_Data;
using PQRXItem_OEM_Data = _QRXItem_OEM_Data*;
static_assert(sizeof(_QRXItem_OEM_Data) == 17);
static_assert(offsetof(_QRXItem_OEM_Data, cbSize) == 2);
