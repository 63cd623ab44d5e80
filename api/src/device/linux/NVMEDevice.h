// The device that owns a descriptor of the NVMe driver and sends its commands through ioctl.
#pragma once

#include "api/src/device/common/Device.h"
#include "api/src/interface/wire/types.h"

struct _NVMEDevice {
    Device in_device;  // first, so that a PDevice converts
    int m_fd;          // owned
    char name[64];     // not used by the operations
};
using NVMEDevice = _NVMEDevice;
using PNVMEDevice = _NVMEDevice*;

// A device over `fd`, which it owns from then on, with the lock of table index `index`. Null when memory is short;
// `fd` then stays the caller's.
PDevice CreateNVMEDeviceInstance(int fd, QRX_U16 index);

// The same without a lock.
PDevice CreateSimpleNVMEDeviceInstance(int fd);

// Stores the namespace id of the descriptor, or -1 where it has none, as a 32-bit value at `out_data`. Returns 0, or
// 1 with nothing stored when an argument is null or `out_data_length` is below 4.
QRX_U8 NVMEDevice_Identify_BY_NS(PDevice _this, void* out_data, QRX_U16 out_data_length);

// `size` bytes at a multiple of `align`. *oriPtr gets what the caller has to free. Null when memory is short.
void* qx_memalign(QRX_U32 align, QRX_U32 size, void** oriPtr);
