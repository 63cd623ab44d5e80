#include "api/src/interface/agent.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "api/src/device/common/DeviceManagement.h"
#include "api/src/interface/wire/status.h"

namespace {

struct Text {
    QRX_U32 code;
    const char* text;
};

// Generic and NVM command set codes, by the whole status.
constexpr Text kGenericTexts[] = {
    {QRX_NVME_SC_SUCCESS, "Successful Completion"},
    {QRX_NVME_SC_INVALID_OPCODE, "Invalid Command Opcode"},
    {QRX_NVME_SC_INVALID_FIELD, "Invalid Field in Command"},
    {QRX_NVME_SC_CMDID_CONFLICT, "Command ID Conflict"},
    {QRX_NVME_SC_DATA_XFER_ERROR, "Data Transfer Error"},
    {QRX_NVME_SC_POWER_LOSS, "Commands Aborted due to Power Loss Notification"},
    {QRX_NVME_SC_INTERNAL, "Internal Error"},
    {QRX_NVME_SC_ABORT_REQ, "Command Abort Requested"},
    {QRX_NVME_SC_ABORT_QUEUE, "Command Aborted due to SQ Deletion"},
    {QRX_NVME_SC_FUSED_FAIL, "Command Aborted due to Failed Fused Command"},
    {QRX_NVME_SC_FUSED_MISSING, "Command Aborted due to Missing Fused Command"},
    {QRX_NVME_SC_INVALID_NS, "Invalid Namespace or Format"},
    {QRX_NVME_SC_CMD_SEQ_ERROR, "Command Sequence Error"},
    {QRX_NVME_SC_CMD_INVALID_SGL, "Invalid SGL Segment Descriptor"},
    {QRX_NVME_SC_CMD_INVALID_NUM_SGL, "Invalid Number of SGL Descriptors"},
    {QRX_NVME_SC_CMD_INVALID_SGL_DATA_LEN, "Data SGL Length Invalid"},
    {QRX_NVME_SC_CMD_INVALID_SGL_META_LEN, "Metadata SGL Length Invalid"},
    {QRX_NVME_SC_CMD_INVALID_SGL_TYPE, "SGL Descriptor Type Invalid"},
    {QRX_NVME_SC_CMD_INVALID_USE_CTRL_MEM_BUFFER, "Invalid Use of Controller Memory Buffer"},
    {QRX_NVME_SC_CMD_INVALID_PRP_OFFSET, "PRP Offset Invalid"},
    {QRX_NVME_SC_CMD_WRITE_EXECEEDED, "Atomic Write Unit Exceeded"},
    {QRX_NVME_SC_CMD_OP_DENIED, "Operation Denied"},
    {QRX_NVME_SC_CMD_INVALID_SGL_OFFSET, "SGL Offset Invalid"},
    {QRX_NVME_SC_CMD_HOST_ID_INCONSISTENT, "Host Identifier Inconsistent Format"},
    {QRX_NVME_SC_CMD_KEEP_ALIVE_TIMEOUT_EXPIRED, "Keep Alive Timeout Expired"},
    {QRX_NVME_SC_CMD_KEEP_ALIVE_TIMEOUT_INVALID, "Keep Alive Timeout Invalid"},
    {QRX_NVME_SC_CMD_CMD_ABORT, "Command Aborted due to Preempt and Abort"},
    {QRX_NVME_SC_CMD_SANITIZE_FAILED, "Sanitize Failed"},
    {QRX_NVME_SC_CMD_SANITIZE_PROGRESS, "Sanitize In Progress"},
    {QRX_NVME_SC_CMD_SGL_DATA_BLOCK_INVALID, "SGL Data Block Granularity Invalid"},
    {QRX_NVME_SC_CMD_COMMAND_NOT_SUPPORT_CMB, "Command Not Supported for Queue in CMB"},
    {QRX_NVME_SC_LBA_RANGE, "LBA Out of Range"},
    {QRX_NVME_SC_CAP_EXCEEDED, "Capacity Exceeded"},
    {QRX_NVME_SC_NS_NOT_READY, "Namespace Not Ready"},
    {QRX_NVME_SC_RES_CONFLICT, "Reservation Conflict"},
    {QRX_NVME_SC_FORMAT_IN_PROGRESS, "Format In Progress"},
};

// Command-specific codes, by the low 8 bits.
constexpr Text kCommandTexts[] = {
    {QRX_CQI, "Completion Queue Invalid"},
    {QRX_IQI, "Invalid Queue Identifier"},
    {QRX_IQS, "Invalid Queue Size"},
    {QRX_ACLE, "Abort Command Limit Exceeded"},
    {QRX_AERLE, "Asynchronous Event Request Limit Exceeded"},
    {QRX_IFS, "Invalid Firmware Slot"},
    {QRX_IFI, "Invalid Firmware Image"},
    {QRX_IIV, "Invalid Interrupt Vector"},
    {QRX_ILP, "Invalid Log Page"},
    {QRX_IF, "Invalid Format"},
    {QRX_FWACT_REQ_CON_RESET, "Firmware Activation Requires Conventional Reset"},
    {QRX_IQD, "Invalid Queue Deletion"},
    {QRX_FINS, "Feature Identifier Not Saveable"},
    {QRX_FNC, "Feature Not Changeable"},
    {QRX_FNNS, "Feature Not Namespace Specific"},
    {QRX_FAR_NVM_SR, "Firmware Activation Requires NVM Subsystem Reset"},
    {QRX_FARR, "Firmware Activation Requires Reset"},
    {QRX_FARMTV, "Firmware Activation Requires Maximum Time Violation"},
    {QRX_FAP, "Firmware Activation Prohibited"},
    {QRX_OR, "Overlapping Range"},
    {QRX_NIC, "Namespace Insufficient Capacity"},
    {QRX_NIU, "Namespace Identifier Unavailable"},
    {QRX_NAA, "Namespace Already Attached"},
    {QRX_NIP, "Namespace Is Private"},
    {QRX_NNA, "Namespace Not Attached"},
    {QRX_TPNS, "Thin Provisioning Not Supported"},
    {QRX_CLI, "Controller List Invalid"},
    {QRX_DSIP, "Device Self-test In Progress"},
    {QRX_BPWP, "Boot Partition Write Prohibited"},
    {QRX_ICI, "Invalid Controller Identifier"},
    {QRX_ISCS, "Invalid Secondary Controller State"},
    {QRX_INCR, "Invalid Number of Controller Resources"},
    {QRX_IRI, "Invalid Resource Identifier"},
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
                        void* data_in, QRX_U32 data_in_length, void* data_out, QRX_U32 data_out_length)
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
    if ((statusCode & kStatusVendor) == kStatusVendor) {
        text = _vcErrorMessage(statusCode);
    } else if ((statusCode & kStatusCommandSpecific) != 0) {
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

const char* ErrorMessage(QRX_U8 errorCode)
{
    switch (errorCode) {
    case 0:
        return "No error";
    case 1:
        return "Failed";
    default:
        return "Unknown error";
    }
}
