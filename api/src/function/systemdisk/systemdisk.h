// The disks of the running system that lie on our controllers: found at start, kept until the end, and asked before
// a virtual disk is deleted.
#pragma once

#include "api/src/device/common/Device.h"
#include "api/src/interface/wire/nvme.h"
#include "api/src/interface/wire/types.h"

// One system disk: an open block device of a namespace.
struct _QRXSystemDisk;
using QRXSystemDisk = _QRXSystemDisk;
using PQRXSystemDisk = _QRXSystemDisk*;

struct _QRXSystemDisk {
    PDevice m_dev;    // owned; its device_path is the disk's path
    char m_path[32];  // not used
    QRX_ID_CONTROLLER m_control_id;

    QRX_U8 (*id_ctrl)(PQRXSystemDisk self);                  // reads m_control_id; 1: the controller is one of ours
    QRX_ID_CONTROLLER* (*getControl)(PQRXSystemDisk self);   // where m_control_id is
    QRX_U8 (*getNSID)(PQRXSystemDisk self, QRX_U8 adapter);  // low byte of its namespace id, 255 if unknown
    void (*Final)(PQRXSystemDisk self);                      // closes the device and frees the disk
};

// A disk over `device`, which it owns from then on, with `path` stored in it. Null when memory is short; `device`
// then stays the caller's.
PQRXSystemDisk CreateQRXSystemDiskInstance(PDevice device, const char* path);

inline constexpr QRX_U8 kMaxSystemDisks = 32;

struct _NVMEDiskManagement;
using NVMEDiskManagement = _NVMEDiskManagement;
using PNVMEDiskManagement = _NVMEDiskManagement*;

struct _NVMEDiskManagement {
    PQRXSystemDisk m_os_devs[kMaxSystemDisks];
    QRX_U8 m_os_count;

    // Takes `device` over, and keeps it as a system disk if its controller is one of ours. Throws std::bad_alloc.
    void (*addOSDisk)(PNVMEDiskManagement self, PDevice device, const char* path);
    void (*Final)(PNVMEDiskManagement self);  // closes all disks

    bool m_overflow_told;  // that there are more disks than entries has been said
};

// The one instance, filled on the first call.
PNVMEDiskManagement GetNVMEDiskManagementInstance();
