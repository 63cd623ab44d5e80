// Finds the controllers of this machine and fills the device table with them.
#pragma once

#include <cstddef>

#include "api/src/device/common/Device.h"
#include "api/src/device/common/DeviceManagement.h"
#include "api/src/interface/wire/types.h"

// One line of the scan: an NVMe controller in the kernel's device tree.
struct _BusDevFun {
    QRX_U32 id;  // the N of /dev/nvme<N>
    QRX_U8 reserved[2];
    char bus_dev_fun[32];  // PCI location, "03:00.0"
};
using BusDevFun = _BusDevFun;
using PBusDevFun = _BusDevFun*;

inline constexpr std::size_t kMaxScanLines = 65535;

// The scan over the kernel's device tree, and the older one over /dev.
// Both throw std::bad_alloc, with the controllers found so far in the table.
void DeviceManagement_ScanV2(PDeviceManagement _this);
void DeviceManagement_Scan(PDeviceManagement _this);

// Fills up to kMaxScanLines records, in the order of the lines. Returns their number, 0 when nothing could be asked.
QRX_U32 busDevFunScan(PBusDevFun pBusDevFun);

// Takes one line, such as "03:00.0/nvme/nvme2", apart. A line that does not read so leaves the record as it is; a
// location that is too long is cut.
void parseBusDevFun(PBusDevFun pBusDevFun, const char* line);

// 1 if the NVMe device is a controller to be kept: of the vendor wanted with --vid, or else one of ours.
QRX_U8 DeviceManagement_identify(PDevice handle);
// 1 if the adapter record can be read and has our device id.
QRX_U8 DeviceManagement_DeviceID(PDevice handle);
// Writes the location that the controller itself reports to `bdf` (32 bytes). Returns the status of the read; a
// refusal by the firmware is 0 with `bdf` unwritten.
QRX_U32 GetBDFfromSimpleAdapterInfo(PDevice handle, char* bdf);
// Writes the subsystem name, 223 characters padded with blanks, to `subnqn`, whose byte 223 is left alone. Zeroes
// when the controller does not identify itself.
void get_identify_subnqn_gen(PDevice handle, char* subnqn);

// Ascending by device number.
void sorting(PDevice* m_devs, QRX_U16 arrayLen);

// 1 if the device answers the vendor's adapter read. No caller.
QRX_U8 IsSupportVenderCmd(PDevice handle);
// The shorter form of the name: 60 characters, and in the 32 behind them the decimal text of the word at byte 828 of
// the identify data. `subnqn` has 256 bytes. No caller.
void get_identify_subnqn(PDevice handle, char* subnqn);
