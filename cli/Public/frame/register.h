// One access to a 32-bit register of the controller.
//
//     const int status = registerRead(id, address).receive(bytes);   // 4 bytes, little-endian
//     const int status = registerWrite(id, address, data).send();
#pragma once

#include "api/src/interface/wire/types.h"
#include "cli/Public/frame/admin_command.h"

namespace qrx {

// `id` names the PCIe interface behind which the register lies: 0 and 1 the end points, from 2 on the root complexes.
AdminCommand registerRead(QRX_U8 id, QRX_U32 address);
AdminCommand registerWrite(QRX_U8 id, QRX_U32 address, QRX_U32 data);

}  // namespace qrx
