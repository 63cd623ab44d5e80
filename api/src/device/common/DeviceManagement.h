// The process-wide table of controllers.
//
// A controller has two numbers: its index in this table, which all QRX_... functions take, and its device number,
// the N of /dev/nvme<N>, which the user types and reads. After the scan, index order is device number order.
#pragma once

#include <cstddef>
#include <optional>

#include "api/src/device/common/Device.h"
#include "api/src/interface/wire/types.h"

inline constexpr std::size_t kMaxDevices = 1088;

struct _DeviceManagement;
using DeviceManagement = _DeviceManagement;
using PDeviceManagement = _DeviceManagement*;

struct _DeviceManagement {
    PDevice m_devs[kMaxDevices];  // slots; a free one holds the null device
    QRX_U16 m_count;              // slots in use, from index 0
    QRX_U8 m_sysDenied;           // an open failed with EACCES
    QRX_U8 m_one_base_mode;       // numbering mode, always 0

    void (*Scan)(PDeviceManagement _this);                         // the older scan, over /dev; no caller
    void (*ScanV2)(PDeviceManagement _this);                       // the scan over the kernel's device tree
    void (*Final)(PDeviceManagement _this);                        // closes every device and empties the table
    PDevice (*getDevice)(PDeviceManagement _this, QRX_U16 index);  // the null device when out of range; never null
    QRX_U16 (*getDeviceCount)(PDeviceManagement _this);
    char* (*getDeviceFun)(PDeviceManagement _this, QRX_U16 index);  // bus_dev_fun of one slot
    char* (*getDevicePath)(PDeviceManagement _this, QRX_U16 index);
    char* (*getDeviceSUBNQN)(PDeviceManagement _this, QRX_U16 index);
    int (*getSlotID)(PDeviceManagement _this, QRX_U16 index);
    QRX_U16* (*getDeviceVID)(PDeviceManagement _this);  // address of gVIDFormCLI
    QRX_U8 (*isSysDenied)(PDeviceManagement _this);
    QRX_U8 (*getOneBaseMode)(PDeviceManagement _this);
};

// The vendor id given with --vid=0x..., or 0.
extern QRX_U16 gVIDFormCLI;

// The one instance, filled on the first call.
PDeviceManagement GetDeviceManagementInstance();

namespace qrx {

// The N of the path "/dev/nvme<N>", or nothing when the path does not read so.
std::optional<int> deviceNumber(const char* device_path);

}  // namespace qrx
