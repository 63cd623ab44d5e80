// The text of a controller's console on `stream`.
#pragma once

#include <span>

#include "api/src/interface/wire/types.h"

namespace qrx {

// Shows text that comes in pieces. The bytes go out as they are; but a terminal gets none that it might obey, except
// for tabs and line ends.
class ConsoleText {
public:
    ConsoleText() = default;
    ConsoleText(const ConsoleText&) = delete;
    ConsoleText& operator=(const ConsoleText&) = delete;
    ~ConsoleText();

    void show(std::span<const QRX_U8> piece);

private:
    // Shows a carriage return that was held back; `lineFeed`: one follows.
    void release(bool lineFeed);

    bool held_ = false;  // the last byte was a carriage return: the next one tells whether it belongs to a line end
};

}  // namespace qrx
