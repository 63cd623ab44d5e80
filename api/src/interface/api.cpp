#include "api/src/interface/api.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>

#include "api/src/device/common/DeviceManagement.h"
#include "api/src/function/log/log.h"
#include "api/src/function/osvolume/osvolume.h"
#include "api/src/function/progressbar/common/ProgressBarManagement.h"
#include "api/src/function/systemdisk/systemdisk.h"
#include "api/src/function/timesync/timesync.h"

namespace {

// The controllers that can be chosen: the current one has an index of 8 bits.
QRX_U16 choices()
{
    return std::min<QRX_U16>(QRX_Adapter_GetCount(), 256);
}

// The last choice for which `matches` holds of the device there.
template <class Predicate>
std::optional<int> lastIndexOf(Predicate matches)
{
    PDeviceManagement table = GetDeviceManagementInstance();
    std::optional<int> found;
    for (QRX_U16 index = 0; index < choices(); ++index) {
        if (matches(*table->getDevice(table, index))) {
            found = index;
        }
    }
    return found;
}

QRX_BOOLEAN store(std::optional<int> found, int* destination)
{
    if (found) {
        *destination = *found;
    }
    return found.has_value();
}

}  // namespace

void QRX_Init()
{
    PDeviceManagement table = GetDeviceManagementInstance();
    init_log();
    progressbar_management_init();
    table->ScanV2(table);
    for (QRX_U16 adapter_id = 0; adapter_id < table->getDeviceCount(table); ++adapter_id) {
        TimeSyncFunction(adapter_id);
    }
    os_vol_scan();
}

void QRX_Final()
{
    PDeviceManagement table = GetDeviceManagementInstance();
    PNVMEDiskManagement disks = GetNVMEDiskManagementInstance();
    disks->Final(disks);
    progressbar_management_close();
    table->Final(table);
    close_log();
}

QRX_U8 QRX_IsSysDenied()
{
    PDeviceManagement table = GetDeviceManagementInstance();
    return table->isSysDenied(table);
}

QRX_U16 QRX_Adapter_GetCount()
{
    PDeviceManagement table = GetDeviceManagementInstance();
    return table->getDeviceCount(table);
}

QRX_U8 QRX_Adapter_GetOneBaseMode()
{
    PDeviceManagement table = GetDeviceManagementInstance();
    return table->getOneBaseMode(table);
}

QRX_U16* QRX_Adapter_GetDeviceVID()
{
    PDeviceManagement table = GetDeviceManagementInstance();
    return table->getDeviceVID(table);
}

char* QRX_Adapter_GetDeviceFun(QRX_U16 adapter_id)
{
    PDeviceManagement table = GetDeviceManagementInstance();
    return table->getDeviceFun(table, adapter_id);
}

char* QRX_Adapter_GetDevicePath(QRX_U16 adapter_id)
{
    PDeviceManagement table = GetDeviceManagementInstance();
    return table->getDevicePath(table, adapter_id);
}

char* QRX_Adapter_GetDeviceSUBNQN(QRX_U16 adapter_id)
{
    PDeviceManagement table = GetDeviceManagementInstance();
    return table->getDeviceSUBNQN(table, adapter_id);
}

int QRX_Adapter_GetSlotID(QRX_U16 adapter_id)
{
    PDeviceManagement table = GetDeviceManagementInstance();
    return table->getSlotID(table, adapter_id);
}

QRX_BOOLEAN findAdapterId(char* slot, int* id)
{
    return store(lastIndexOf([slot](const Device& device) { return std::strcmp(device.bus_dev_fun, slot) == 0; }), id);
}

void GetAdapterIdFromDeviceName(int internalID, int* mappingID)
{
    if (const auto number = qrx::deviceNumber(QRX_Adapter_GetDevicePath(static_cast<QRX_U16>(internalID)))) {
        *mappingID = *number;
    }
}

QRX_BOOLEAN SetAdapterIdFromDeviceName(int* devNameID, int* addapterID)
{
    for (QRX_U16 index = 0; index < choices(); ++index) {
        if (qrx::deviceNumber(QRX_Adapter_GetDevicePath(index)) == *devNameID) {
            *addapterID = index;
            return true;
        }
    }
    return false;
}

QRX_BOOLEAN SetAdapterIdFromSUBNQN(char* subnqn, int* mappingAddapterID)
{
    // As much of the wanted name as a device's own field can hold.
    constexpr std::size_t kLongest = sizeof(Device::subnqn) - 1;
    const std::string_view wanted(subnqn, strnlen(subnqn, kLongest));
    return store(lastIndexOf([wanted](const Device& device) { return wanted == device.subnqn; }), mappingAddapterID);
}
