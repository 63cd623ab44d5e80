// Records of one controller: identity and capabilities, configuration, clock.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

// The controller's PCI identity.
inline constexpr QRX_U16 kControllerVendorId = 0x7A51;
inline constexpr QRX_U16 kControllerDeviceId = 0x3317;

// A version, printed as "%d.%d.%d.%04d" in field order.
struct _NVME_Version_Info {
    QRX_U16 MajorVersion;
    QRX_U16 MinorVersion;
    QRX_U16 OEMNumber;
    QRX_U16 BuildNumber;
};
using NVME_Version_Info = _NVME_Version_Info;
static_assert(sizeof(_NVME_Version_Info) == 8);

// One PCIe port of the controller.
struct _NVME_PCIe_Info {
    QRX_U8 Type;       // 0 end point (host side), 1 root complex (drive side), 255 ends the list
    QRX_U8 Id;         // port number within its type
    QRX_U8 Speed;      // 1 2.5Gb/s, 2 5Gb/s, 3 8Gb/s
    QRX_U8 LinkWidth;  // lanes: 1, 2, 4 or 8
};
using NVME_PCIe_Info = _NVME_PCIe_Info;
static_assert(sizeof(_NVME_PCIe_Info) == 4);
inline constexpr QRX_U8 kPcieEndPoint = 0;
inline constexpr QRX_U8 kPcieRootComplex = 1;
inline constexpr QRX_U8 kPcieEndOfList = 255;
inline constexpr std::size_t kPcieInfoMax = 16;

// Bits of _NVME_Adapter_Info::Features.
inline constexpr QRX_U32 kFeatureImport = 1U << 1;
inline constexpr QRX_U32 kFeatureRaid = 1U << 2;  // clear: JBOF
inline constexpr QRX_U32 kFeatureNamespace = 1U << 3;
inline constexpr QRX_U32 kFeatureDump = 1U << 4;
inline constexpr QRX_U32 kFeatureNmic = 1U << 5;

// Identity and capabilities of one controller.
struct _NVME_Adapter_Info {
    NVME_Version_Info UEFIVersion;
    NVME_Version_Info FirmwareVersion;
    QRX_U16 VID;        // PCI vendor id
    QRX_U16 SVID;       // PCI subsystem vendor id
    QRX_U16 DID;        // PCI device id
    QRX_U16 SDID;       // PCI subsystem device id
    QRX_U8 RevisionID;  // bit 4: stepping A; bit 5: stepping B; bits 3 to 0: stepping number
    QRX_U8 PortCount;   // ports
    QRX_U8 MaxPDPerVD;  // most members of a VD
    QRX_U8 MaxVD;       // most VDs
    QRX_U8 MaxPD;       // most PDs for each port; 0 as reported: the same as PortCount
    QRX_U8 MaxNSPerVD;  // most NS for each VD, or for each PD without RAID
    QRX_U8 MaxNS;       // most NS in all, and the number of records in an NS list
    QRX_U8 Reserved1;
    QRX_U8 VisibleVfNum[2];  // visible virtual functions of host id 0 and of host id 1
    QRX_U8 Reserved2[2];
    QRX_U32 MaxFlashSize;  // bytes; 0 as reported: 0x800000
    QRX_U16 MaxBufferSize;
    QRX_U16 SupportRAIDMode;     // a bit for each RAID mode: 0 RAID0, 1 RAID1, 2 JBOD, 3 RAID10, 4 RAID5, 5 RAID50, 6
                                 // RAID6, 7 RAID60
    QRX_U8 Cache;                // 0 off, 1 on
    QRX_U8 SupportBGAFeature;    // bit 0 initialization, 1 rebuild, 2 sync, 3 migrate, 4 media patrol
    QRX_U8 StripeSizeSupported;  // bit 0 128 KB, 1 256 KB, 2 512 KB
    QRX_U8 SKUID;                // product variant: 0 V, 1 D, 2 B, 3 A
    QRX_U32 Features;            // kFeature bits
    QRX_U32 OEMFeatures;
    QRX_U8 Link[20];
    QRX_U8 Reserved4[4];
    NVME_PCIe_Info PCIeInfo[kPcieInfoMax];  // ended by Type 255 or by the sixteenth entry
    QRX_U8 BuildDate[12];
    QRX_U8 FunctionNumber;  // PCI function; 8 and more: a routing number, device << 3 | function
    QRX_U8 DeviceNumber;    // PCI device
    QRX_U8 BusNumber;       // PCI bus
    QRX_U8 Reserved5;
};
using NVME_Adapter_Info = _NVME_Adapter_Info;
using PNVME_Adapter_Info = _NVME_Adapter_Info*;
static_assert(sizeof(_NVME_Adapter_Info) == 160);
static_assert(offsetof(_NVME_Adapter_Info, VID) == 16);
static_assert(offsetof(_NVME_Adapter_Info, RevisionID) == 24);
static_assert(offsetof(_NVME_Adapter_Info, MaxNS) == 30);
static_assert(offsetof(_NVME_Adapter_Info, VisibleVfNum) == 32);
static_assert(offsetof(_NVME_Adapter_Info, MaxFlashSize) == 36);
static_assert(offsetof(_NVME_Adapter_Info, SupportRAIDMode) == 42);
static_assert(offsetof(_NVME_Adapter_Info, SKUID) == 47);
static_assert(offsetof(_NVME_Adapter_Info, Features) == 48);
static_assert(offsetof(_NVME_Adapter_Info, Link) == 56);
static_assert(offsetof(_NVME_Adapter_Info, PCIeInfo) == 80);
static_assert(offsetof(_NVME_Adapter_Info, BuildDate) == 144);
static_assert(offsetof(_NVME_Adapter_Info, FunctionNumber) == 156);
static_assert(offsetof(_NVME_Adapter_Info, BusNumber) == 158);

// Configuration of one controller.
struct _NVME_Adapter_Config {
    QRX_U8 AutoRebuildOn;  // 1 on, else off
    QRX_U8 BGARate;        // 0 high, 2 medium, 32 low
    QRX_U8 Reserved[14];
};
using NVME_Adapter_Config = _NVME_Adapter_Config;
using PNVME_Adapter_Config = _NVME_Adapter_Config*;
static_assert(sizeof(_NVME_Adapter_Config) == 16);
static_assert(offsetof(_NVME_Adapter_Config, BGARate) == 1);

// The state of a host LED.
struct _NVME_LED {
    QRX_U16 id;     // end point, 0-based
    QRX_U8 status;  // 0 off, 1 on, 2 slow blink, 3 quick blink
    QRX_U8 reserved[5];
};
using NVME_LED = _NVME_LED;
using PNVME_LED = _NVME_LED*;
static_assert(sizeof(_NVME_LED) == 8);
static_assert(offsetof(_NVME_LED, status) == 2);

// The controller's clock: seconds since the epoch, UTC, in three 16-bit pieces.
struct _NVME_Adapter_Time {
    QRX_U16 hi;   // bits 47 to 32
    QRX_U16 mid;  // bits 31 to 16
    QRX_U16 lw;   // bits 15 to 0
    QRX_U8 reserved1[2];
};
using NVME_Adapter_Time = _NVME_Adapter_Time;
using PNVME_Adapter_Time = _NVME_Adapter_Time*;
static_assert(sizeof(_NVME_Adapter_Time) == 8);
