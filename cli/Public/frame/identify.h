// Identify, as every handler sends it.
#pragma once

#include <span>

#include "api/src/interface/globals.h"
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/nvme.h"
#include "api/src/interface/wire/types.h"

namespace qrx {

// Identify of a namespace (0: of none) into a zeroed page. Returns the device's status, whose text is printed.
int identify(QRX_U32 nsid, QRX_U32 cns, std::span<QRX_U8, wire::kPageSize> page, QRX_U8 adapter = gCurrentAdapter);

}  // namespace qrx
