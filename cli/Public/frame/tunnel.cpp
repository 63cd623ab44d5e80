// The tunnel to a drive behind the controller.
#include "cli/Public/frame/tunnel.h"

namespace qrx {

AdminCommand tunnelFromDrive(QRX_U32 disk, QRX_U32 dword0)
{
    return AdminCommand(kTunnelFromDrive).word(1, disk).word(14, dword0);
}

AdminCommand tunnelToDrive(QRX_U32 disk, QRX_U32 dword0)
{
    return AdminCommand(kTunnelToDrive).word(1, disk).word(14, dword0);
}

}  // namespace qrx
