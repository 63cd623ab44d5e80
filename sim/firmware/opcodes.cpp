#include "sim/firmware/opcodes.h"

#include <algorithm>
#include <array>
#include <span>

#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/mfnd.h"
#include "api/src/interface/wire/mi.h"
#include "api/src/interface/wire/security.h"

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
    {admin::kVirtualizationManagement, "virtualization-management"},
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
    {kMfndControl, "child-control"},
    {kMfndManage, "child-manage"},
    {kMfndQuery, "child-query"},
    {kSataToDrive, "sata-to-drive"},
    {kVendorRead, "vendor-read"},
});

constexpr auto kIoNames = std::to_array<Name>({
    {nvm::kFlush, "flush"},
    {nvm::kWrite, "write"},
    {nvm::kRead, "read"},
    {nvm::kWriteUncorrectable, "write-uncorrectable"},
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
    {vendor::kWriteVpd, "write-vpd"},
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
    {vendor::kPermitOpcodes, "permit-opcodes"},
    {vendor::kSetRateLimits, "set-qos"},
    {vendor::kReadRateLimits, "get-qos"},
    {vendor::kSetInverse, "set-inverse"},
    {vendor::kGetInverse, "get-inverse"},
    {vendor::kCheckAlive, "check-alive"},
    {vendor::kReadIoCounters, "read-io-counters"},
    {vendor::kReadIdleWindows, "read-idle-windows"},
    {vendor::kSwitchPorts, "switch-ports"},
    {vendor::kReadIoQueues, "read-io-queues"},
    {vendor::kHideTemperature, "hide-temperature"},
    {vendor::kReadErrorStatus, "read-error-status"},
    {vendor::kClearErrorStatus, "clear-error-status"},
    {vendor::kCrash, "crash"},
    {vendor::kSetEeprom, "set-eeprom"},
    {vendor::kGetEeprom, "get-eeprom"},
    {vendor::kDelay, "delay"},
    {vendor::kReadPdInfo, "read-pd-info"},
    {vendor::kLedOfRootComplex, "led-root-complex"},
    {vendor::kResetBackEnd, "reset-back-end"},
    {vendor::kImportNsTable, "import-ns-table"},
    {vendor::kTakeOffline, "take-offline"},
    {vendor::kReadPdAer, "read-pd-aer"},
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
    {vendor::kSecurity, "security"},
    {vendor::kReadLog, "read-spi-log"},
    {vendor::kReadLogStatus, "read-log-status"},
    {vendor::kSwitchLog, "log-switch"},
    {vendor::kReadEvents, "read-events"},
    {vendor::kReadVdmLog, "read-vdm-log"},
    {vendor::kSwitchVdmLog, "switch-vdm-log"},
    {vendor::kReadVdmLogStatus, "read-vdm-log-status"},
});

constexpr auto kPairNames = std::to_array<Name>({
    {static_cast<QRX_U16>(PairCode::kAdapterGetInfo), "adapter-get-info"},
    {static_cast<QRX_U16>(PairCode::kAdapterGetConfig), "adapter-get-config"},
    {static_cast<QRX_U16>(PairCode::kAdapterSetConfig), "adapter-set-config"},
    {static_cast<QRX_U16>(PairCode::kAdapterLed), "adapter-led"},
    {static_cast<QRX_U16>(PairCode::kPdGetInfo), "pd-get-info"},
    {static_cast<QRX_U16>(PairCode::kPdOem), "pd-oem"},
    {static_cast<QRX_U16>(PairCode::kPdImport), "pd-import"},
    {static_cast<QRX_U16>(PairCode::kVdGetInfo), "vd-get-info"},
    {static_cast<QRX_U16>(PairCode::kVdGetConfig), "vd-get-config"},
    {static_cast<QRX_U16>(PairCode::kVdSetConfig), "vd-set-config"},
    {static_cast<QRX_U16>(PairCode::kVdCreate), "vd-create"},
    {static_cast<QRX_U16>(PairCode::kVdDelete), "vd-delete"},
    {static_cast<QRX_U16>(PairCode::kVdImport), "vd-import"},
    {static_cast<QRX_U16>(PairCode::kPdGetBgaStatus), "pd-get-bga-status"},
    {static_cast<QRX_U16>(PairCode::kVdGetBgaStatus), "vd-get-bga-status"},
    {static_cast<QRX_U16>(PairCode::kPdBgaControl), "pd-bga-control"},
    {static_cast<QRX_U16>(PairCode::kVdBgaControl), "vd-bga-control"},
    {static_cast<QRX_U16>(PairCode::kPdMediaPatrol), "pd-media-patrol"},
    {static_cast<QRX_U16>(PairCode::kVdInit), "vd-init"},
    {static_cast<QRX_U16>(PairCode::kVdRebuild), "vd-rebuild"},
    {static_cast<QRX_U16>(PairCode::kVdSync), "vd-sync"},
    {static_cast<QRX_U16>(PairCode::kVdMigrate), "vd-migrate"},
    {static_cast<QRX_U16>(PairCode::kVdMediaPatrol), "vd-media-patrol"},
    {static_cast<QRX_U16>(PairCode::kEventStatus), "event-status"},
    {static_cast<QRX_U16>(PairCode::kNsGetInfoVd), "ns-get-info-of-vd"},
    {static_cast<QRX_U16>(PairCode::kDumpConsole), "dump-console"},
    {static_cast<QRX_U16>(PairCode::kDumpStatus), "dump-status"},
    {static_cast<QRX_U16>(PairCode::kGetDumpCfg), "get-dump-config"},
    {static_cast<QRX_U16>(PairCode::kSetDumpCfg), "set-dump-config"},
    {static_cast<QRX_U16>(PairCode::kPageEvent), "page-event"},
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

bool is_child_command(const nvme_admin_cmd& command)
{
    if (command.opcode != kMfndQuery) {
        return command.opcode == kMfndControl || command.opcode == kMfndManage;
    }
    switch (static_cast<QRX_U8>(command.cdw10)) {
    case kMfndIdentifyDevice:
    case kMfndIdentifyChild:
    case kMfndGetPermissions:
        return command.cdw14 == 0;
    case kMfndChildLogPage:
        return true;
    default:
        return false;
    }
}

const char* admin_command_name(const nvme_admin_cmd& command)
{
    const bool sata = command.opcode == kSataFromDrive && !is_child_command(command);
    return sata ? "sata-from-drive" : admin_opcode_name(command.opcode);
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

const char* pair_request_name(PairCode code)
{
    return find(kPairNames, static_cast<QRX_U16>(code));
}

const char* vendor_command_name(QRX_U16 command)
{
    return find(kVendorNames, command);
}

}  // namespace qrx::sim
