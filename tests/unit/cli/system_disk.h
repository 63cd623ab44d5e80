// A disk of the running system.
#pragma once

#include "api/src/function/systemdisk/systemdisk.h"
#include "tests/unit/support/scripted_machine.h"

namespace qrx::test {

// A system disk with namespace id 0x37 on the second controller.
class SystemDisk {
public:
    explicit SystemDisk(ScriptedMachine& machine)
    {
        auto* disks = GetNVMEDiskManagementInstance();
        PQRXSystemDisk disk = CreateQRXSystemDiskInstance(machine.makeDevice(9), "/dev/nvme3n1");
        disk->getNSID = [](PQRXSystemDisk, QRX_U8) { return QRX_U8{0x37}; };
        disks->m_os_devs[disks->m_os_count++] = disk;
    }
    ~SystemDisk()
    {
        auto* disks = GetNVMEDiskManagementInstance();
        disks->Final(disks);
    }
    SystemDisk(const SystemDisk&) = delete;
    SystemDisk& operator=(const SystemDisk&) = delete;
};

}  // namespace qrx::test
