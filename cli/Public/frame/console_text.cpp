// The text of a controller's console on `stream`.
#include "cli/Public/frame/console_text.h"

#include <unistd.h>

#include <cstdio>

#include "api/src/interface/globals.h"

namespace qrx {

void showConsoleText(std::span<const QRX_U8> text)
{
    if (isatty(fileno(stream)) == 0) {
        (void)std::fwrite(text.data(), 1, text.size(), stream);
        return;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const QRX_U8 byte = text[i];
        const bool lineEnd = byte == '\n' || (byte == '\r' && i + 1 < text.size() && text[i + 1] == '\n');
        std::fputc(lineEnd || byte == '\t' || (byte >= ' ' && byte <= '~') ? byte : '?', stream);
    }
}

}  // namespace qrx
