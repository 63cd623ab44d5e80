// Questions that a command asks on standard input.
//
// An answer is a line. It is taken byte by byte and no further than its line end, because what follows may be the
// shell's. What the command has printed so far goes out before it waits.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace qrx {

// A line without its line end; nothing at the end of input. A line of more than `most` characters is read whole, but
// only its first `most` + 1 are given.
std::optional<std::string> readLine(std::size_t most);

// Reads lines until one begins with a "y" or an "n", of either case, and gives whether it was the "y"; nothing at the
// end of input. The question itself is the caller's.
std::optional<bool> readYesOrNo();

}  // namespace qrx
