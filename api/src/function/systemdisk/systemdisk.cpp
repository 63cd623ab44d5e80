#include "api/src/function/systemdisk/systemdisk.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "api/src/device/common/IdentifyController.h"
#include "api/src/device/linux/NVMEDevice.h"
#include "api/src/interface/wire/adapter.h"

namespace {

constexpr QRX_U8 kUnknownNamespace = 255;

QRX_U8 QRXSystemDisk_id_ctrl(PQRXSystemDisk self)
{
    self->m_control_id = qrx::identifyController(self->m_dev).value_or(QRX_ID_CONTROLLER{});
    return self->m_control_id.vid == kControllerVendorId ? 1 : 0;
}

QRX_ID_CONTROLLER* QRXSystemDisk_getControl(PQRXSystemDisk self)
{
    return &self->m_control_id;
}

QRX_U8 QRXSystemDisk_getNS(PQRXSystemDisk self, QRX_U8 /*adapter*/)
{
    QRX_U32 nsid = 0;
    if (NVMEDevice_Identify_BY_NS(self->m_dev, &nsid, sizeof(nsid)) != 0) {
        return kUnknownNamespace;
    }
    return static_cast<QRX_U8>(nsid);
}

void QRXSystemDisk_Final(PQRXSystemDisk self)
{
    if (self->m_dev != nullptr) {
        self->m_dev->closeHandle(self->m_dev);
    }
    std::free(self);
}

void NVMEDiskManagement_addOSDisk(PNVMEDiskManagement self, PDevice device, const char* path)
{
    PQRXSystemDisk disk = CreateQRXSystemDiskInstance(device, path);
    if (disk == nullptr) {
        device->closeHandle(device);
        throw std::bad_alloc();
    }
    if (disk->id_ctrl(disk) == 0) {
        disk->Final(disk);
        return;
    }
    if (self->m_os_count == kMaxSystemDisks) {
        if (!self->m_overflow_told) {
            std::fprintf(stderr, "More system disks than the %u that can be kept.\n", unsigned{kMaxSystemDisks});
            self->m_overflow_told = true;
        }
        disk->Final(disk);
        return;
    }
    self->m_os_devs[self->m_os_count] = disk;
    ++self->m_os_count;
}

void NVMEDiskManagement_Final(PNVMEDiskManagement self)
{
    for (QRX_U8 i = 0; i < self->m_os_count; ++i) {
        self->m_os_devs[i]->Final(self->m_os_devs[i]);
        self->m_os_devs[i] = nullptr;
    }
    self->m_os_count = 0;
    self->m_overflow_told = false;
}

}  // namespace

PQRXSystemDisk CreateQRXSystemDiskInstance(PDevice device, const char* path)
{
    auto* disk = static_cast<PQRXSystemDisk>(std::calloc(1, sizeof(QRXSystemDisk)));
    if (disk == nullptr) {
        return nullptr;
    }
    disk->m_dev = device;
    if (device != nullptr) {
        std::snprintf(device->device_path, sizeof(device->device_path), "%s", path);
    }
    disk->id_ctrl = QRXSystemDisk_id_ctrl;
    disk->getControl = QRXSystemDisk_getControl;
    disk->getNSID = QRXSystemDisk_getNS;
    disk->Final = QRXSystemDisk_Final;
    return disk;
}

PNVMEDiskManagement GetNVMEDiskManagementInstance()
{
    static NVMEDiskManagement instance;
    if (instance.Final == nullptr) {
        instance.addOSDisk = NVMEDiskManagement_addOSDisk;
        instance.Final = NVMEDiskManagement_Final;
    }
    return &instance;
}
