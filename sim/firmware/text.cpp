#include "sim/firmware/text.h"

#include <algorithm>
#include <cstring>

namespace qrx::sim {

namespace {

void pad(std::span<QRX_U8> field, std::string_view text, QRX_U8 filler)
{
    const std::size_t length = std::min(field.size(), text.size());
    if (length != 0) {
        std::memcpy(field.data(), text.data(), length);
    }
    std::fill(field.begin() + static_cast<std::ptrdiff_t>(length), field.end(), filler);
}

int digit_value(char digit)
{
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + 10;
    }
    if (digit >= 'A' && digit <= 'F') {
        return digit - 'A' + 10;
    }
    return -1;
}

}  // namespace

void pad_with_blanks(std::span<QRX_U8> field, std::string_view text)
{
    pad(field, text, ' ');
}

void pad_with_zeros(std::span<QRX_U8> field, std::string_view text)
{
    pad(field, text, 0);
}

std::string to_hex(std::span<const QRX_U8> bytes)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const QRX_U8 byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}

bool from_hex(std::string_view digits, std::span<QRX_U8> bytes)
{
    if (digits.size() != bytes.size() * 2) {
        return false;
    }
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const int high = digit_value(digits[2 * i]);
        const int low = digit_value(digits[2 * i + 1]);
        if (high < 0 || low < 0) {
            return false;
        }
        bytes[i] = static_cast<QRX_U8>(high * 16 + low);
    }
    return true;
}

QRX_U64 stable_hash(std::string_view text, QRX_U64 seed)
{
    QRX_U64 hash = 0xCBF29CE484222325ULL ^ seed;
    for (const char letter : text) {
        hash = (hash ^ static_cast<QRX_U8>(letter)) * 0x100000001B3ULL;
    }
    return hash;
}

}  // namespace qrx::sim
