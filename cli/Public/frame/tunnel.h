// The tunnel: an admin command to a drive behind the controller, wrapped in one to the controller.
//
//     const int status = tunnelFromDrive(disk, kDriveGetLogPage).word(10, cdw10).word(15, nsid).receive(page);
//
// CDW2, CDW3 and CDW10 to CDW13 are those of the drive's command. CDW14 and CDW15 carry its Dword 0 and its NSID, so
// a command with words of its own there cannot travel this way. Data is at most a page.
#pragma once

#include "api/src/interface/wire/types.h"
#include "cli/Public/frame/admin_command.h"

namespace qrx {

// A command to back-end disk `disk` (0-based) with CDW14 `dword0`: the opcode in bits 7 to 0, FUSE in bits 9 and 8,
// PSDT from bit 14. The drive's NSID is 0 and CDW15 not filled until the caller fills it.
AdminCommand tunnelFromDrive(QRX_U32 disk, QRX_U32 dword0);  // data comes from the drive
AdminCommand tunnelToDrive(QRX_U32 disk, QRX_U32 dword0);    // data goes to the drive, or there is none

// The same through a tunnel of its own opcode.
AdminCommand tunnelBy(QRX_U32 opcode, QRX_U32 disk, QRX_U32 dword0);

// Opcodes of the drive, of the NVMe standard.
inline constexpr QRX_U8 kDriveGetLogPage = 0x02;
inline constexpr QRX_U8 kDriveIdentify = 0x06;
inline constexpr QRX_U8 kDriveFormat = 0x80;

}  // namespace qrx
