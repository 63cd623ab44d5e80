// Records of a virtual disk, and the codes that give their fields meaning.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/envelope.h"
#include "api/src/interface/wire/types.h"

// Codes of _NVME_VD_Info::Status and _NVME_NS_Info::VDStatus.
inline constexpr QRX_U8 kVdFunctional = 0;
inline constexpr QRX_U8 kVdDegrade = 1;
inline constexpr QRX_U8 kVdDeleted = 2;
inline constexpr QRX_U8 kVdMissing = 3;
inline constexpr QRX_U8 kVdOffline = 4;
inline constexpr QRX_U8 kVdPartiallyOptimal = 5;
inline constexpr QRX_U8 kVdForeign = 6;
inline constexpr QRX_U8 kVdImportable = 7;
inline constexpr QRX_U8 kVdNotImportable = 8;
inline constexpr QRX_U8 kVdInitialization = 9;
inline constexpr QRX_U8 kVdRebuilding = 10;
inline constexpr QRX_U8 kVdErrorHandling = 11;

// RAID mode codes: the level, in the high nibble for nested modes.
inline constexpr QRX_U8 kRaid0 = 0;
inline constexpr QRX_U8 kRaid1 = 1;
inline constexpr QRX_U8 kJbod = 15;
inline constexpr QRX_U8 kRaid10 = 0x10;
inline constexpr QRX_U8 kRaid5 = 5;
inline constexpr QRX_U8 kRaid50 = 0x50;
inline constexpr QRX_U8 kRaid6 = 6;
inline constexpr QRX_U8 kRaid60 = 0x60;

inline constexpr std::size_t kVdMembersMax = 32;
inline constexpr QRX_U16 kMissingMember = 65535;

// Sizes below are not whole multiples of their 64-bit fields' alignment, so those fields align to 4.
#pragma pack(push, 4)
struct _NVME_VD_Info {
    QRX_U16 ID;          // 0-based
    QRX_U8 Status;       // kVd codes
    QRX_U8 Importable;   // 1 importable, else not
    QRX_U8 RaidMode;     // RAID mode code
    QRX_U8 MemberCount;  // valid entries of PDIDs
    QRX_U8 BGAIndex;
    QRX_U8 reserved2;
    QRX_U64 LBA;                   // sectors
    QRX_U16 PDIDs[kVdMembersMax];  // member PD ids, 0-based; kMissingMember marks a missing one
    QRX_U8 reserved4;
    QRX_U8 NumParityDisk;    // meaningful for RAID6 and RAID60
    QRX_U16 StripBlockSize;  // sectors of 512 bytes: 256 is 128K, 512 is 256K, 1024 is 512K
    QRX_U32 SectorSize;      // bytes, 0 unknown
    QRX_U8 Name[16];         // text, not terminated when full
    QRX_U8 NSIDs[64];        // namespaces of this VD
    QRX_U8 reserved3[8];
    QRX_U8 reserved5[4];
};
using NVME_VD_Info = _NVME_VD_Info;
using PNVME_VD_Info = _NVME_VD_Info*;
static_assert(sizeof(_NVME_VD_Info) == 180);
static_assert(offsetof(_NVME_VD_Info, LBA) == 8);
static_assert(offsetof(_NVME_VD_Info, PDIDs) == 16);
static_assert(offsetof(_NVME_VD_Info, NumParityDisk) == 81);
static_assert(offsetof(_NVME_VD_Info, StripBlockSize) == 82);
static_assert(offsetof(_NVME_VD_Info, SectorSize) == 84);
static_assert(offsetof(_NVME_VD_Info, Name) == 88);
static_assert(offsetof(_NVME_VD_Info, NSIDs) == 104);

struct _NVME_VD_Info_Request {
    RequestHeader header;
    NVME_VD_Info vd_info;  // one or more
};
using NVME_VD_Info_Request = _NVME_VD_Info_Request;
using PNVME_VD_Info_Request = _NVME_VD_Info_Request*;
static_assert(sizeof(_NVME_VD_Info_Request) == 196);
#pragma pack(pop)

struct _NVME_VD_Config {
    QRX_U16 ID;
    QRX_U8 Reserved[6];
    QRX_U8 Name[16];
};
using NVME_VD_Config = _NVME_VD_Config;
static_assert(sizeof(_NVME_VD_Config) == 24);

struct _NVME_VD_Config_Request {
    RequestHeader header;
    NVME_VD_Config vd_config;  // one or more
};
using NVME_VD_Config_Request = _NVME_VD_Config_Request;
using PNVME_VD_Config_Request = _NVME_VD_Config_Request*;
static_assert(sizeof(_NVME_VD_Config_Request) == 40);

struct _NVME_Create_VD {
    QRX_U8 RAIDMode;
    QRX_U8 MemberCount;
    QRX_U8 RoundingScheme;
    QRX_U8 SubLDCount;
    QRX_U16 StripeBlockSize;
    QRX_U8 NumParityDisk;
    QRX_U8 reserved1;
    QRX_U8 InitializationOption;
    QRX_U8 Reserved2[3];
    QRX_U16 PDIDs[kVdMembersMax];
    QRX_U8 Name[16];
    QRX_U8 reserved3[4];
    QRX_U64 reserved4;
    QRX_U8 QueryLDSize;  // 1: only report the size that would result
    QRX_U8 Auto_create;
    QRX_U16 NSCount;
    QRX_U8 reserved5[4];
    QRX_U64 NSSize[64];
};
using NVME_Create_VD = _NVME_Create_VD;
using PNVME_Create_VD = _NVME_Create_VD*;
static_assert(sizeof(_NVME_Create_VD) == 624);
static_assert(offsetof(_NVME_Create_VD, PDIDs) == 12);
static_assert(offsetof(_NVME_Create_VD, Name) == 76);
static_assert(offsetof(_NVME_Create_VD, QueryLDSize) == 104);
static_assert(offsetof(_NVME_Create_VD, NSSize) == 112);

struct _NVME_PreCreate_VD {
    QRX_U32 reserved;
    QRX_U32 SectorSize;  // bytes
    QRX_U64 LBA;         // sectors
};
using NVME_PreCreate_VD = _NVME_PreCreate_VD;
using PNVME_PreCreate_VD = _NVME_PreCreate_VD*;
static_assert(sizeof(_NVME_PreCreate_VD) == 16);

struct _NVME_VD_Delete {
    QRX_U16 ID;
    QRX_U8 ClearMBR;
    QRX_U8 Reserved[5];
};
using NVME_VD_Delete = _NVME_VD_Delete;
static_assert(sizeof(_NVME_VD_Delete) == 8);
