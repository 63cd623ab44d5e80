// Text that comes from a device, on its way to a terminal.
//
// Whatever a device says in a text field may end up in the terminal of an administrator, and a terminal obeys control
// characters. So a text of a device goes through here, unless its page shows bytes as they are.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "api/src/interface/wire/types.h"

namespace qrx {

// The text with `filler` in the place of each byte that is not printable ASCII.
std::string printable(std::string_view text, char filler = '?');

// A fixed-size text field, printable, without its leading blanks, of which at most `mostBlanks` are dropped. It ends
// at the first zero byte or at the end of the field.
std::string fieldText(std::span<const QRX_U8> field, std::size_t mostBlanks = 0);

}  // namespace qrx
