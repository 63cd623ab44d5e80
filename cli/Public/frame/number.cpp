// Numbers as the user types them, and ids under the one-based rule.
#include "cli/Public/frame/number.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "api/src/interface/globals.h"
#include "cli/Public/common.h"

namespace qrx {

std::int32_t strtol32(const char* text, int base, const char** end)
{
    char* stop = nullptr;
    const long long value = std::strtoll(text, &stop, base);
    if (end != nullptr) {
        *end = stop;
    }
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<long long>(value, Limits::min(), Limits::max()));
}

std::uint32_t strtoul32(const char* text, int base)
{
    // Of a negative text the digits are read, and what fits is then negated.
    const long long value = std::strtoll(text, nullptr, base);
    constexpr long long kMax = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(value >= -kMax && value <= kMax ? value : kMax);
}

std::optional<std::int32_t> readNumber(const char* text)
{
    if (text == nullptr || !isNumber(text)) {
        return std::nullopt;
    }
    return strtol32(text, 10);
}

std::optional<std::int32_t> readHexOrNumber(const char* text)
{
    if (text != nullptr && std::strstr(text, "0x") != nullptr) {
        return strtol32(text, 16);
    }
    return readNumber(text);
}

std::optional<std::uint32_t> readWideHexOrNumber(const char* text)
{
    if (text != nullptr && std::strstr(text, "0x") != nullptr) {
        return static_cast<std::uint32_t>(std::strtoll(text, nullptr, 16));
    }
    const std::optional<std::int32_t> number = readNumber(text);
    return number ? std::optional<std::uint32_t>(static_cast<std::uint32_t>(*number)) : std::nullopt;
}

std::optional<std::uint64_t> readExact(const char* text, unsigned bits)
{
    constexpr unsigned kWidest = 64;
    const bool hexadecimal = text != nullptr && std::strstr(text, "0x") != nullptr;
    if (text == nullptr || (!hexadecimal && !isNumber(text)) || std::strpbrk(text, "+-") != nullptr) {
        return std::nullopt;
    }
    char* end = nullptr;
    errno = 0;
    const unsigned long long value = std::strtoull(text, &end, hexadecimal ? 16 : 10);
    const bool whole = errno == 0 && *end == '\0';
    return whole && (bits >= kWidest || value >> bits == 0) ? std::optional<std::uint64_t>(value) : std::nullopt;
}

int idBase()
{
    return g_oneBaseMode == 1 ? 1 : 0;
}

std::optional<std::int32_t> readId(const char* text)
{
    const std::optional<std::int32_t> number = readNumber(text);
    if (!number || *number < idBase()) {
        return std::nullopt;
    }
    return *number - idBase();
}

}  // namespace qrx
