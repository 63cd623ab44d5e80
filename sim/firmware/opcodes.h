// Opcodes of the standard commands that the model knows, and the names of all commands for people.
#pragma once

#include <string>

#include "api/src/interface/wire/nvme_ioctl.h"
#include "api/src/interface/wire/pair.h"
#include "api/src/interface/wire/types.h"

namespace qrx::sim {

namespace admin {
inline constexpr QRX_U8 kDeleteSubmissionQueue = 0x00;
inline constexpr QRX_U8 kCreateSubmissionQueue = 0x01;
inline constexpr QRX_U8 kGetLogPage = 0x02;
inline constexpr QRX_U8 kDeleteCompletionQueue = 0x04;
inline constexpr QRX_U8 kCreateCompletionQueue = 0x05;
inline constexpr QRX_U8 kIdentify = 0x06;
inline constexpr QRX_U8 kAbort = 0x08;
inline constexpr QRX_U8 kSetFeatures = 0x09;
inline constexpr QRX_U8 kGetFeatures = 0x0A;
inline constexpr QRX_U8 kAsynchronousEvent = 0x0C;
inline constexpr QRX_U8 kNamespaceManagement = 0x0D;
inline constexpr QRX_U8 kFirmwareCommit = 0x10;
inline constexpr QRX_U8 kFirmwareDownload = 0x11;
inline constexpr QRX_U8 kNamespaceAttachment = 0x15;
inline constexpr QRX_U8 kVirtualizationManagement = 0x1C;
inline constexpr QRX_U8 kManagementSend = 0x1D;
inline constexpr QRX_U8 kManagementReceive = 0x1E;
inline constexpr QRX_U8 kFormat = 0x80;
}  // namespace admin

namespace nvm {
inline constexpr QRX_U8 kFlush = 0x00;
inline constexpr QRX_U8 kWrite = 0x01;
inline constexpr QRX_U8 kRead = 0x02;
inline constexpr QRX_U8 kWriteUncorrectable = 0x04;
inline constexpr QRX_U8 kCompare = 0x05;
inline constexpr QRX_U8 kWriteZeroes = 0x08;
}  // namespace nvm

// Low half of CDW12 of a vendor command: group in the low byte, sub-opcode in the high byte.
namespace vendor {
inline constexpr QRX_U16 kWriteVpd = 0x0000;  // of earlier tools: it has no word of its own
inline constexpr QRX_U16 kReadAdapterInfo = 0x00E0;
inline constexpr QRX_U16 kReadAdapterConfig = 0x01E0;
inline constexpr QRX_U16 kWriteAdapterConfig = 0x02E0;
inline constexpr QRX_U16 kSetTime = 0x03E0;
inline constexpr QRX_U16 kReadOemData = 0x04E0;
inline constexpr QRX_U16 kLedOfEndPoint = 0x07E0;
inline constexpr QRX_U16 kWriteSpi = 0x08E0;
inline constexpr QRX_U16 kReadRegister = 0x09E0;
inline constexpr QRX_U16 kWriteRegister = 0x0AE0;
inline constexpr QRX_U16 kActivateFirmware = 0x0BE0;
inline constexpr QRX_U16 kSwitchFlashTool = 0x0DE0;
inline constexpr QRX_U16 kSwitchSriov = 0x0EE0;
inline constexpr QRX_U16 kReadHbaInfo = 0x0FE0;
inline constexpr QRX_U16 kSwitchVpdTarget = 0x10E0;
inline constexpr QRX_U16 kSetGpio = 0x11E0;
inline constexpr QRX_U16 kSetDebugLevel = 0x12E0;
inline constexpr QRX_U16 kWriteOemData = 0x13E0;
inline constexpr QRX_U16 kTestI2c = 0x14E0;
inline constexpr QRX_U16 kSwitchProtection = 0x15E0;
inline constexpr QRX_U16 kPermitOpcodes = 0x16E0;
inline constexpr QRX_U16 kSetRateLimits = 0x17E0;
inline constexpr QRX_U16 kReadRateLimits = 0x18E0;
inline constexpr QRX_U16 kSetInverse = 0x19E0;
inline constexpr QRX_U16 kGetInverse = 0x1AE0;
inline constexpr QRX_U16 kCheckAlive = 0x1EE0;
inline constexpr QRX_U16 kReadIoCounters = 0x1FE0;
inline constexpr QRX_U16 kReadIdleWindows = 0x20E0;
inline constexpr QRX_U16 kSwitchPorts = 0x21E0;
inline constexpr QRX_U16 kReadIoQueues = 0x24E0;
inline constexpr QRX_U16 kHideTemperature = 0x25E0;
inline constexpr QRX_U16 kReadErrorStatus = 0x26E0;
inline constexpr QRX_U16 kClearErrorStatus = 0x27E0;
inline constexpr QRX_U16 kCrash = 0x28E0;
inline constexpr QRX_U16 kSetEeprom = 0xEAE0;
inline constexpr QRX_U16 kGetEeprom = 0xEBE0;
inline constexpr QRX_U16 kDelay = 0xFCE0;
inline constexpr QRX_U16 kReadPdInfo = 0x00E1;
inline constexpr QRX_U16 kLedOfRootComplex = 0x07E1;
inline constexpr QRX_U16 kResetBackEnd = 0x08E1;
inline constexpr QRX_U16 kImportNsTable = 0x09E1;
inline constexpr QRX_U16 kTakeOffline = 0x0BE1;
inline constexpr QRX_U16 kReadPdAer = 0x0CE1;
inline constexpr QRX_U16 kReadVdInfo = 0x00E2;
inline constexpr QRX_U16 kCreateVd = 0x03E2;
inline constexpr QRX_U16 kDeleteVd = 0x04E2;
inline constexpr QRX_U16 kImportVd = 0x06E2;
inline constexpr QRX_U16 kReadBgaStatus = 0x02E3;
inline constexpr QRX_U16 kStopBga = 0x04E3;
inline constexpr QRX_U16 kStartInitialization = 0x06E3;
inline constexpr QRX_U16 kStartRebuild = 0x07E3;
inline constexpr QRX_U16 kStartMediaPatrol = 0x0AE3;
inline constexpr QRX_U16 kReadNsList = 0x00E5;
inline constexpr QRX_U16 kReadNsListOfVd = 0x01E5;
inline constexpr QRX_U16 kInitializeNs = 0x02E5;
inline constexpr QRX_U16 kSetNsSharing = 0x03E5;
inline constexpr QRX_U16 kCreateNs = 0x04E5;
inline constexpr QRX_U16 kReadNsSharing = 0x05E5;
inline constexpr QRX_U16 kReadNsHealth = 0x08E5;
inline constexpr QRX_U16 kSecurity = 0x02FD;  // which one is told by the argument
inline constexpr QRX_U16 kReadLog = 0x00FE;
inline constexpr QRX_U16 kReadLogStatus = 0x02FE;
inline constexpr QRX_U16 kSwitchLog = 0x03FE;
inline constexpr QRX_U16 kReadEvents = 0x04FE;
inline constexpr QRX_U16 kReadVdmLog = 0x06FE;
inline constexpr QRX_U16 kSwitchVdmLog = 0x07FE;
inline constexpr QRX_U16 kReadVdmLogStatus = 0x08FE;
}  // namespace vendor

// Opcodes of messages of the management interface, by the kind of message.
[[nodiscard]] const char* management_opcode_name(QRX_U8 message_type, QRX_U8 opcode);

// Whether the opcode's two low bits say that data goes to the device, or comes from it.
[[nodiscard]] constexpr bool data_to_device(QRX_U8 opcode)
{
    return (opcode & 1) != 0;
}
[[nodiscard]] constexpr bool data_from_device(QRX_U8 opcode)
{
    return (opcode & 2) != 0;
}

// Whether a command is one of the multi-function device. Opcode 0xD2 alone does not tell: it also carries ATA commands
// to drives, whose FIS, in CDW10, never begins as these do, and whose opcode stands in CDW14.
[[nodiscard]] bool is_child_command(const nvme_admin_cmd& command);

// "identify", "vendor-read"; "unknown" for an opcode without a name.
[[nodiscard]] const char* admin_opcode_name(QRX_U8 opcode);
// The same of a whole command, where the opcode alone does not tell.
[[nodiscard]] const char* admin_command_name(const nvme_admin_cmd& command);
[[nodiscard]] const char* io_opcode_name(QRX_U8 opcode);
// The name of a vendor command by the low half of its CDW12; "unknown" for one without a name.
[[nodiscard]] const char* vendor_command_name(QRX_U16 command);
// "vd-create"; "unknown" for a request without a name.
[[nodiscard]] const char* pair_request_name(PairCode code);

}  // namespace qrx::sim
