// The text of a controller's console on `stream`.
#include "cli/Public/frame/console_text.h"

#include <unistd.h>

#include <cstdio>

#include "api/src/interface/globals.h"

namespace qrx {

ConsoleText::~ConsoleText()
{
    release(false);
}

void ConsoleText::show(std::span<const QRX_U8> piece)
{
    if (isatty(fileno(stream)) == 0) {
        (void)std::fwrite(piece.data(), 1, piece.size(), stream);
        return;
    }
    for (const QRX_U8 byte : piece) {
        release(byte == '\n');
        held_ = byte == '\r';
        if (!held_) {
            std::fputc(byte == '\n' || byte == '\t' || (byte >= ' ' && byte <= '~') ? byte : '?', stream);
        }
    }
}

void ConsoleText::release(bool lineFeed)
{
    if (held_) {
        std::fputc(lineFeed ? '\r' : '?', stream);
    }
    held_ = false;
}

}  // namespace qrx
