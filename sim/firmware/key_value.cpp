#include "sim/firmware/key_value.h"

#include <charconv>

namespace qrx::sim {

KeyValue split_key_value(std::string_view text)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) {
        return {text, {}, false};
    }
    return {text.substr(0, equals), text.substr(equals + 1), true};
}

std::vector<KeyValue> split_key_values(std::string_view text)
{
    std::vector<KeyValue> pieces;
    while (true) {
        const std::size_t comma = text.find(',');
        pieces.push_back(split_key_value(text.substr(0, comma)));
        if (comma == std::string_view::npos) {
            return pieces;
        }
        text.remove_prefix(comma + 1);
    }
}

std::optional<QRX_U64> parse_number(std::string_view text)
{
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
        base = 16;
    }
    QRX_U64 number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

}  // namespace qrx::sim
