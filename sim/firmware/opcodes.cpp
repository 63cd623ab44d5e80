#include "sim/firmware/opcodes.h"

#include <algorithm>
#include <array>
#include <span>

#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/mi.h"

namespace qrx::sim {

namespace {

struct Name {
    QRX_U16 code;
    const char* text;
};

constexpr auto kAdminNames = std::to_array<Name>({
    {admin::kDeleteSubmissionQueue, "delete-sq"},
    {admin::kCreateSubmissionQueue, "create-sq"},
    {admin::kGetLogPage, "get-log-page"},
    {admin::kDeleteCompletionQueue, "delete-cq"},
    {admin::kCreateCompletionQueue, "create-cq"},
    {admin::kIdentify, "identify"},
    {admin::kAbort, "abort"},
    {admin::kSetFeatures, "set-features"},
    {admin::kGetFeatures, "get-features"},
    {admin::kAsynchronousEvent, "async-event"},
    {admin::kNamespaceManagement, "ns-management"},
    {admin::kFirmwareCommit, "firmware-commit"},
    {admin::kFirmwareDownload, "firmware-download"},
    {0x14, "self-test"},
    {admin::kNamespaceAttachment, "ns-attachment"},
    {0x18, "keep-alive"},
    {0x1C, "virtualization-management"},
    {admin::kManagementSend, "mi-send"},
    {admin::kManagementReceive, "mi-receive"},
    {admin::kFormat, "format"},
    {0x81, "security-send"},
    {0x82, "security-receive"},
    {0x84, "sanitize"},
    {kTunnelFromDrive, "tunnel-from-drive"},
    {kTunnelToDrive, "tunnel-to-drive"},
    {kVendorWrite, "vendor-write"},
    {kPairSend, "pair-send"},
    {kPairReceive, "pair-receive"},
    {kVendorRead, "vendor-read"},
});

constexpr auto kIoNames = std::to_array<Name>({
    {nvm::kFlush, "flush"},
    {nvm::kWrite, "write"},
    {nvm::kRead, "read"},
    {0x04, "write-uncorrectable"},
    {nvm::kCompare, "compare"},
    {nvm::kWriteZeroes, "write-zeroes"},
    {0x09, "dataset-management"},
});

constexpr auto kManagementNames = std::to_array<Name>({
    {0x00, "read-data-structure"},
    {0x01, "subsystem-health-poll"},
    {0x02, "controller-health-poll"},
    {0x03, "configuration-set"},
    {0x04, "configuration-get"},
    {kMiVpdRead, "vpd-read"},
    {kMiVpdWrite, "vpd-write"},
    {0x07, "reset"},
});

constexpr auto kVendorNames = std::to_array<Name>({
    {vendor::kReadAdapterInfo, "read-adapter-info"},
    {vendor::kReadAdapterConfig, "read-adapter-config"},
    {vendor::kWriteAdapterConfig, "write-adapter-config"},
    {vendor::kSetTime, "set-time"},
    {vendor::kReadOemData, "read-oem-data"},
    {vendor::kLedOfEndPoint, "led-end-point"},
    {vendor::kWriteSpi, "spi-write"},
    {vendor::kReadRegister, "read-pcie-register"},
    {vendor::kWriteRegister, "write-pcie-register"},
    {vendor::kActivateFirmware, "activate-firmware"},
    {vendor::kSwitchFlashTool, "manufacture-flash-tool"},
    {vendor::kSwitchSriov, "sriov-switch"},
    {vendor::kReadHbaInfo, "read-hba-info"},
    {vendor::kSwitchVpdTarget, "switch-vpd-target"},
    {vendor::kSetGpio, "gpio-setting"},
    {vendor::kSetDebugLevel, "debug-level"},
    {vendor::kWriteOemData, "write-oem-data"},
    {vendor::kTestI2c, "i2c-test"},
    {vendor::kSwitchProtection, "protection-area"},
    {vendor::kSetInverse, "set-inverse"},
    {vendor::kGetInverse, "get-inverse"},
    {vendor::kReadPdInfo, "read-pd-info"},
    {vendor::kLedOfRootComplex, "led-root-complex"},
    {vendor::kResetBackEnd, "reset-back-end"},
    {vendor::kImportNsTable, "import-ns-table"},
    {vendor::kReadVdInfo, "read-vd-info"},
    {vendor::kCreateVd, "create-vd"},
    {vendor::kDeleteVd, "delete-vd"},
    {vendor::kImportVd, "import-vd"},
    {vendor::kReadBgaStatus, "read-bga-status"},
    {vendor::kStopBga, "stop-bga"},
    {vendor::kStartInitialization, "start-initialization"},
    {vendor::kStartRebuild, "start-rebuild"},
    {vendor::kStartMediaPatrol, "start-media-patrol"},
    {vendor::kReadNsList, "read-ns-list"},
    {vendor::kReadNsListOfVd, "read-ns-list-of-vd"},
    {vendor::kInitializeNs, "initialize-ns"},
    {vendor::kSetNsSharing, "set-ns-sharing"},
    {vendor::kCreateNs, "create-ns"},
    {vendor::kReadNsSharing, "read-ns-sharing"},
    {vendor::kReadNsHealth, "ns-smart-log"},
    {vendor::kReadLog, "read-spi-log"},
    {vendor::kReadLogStatus, "read-log-status"},
    {vendor::kSwitchLog, "log-switch"},
    {vendor::kReadEvents, "read-events"},
});

const char* find(std::span<const Name> names, QRX_U16 code)
{
    const auto found = std::find_if(names.begin(), names.end(), [&](const Name& name) { return name.code == code; });
    return found == names.end() ? "unknown" : found->text;
}

}  // namespace

const char* admin_opcode_name(QRX_U8 opcode)
{
    return find(kAdminNames, opcode);
}

const char* io_opcode_name(QRX_U8 opcode)
{
    return find(kIoNames, opcode);
}

const char* management_opcode_name(QRX_U8 message_type, QRX_U8 opcode)
{
    return message_type == kMiAdminCommand
               ? admin_opcode_name(opcode)
               : find(message_type == kMiCommand ? kManagementNames : std::span<const Name>(), opcode);
}

const char* vendor_command_name(QRX_U16 command)
{
    return find(kVendorNames, command);
}

}  // namespace qrx::sim
