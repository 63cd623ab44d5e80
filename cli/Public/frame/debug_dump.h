// The dump of a data block under `--debug`.
#pragma once

#include <span>

#include "api/src/interface/wire/types.h"

namespace qrx {

// Under dbg_enable, the bytes in rows of 16, with the characters that they are.
void debugDump(std::span<const QRX_U8> bytes);

}  // namespace qrx
