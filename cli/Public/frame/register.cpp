// One access to a 32-bit register of the controller.
#include "cli/Public/frame/register.h"

namespace qrx {

namespace {

constexpr QRX_U8 kSubReadRegister = 0x09;
constexpr QRX_U8 kSubWriteRegister = 0x0A;

}  // namespace

AdminCommand registerRead(QRX_U8 id, QRX_U32 address)
{
    return vendorCommand(kGroupAdapter, kSubReadRegister, id).word(10, 0).word(13, address);
}

AdminCommand registerWrite(QRX_U8 id, QRX_U32 address, QRX_U32 data)
{
    return vendorCommand(kGroupAdapter, kSubWriteRegister, id).word(13, address).word(14, data);
}

}  // namespace qrx
