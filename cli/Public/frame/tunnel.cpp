// The tunnel to a drive behind the controller.
#include "cli/Public/frame/tunnel.h"

namespace qrx {

AdminCommand tunnelBy(QRX_U32 opcode, QRX_U32 disk, QRX_U32 dword0)
{
    return AdminCommand(opcode).word(1, disk).word(14, dword0);
}

AdminCommand tunnelFromDrive(QRX_U32 disk, QRX_U32 dword0)
{
    return tunnelBy(kTunnelFromDrive, disk, dword0);
}

AdminCommand tunnelToDrive(QRX_U32 disk, QRX_U32 dword0)
{
    return tunnelBy(kTunnelToDrive, disk, dword0);
}

}  // namespace qrx
