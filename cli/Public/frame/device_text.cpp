// Text that comes from a device, on its way to a terminal.
#include "cli/Public/frame/device_text.h"

#include <algorithm>

namespace qrx {

namespace {

bool isUnprintable(char c)
{
    return c < ' ' || c > '~';  // of any locale: what lies above ASCII may be a control character too
}

}  // namespace

std::string printable(std::string_view text, char filler)
{
    std::string shown(text);
    std::replace_if(shown.begin(), shown.end(), isUnprintable, filler);
    return shown;
}

std::string fieldText(std::span<const QRX_U8> field, std::size_t mostBlanks)
{
    const auto last = field.begin() + static_cast<std::ptrdiff_t>(std::min(mostBlanks, field.size()));
    const auto first = std::find_if(field.begin(), last, [](QRX_U8 byte) { return byte != ' '; });
    return printable(std::string(first, std::find(first, field.end(), QRX_U8{0})));
}

}  // namespace qrx
