// What a fuzz target of commands stands on: one controller, which answers as the target tells it, and no output.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "api/src/device/common/DeviceManagement.h"
#include "api/src/interface/globals.h"
#include "cli/Public/common.h"
#include "cli/qxsetup/command_table.h"

namespace qrx::fuzz {

// A device without any way to send.
inline Device makeDevice()
{
    Device device{};
    device.closeHandle = [](PDevice) {};
    device.getNVMEDevice = [](PDevice self) { return self; };
    std::strcpy(device.bus_dev_fun, "03:00.00");
    std::strcpy(device.device_path, "/dev/nvme0");
    return device;
}

// One that answers vendor commands.
inline Device makeDevice(decltype(Device::sendPassthruAdmin) send)
{
    Device device = makeDevice();
    device.sendPassthruAdmin = send;
    return device;
}

// Puts the device into slot 0 of the table.
inline void plugIn(Device& device)
{
    const PDeviceManagement table = GetDeviceManagementInstance();
    table->m_devs[0] = &device;
    table->m_count = 1;
}

// The process as it is before a command: the device is its one controller; `stream` and standard output lead nowhere,
// and from standard input nothing comes.
inline void begin(Device& device)
{
    static FILE* const nowhere = std::fopen("/dev/null", "w");
    static const bool quiet =
        std::freopen("/dev/null", "w", stdout) != nullptr && std::freopen("/dev/null", "r", stdin) != nullptr;
    if (!quiet || nowhere == nullptr) {
        std::abort();
    }
    plugIn(device);
    pCmdTable = generalCmdTableV1;
    cmdTableSize = static_cast<QRX_U16>(generalCmdTableV1Size());
    stream = nowhere;
    dbg_enable = 0;
    gNumAdaptersFound = 1;
    gCurrentAdapter = 0;
    gSpecificAdapterFlag = 0;
}

}  // namespace qrx::fuzz
