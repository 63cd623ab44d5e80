#include "api/src/device/common/DefaultDevice.h"

namespace {

constexpr QRX_U32 kNothingSent = 1;

QRX_U32 DefaultDevice_sendCommand(PDevice, QRX_U8, QRX_U32, QRX_U32*, QRX_U8, void*, QRX_U16, void*, QRX_U16)
{
    return kNothingSent;
}

QRX_U32 DefaultDevice_sendNVM(PDevice, QRX_U8, QRX_U32, QRX_U32*, QRX_U8, void*, QRX_U32, void*, QRX_U32)
{
    return kNothingSent;
}

QRX_U32 DefaultDevice_sendPassthruAdmin(PDevice, void*, void*, QRX_U16, void*, QRX_U16, QRX_U32*)
{
    return kNothingSent;
}

void DefaultDevice_closeHandle(PDevice) {}

PDevice DefaultDevice_getNVMEDevice(PDevice)
{
    return CreateDefaultDeviceInstance();
}

}  // namespace

PDevice CreateDefaultDeviceInstance()
{
    static Device instance;
    if (instance.sendCommand == nullptr) {
        instance.sendCommand = DefaultDevice_sendCommand;
        instance.sendNVM = DefaultDevice_sendNVM;
        instance.sendPassthruAdmin = DefaultDevice_sendPassthruAdmin;
        instance.closeHandle = DefaultDevice_closeHandle;
        instance.getNVMEDevice = DefaultDevice_getNVMEDevice;
    }
    return &instance;
}
