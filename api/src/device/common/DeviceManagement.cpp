#include "api/src/device/common/DeviceManagement.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "api/src/device/common/DefaultDevice.h"
#include "api/src/device/linux/LinuxDeviceManagement.h"

QRX_U16 gVIDFormCLI = 0;

namespace {

PDevice DeviceManagement_getDevice(PDeviceManagement _this, QRX_U16 index)
{
    return index < kMaxDevices ? _this->m_devs[index] : CreateDefaultDeviceInstance();
}

QRX_U16 DeviceManagement_getDeviceCount(PDeviceManagement _this)
{
    return _this->m_count;
}

// The four texts and numbers of one slot. Going through getDevice keeps an index past the table harmless: it reads
// the null device's empty fields.
char* DeviceManagement_getDeviceFun(PDeviceManagement _this, QRX_U16 index)
{
    return _this->getDevice(_this, index)->bus_dev_fun;
}

char* DeviceManagement_getDevicePath(PDeviceManagement _this, QRX_U16 index)
{
    return _this->getDevice(_this, index)->device_path;
}

char* DeviceManagement_getDeviceSUBNQN(PDeviceManagement _this, QRX_U16 index)
{
    return _this->getDevice(_this, index)->subnqn;
}

int DeviceManagement_getSlotID(PDeviceManagement _this, QRX_U16 index)
{
    return _this->getDevice(_this, index)->slot_id;
}

QRX_U16* DeviceManagement_getDeviceVID(PDeviceManagement)
{
    return &gVIDFormCLI;
}

QRX_U8 DeviceManagement_isSysDenied(PDeviceManagement _this)
{
    return _this->m_sysDenied;
}

// The one place that decides how ids are numbered: from zero.
QRX_U8 DeviceManagement_getOneBaseMode(PDeviceManagement _this)
{
    _this->m_one_base_mode = 0;
    return _this->m_one_base_mode;
}

void DeviceManagement_Final(PDeviceManagement _this)
{
    for (std::size_t index = 0; index < _this->m_count; ++index) {
        PDevice device = _this->m_devs[index];
        device->closeHandle(device);
        _this->m_devs[index] = CreateDefaultDeviceInstance();
    }
    _this->m_count = 0;
    _this->m_one_base_mode = 0;
}

}  // namespace

PDeviceManagement GetDeviceManagementInstance()
{
    static DeviceManagement instance;
    if (instance.Scan == nullptr) {
        instance.Scan = DeviceManagement_Scan;
        instance.ScanV2 = DeviceManagement_ScanV2;
        instance.Final = DeviceManagement_Final;
        instance.getDevice = DeviceManagement_getDevice;
        instance.getDeviceCount = DeviceManagement_getDeviceCount;
        instance.getDeviceFun = DeviceManagement_getDeviceFun;
        instance.getDevicePath = DeviceManagement_getDevicePath;
        instance.getDeviceSUBNQN = DeviceManagement_getDeviceSUBNQN;
        instance.getSlotID = DeviceManagement_getSlotID;
        instance.getDeviceVID = DeviceManagement_getDeviceVID;
        instance.isSysDenied = DeviceManagement_isSysDenied;
        instance.getOneBaseMode = DeviceManagement_getOneBaseMode;
        std::fill(std::begin(instance.m_devs), std::end(instance.m_devs), CreateDefaultDeviceInstance());
    }
    return &instance;
}

std::optional<int> qrx::deviceNumber(const char* device_path)
{
    int number = 0;
    if (std::sscanf(device_path, "/dev/nvme%d", &number) != 1) {
        return std::nullopt;
    }
    return number;
}
