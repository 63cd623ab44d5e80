// Background activities (BGA): their status, and the requests that start them on the pair command road.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/envelope.h"
#include "api/src/interface/wire/types.h"

enum QRX_BGA_STATUS : QRX_U8 {
    QRX_NVME_BGA_STATUS_NONE = 0,
    QRX_NVME_BGA_STATUS_RUNNING = 1,
    QRX_NVME_BGA_STATUS_PAUSE = 2,
};

enum QRX_BGA_TYPE : QRX_U8 {
    QRX_NVME_BGA_TYPE_NONE = 0,
    QRX_NVME_BGA_TYPE_VD_INIT_QUICK = 1,
    QRX_NVME_BGA_TYPE_VD_INIT_BACKGROUND = 2,
    QRX_NVME_BGA_TYPE_VD_REBUILD = 3,
    QRX_NVME_BGA_TYPE_VD_SYNC = 4,
    QRX_NVME_BGA_TYPE_VD_MIGRATE = 5,
    QRX_NVME_BGA_TYPE_HD_MEDIAPATROL = 6,
    QRX_NVME_BGA_TYPE_VD_MEDIAPATROL = 7,
};

enum QRX_BGA_OPERATION : QRX_U8 {
    QRX_NVME_BGA_OPERATION_START = 0,
    QRX_NVME_BGA_OPERATION_PAUSE = 1,
    QRX_NVME_BGA_OPERATION_RESUME = 2,
    QRX_NVME_BGA_OPERATION_ABORT = 3,
};

// The background activity of one VD.
struct _NVME_BGA_STATUS {
    QRX_U8 Reserved1;
    QRX_U8 BgaType;     // QRX_BGA_TYPE
    QRX_U8 ID;          // VD id
    QRX_U8 Percentage;  // 0 to 100
    QRX_U8 BgaStatus;   // QRX_BGA_STATUS
    QRX_U8 Reserved2[3];
};
using NVME_BGA_STATUS = _NVME_BGA_STATUS;
using PNVME_BGA_STATUS = _NVME_BGA_STATUS*;
static_assert(sizeof(_NVME_BGA_STATUS) == 8);
static_assert(offsetof(_NVME_BGA_STATUS, BgaStatus) == 4);

struct _NVME_BGA_REQUEST {
    RequestHeader header;
    NVME_BGA_STATUS data;  // one or more
};
using NVME_BGA_REQUEST = _NVME_BGA_REQUEST;
using PNVME_BGA_REQUEST = _NVME_BGA_REQUEST*;
static_assert(sizeof(_NVME_BGA_REQUEST) == 24);

struct _NVME_Rebuild {
    QRX_U16 VDID;
    QRX_U16 PDID;
    QRX_U8 reserved[4];
};
using NVME_Rebuild = _NVME_Rebuild;
using PNVME_Rebuild = _NVME_Rebuild*;
static_assert(sizeof(_NVME_Rebuild) == 8);
static_assert(offsetof(_NVME_Rebuild, PDID) == 2);

struct _NVME_VD_Init {
    QRX_U16 ID;
    QRX_U8 Init_Type;
    QRX_U8 Reserved[5];
};
using NVME_VD_Init = _NVME_VD_Init;
static_assert(sizeof(_NVME_VD_Init) == 8);
static_assert(offsetof(_NVME_VD_Init, Init_Type) == 2);

struct _NVME_VD_Sync {
    QRX_U16 ID;
    QRX_U8 Reserved[6];
};
using NVME_VD_Sync = _NVME_VD_Sync;
static_assert(sizeof(_NVME_VD_Sync) == 8);

struct _NVME_VD_MP {
    QRX_U16 VDID;
    QRX_U8 Reserved[6];
};
using NVME_VD_MP = _NVME_VD_MP;
static_assert(sizeof(_NVME_VD_MP) == 8);

struct _NVME_Migrate {
    QRX_U16 ID;
    QRX_U8 RaidMode;     // RAID mode code
    QRX_U8 MemberCount;  // valid entries of PDIDs
    QRX_U8 SubLDCount;
    QRX_U8 NumParityDisk;
    QRX_U8 reserved[2];
    QRX_U8 PDIDs[32];  // 0-based
};
using NVME_Migrate = _NVME_Migrate;
using PNVME_Migrate = _NVME_Migrate*;
static_assert(sizeof(_NVME_Migrate) == 40);
static_assert(offsetof(_NVME_Migrate, RaidMode) == 2);
static_assert(offsetof(_NVME_Migrate, NumParityDisk) == 5);
static_assert(offsetof(_NVME_Migrate, PDIDs) == 8);
