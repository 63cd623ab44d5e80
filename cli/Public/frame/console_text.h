// The text of a controller's console on `stream`.
#pragma once

#include <span>

#include "api/src/interface/wire/types.h"

namespace qrx {

// Shows the bytes as they are; but a terminal gets none that it might obey, except for tabs and line ends.
void showConsoleText(std::span<const QRX_U8> text);

}  // namespace qrx
