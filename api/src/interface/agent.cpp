#include "api/src/interface/agent.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "api/src/device/common/DeviceManagement.h"

namespace {

struct Text {
    QRX_U32 code;
    const char* text;
};

// Generic and NVM command set codes, by the whole status.
constexpr Text kGenericTexts[] = {
    {0, "Successful Completion"},
    {1, "Invalid Command Opcode"},
    {2, "Invalid Field in Command"},
    {3, "Command ID Conflict"},
    {4, "Data Transfer Error"},
    {5, "Commands Aborted due to Power Loss Notification"},
    {6, "Internal Error"},
    {7, "Command Abort Requested"},
    {8, "Command Aborted due to SQ Deletion"},
    {9, "Command Aborted due to Failed Fused Command"},
    {10, "Command Aborted due to Missing Fused Command"},
    {11, "Invalid Namespace or Format"},
    {12, "Command Sequence Error"},
    {13, "Invalid SGL Segment Descriptor"},
    {14, "Invalid Number of SGL Descriptors"},
    {15, "Data SGL Length Invalid"},
    {16, "Metadata SGL Length Invalid"},
    {17, "SGL Descriptor Type Invalid"},
    {18, "Invalid Use of Controller Memory Buffer"},
    {19, "PRP Offset Invalid"},
    {20, "Atomic Write Unit Exceeded"},
    {21, "Operation Denied"},
    {22, "SGL Offset Invalid"},
    {24, "Host Identifier Inconsistent Format"},
    {25, "Keep Alive Timeout Expired"},
    {26, "Keep Alive Timeout Invalid"},
    {27, "Command Aborted due to Preempt and Abort"},
    {28, "Sanitize Failed"},
    {29, "Sanitize In Progress"},
    {30, "SGL Data Block Granularity Invalid"},
    {31, "Command Not Supported for Queue in CMB"},
    {128, "LBA Out of Range"},
    {129, "Capacity Exceeded"},
    {130, "Namespace Not Ready"},
    {131, "Reservation Conflict"},
    {132, "Format In Progress"},
};

// Command-specific codes, by the low 8 bits.
constexpr Text kCommandTexts[] = {
    {0, "Completion Queue Invalid"},
    {1, "Invalid Queue Identifier"},
    {2, "Invalid Queue Size"},
    {3, "Abort Command Limit Exceeded"},
    {5, "Asynchronous Event Request Limit Exceeded"},
    {6, "Invalid Firmware Slot"},
    {7, "Invalid Firmware Image"},
    {8, "Invalid Interrupt Vector"},
    {9, "Invalid Log Page"},
    {10, "Invalid Format"},
    {11, "Firmware Activation Requires Conventional Reset"},
    {12, "Invalid Queue Deletion"},
    {13, "Feature Identifier Not Saveable"},
    {14, "Feature Not Changeable"},
    {15, "Feature Not Namespace Specific"},
    {16, "Firmware Activation Requires NVM Subsystem Reset"},
    {17, "Firmware Activation Requires Reset"},
    {18, "Firmware Activation Requires Maximum Time Violation"},
    {19, "Firmware Activation Prohibited"},
    {20, "Overlapping Range"},
    {21, "Namespace Insufficient Capacity"},
    {22, "Namespace Identifier Unavailable"},
    {24, "Namespace Already Attached"},
    {25, "Namespace Is Private"},
    {26, "Namespace Not Attached"},
    {27, "Thin Provisioning Not Supported"},
    {28, "Controller List Invalid"},
    {29, "Device Self-test In Progress"},
    {30, "Boot Partition Write Prohibited"},
    {31, "Invalid Controller Identifier"},
    {32, "Invalid Secondary Controller State"},
    {33, "Invalid Number of Controller Resources"},
    {34, "Invalid Resource Identifier"},
};

// The firmware's own codes, by the low 8 bits. HD: a physical disk, LD: a virtual disk, BE: the back end.
constexpr Text kVendorTexts[] = {
    {0, "No error"},
    {1, "Failed"},
    {3, "Invalid request"},
    {4, "Invalid parameter"},
    {5, "Not supported"},
    {6, "Invalid HD ID"},
    {7, "Invalid LD ID"},
    {8, "No resource"},
    {9, "Operation in progress"},
    {10, "BE attach success but identify NS fail"},
    {11, "No empty BE NS slot"},
    {12, "NS still attached"},
    {51, "LD is not redundant"},
    {52, "LD is not fully inited"},
    {53, "LD is not functional"},
    {54, "LD is functional"},
    {55, "PD size is too small"},
    {56, "Import no table"},
    {57, "Import already in table"},
    {58, "Import foreign"},
    {59, "HD is assigned"},
    {60, "Invalid RAID mode"},
    {61, "Invalid HD count"},
    {62, "Invalid SBS"},
    {63, "No available ID"},
    {64, "HD sector size mismatch"},
    {65, "Create namespace cap out of range"},
    {66, "LD has BGA"},
    {67, "No BGA activity"},
    {68, "Invalid BGA action"},
    {69, "BGA is running"},
    {70, "BGA is not running"},
    {71, "Rebuild source fail."},
    {72, "Rebuild target is too small"},
    {73, "Media patrol is running"},
    {74, "Invalid Namespace count"},
};

template <std::size_t size>
const char* textOf(const Text (&table)[size], QRX_U32 code, const char* otherwise)
{
    const auto* row =
        std::find_if(std::begin(table), std::end(table), [code](const Text& t) { return t.code == code; });
    return row != std::end(table) ? row->text : otherwise;
}

constexpr QRX_U32 kStatusCode = 0xFF;         // bits of the code within its type
constexpr QRX_U32 kVendorType = 0x700;        // all of these set: the firmware's own codes
constexpr QRX_U32 kCommandType = 0x100;       // otherwise, this set: command-specific codes
constexpr QRX_U32 kReportedByCaller = 65535;  // a status whose text is the caller's affair

PDevice nvmeDevice(QRX_U8 adapter_id)
{
    PDeviceManagement table = GetDeviceManagementInstance();
    PDevice device = table->getDevice(table, adapter_id);
    return device->getNVMEDevice(device);
}

QRX_U32 report(QRX_U32 status)
{
    if (status != kReportedByCaller) {
        _showStatusCode(status);
    }
    return status;
}

}  // namespace

QRX_U32 QRX_Adapter_Admin(QRX_U8 adapter_id, QRX_U8 opc, QRX_U32 name_space, QRX_U32* CDW, QRX_U8 CDW_length,
                          void* data_in, QRX_U16 data_in_length, void* data_out, QRX_U16 data_out_length)
{
    PDevice device = nvmeDevice(adapter_id);
    return report(device->sendCommand(device, opc, name_space, CDW, CDW_length, data_in, data_in_length, data_out,
                                      data_out_length));
}

QRX_U32 QRX_Adapter_NVM(QRX_U8 adapter_id, QRX_U8 opc, QRX_U32 name_space, QRX_U32* CDW, QRX_U8 CDW_length,
                        void* data_in, QRX_U16 data_in_length, void* data_out, QRX_U16 data_out_length)
{
    PDevice device = nvmeDevice(adapter_id);
    return device->sendNVM(device, opc, name_space, CDW, CDW_length, data_in, data_in_length, data_out,
                           data_out_length);
}

QRX_U32 QRX_Adapter_PassthruAdmin(QRX_U8 adapter_id, void* pCmd, void* data_in, QRX_U16 data_in_length, void* data_out,
                                  QRX_U16 data_out_length, QRX_U32* params)
{
    PDevice device = nvmeDevice(adapter_id);
    return report(device->sendPassthruAdmin(device, pCmd, data_in, data_in_length, data_out, data_out_length, params));
}

QRX_U32 QRX_Adapter_PassthruAdmin_no_status_code(QRX_U8 adapter_id, void* pCmd, void* data_in, QRX_U16 data_in_length,
                                                 void* data_out, QRX_U16 data_out_length)
{
    PDevice device = nvmeDevice(adapter_id);
    return device->sendPassthruAdmin(device, pCmd, data_in, data_in_length, data_out, data_out_length, nullptr);
}

void _showStatusCode(QRX_U32 statusCode)
{
    if (statusCode == 0) {
        return;
    }
    const char* text = nullptr;
    if ((statusCode & kVendorType) == kVendorType) {
        text = _vcErrorMessage(statusCode);
    } else if ((statusCode & kCommandType) != 0) {
        text = _cssErrorMessage(statusCode);
    } else {
        text = textOf(kGenericTexts, statusCode, "Unknown Status");
    }
    std::printf("%s (Status Code: 0x%x)\n", text, statusCode);
}

const char* _cssErrorMessage(QRX_U32 errorCode)
{
    return textOf(kCommandTexts, errorCode & kStatusCode, "Unknown error");
}

const char* _vcErrorMessage(QRX_U32 errorCode)
{
    return textOf(kVendorTexts, errorCode & kStatusCode, "Unknown error");
}
