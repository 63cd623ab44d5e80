// The older road to a controller: a request is written as a frame with one command, and its answer fetched with a
// second one, under the device's lock, since the controller keeps the answer between the two.
//
// The device table holds pair devices: they carry a controller's identity and own its NVMe device.
#pragma once

#include "api/src/device/common/Device.h"
#include "api/src/interface/wire/types.h"

struct _PairCMDDevice {
    Device in_device;          // first, so that a PDevice converts; its m_lock is not used
    PDevice m_nvme_device;     // owned
    QRX_U8 m_in_buffer[4096];  // send frame; keeps the last request behind what the next one fills
    QRX_U8 m_out_buffer[4096];
};
using PairCMDDevice = _PairCMDDevice;
using PPairCMDDevice = _PairCMDDevice*;

// A pair device over `NVME_Device`, which it owns from then on. Null when memory is short; `NVME_Device` then stays
// the caller's.
//
// Its sendCommand takes up to four 16-bit request words in `cmd`, at most 4080 bytes of request record and 4088 of
// answer; opcode and namespace are not used. Returns 0, the firmware's cmd_status, or 1.
PDevice CreatePairCMDDeviceInstance(PDevice NVME_Device);
