#include "sim/firmware/spi_log.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace qrx::sim {

void SpiLog::add(const Clock& clock, std::string_view line)
{
    constexpr std::size_t kLineMax = 300;
    std::array<char, 40> time{};
    (void)std::snprintf(time.data(), time.size(), "[%7llu.%03u] ", static_cast<unsigned long long>(clock.uptime / 1000),
                        static_cast<unsigned>(clock.uptime % 1000));
    lines += time.data();
    lines += line.substr(0, kLineMax);
    lines += '\n';
    while (lines.size() > kBytes) {
        const std::size_t oldest = lines.find('\n') + 1;
        lines.erase(0, oldest);
        read_until -= static_cast<QRX_U32>(std::min<std::size_t>(read_until, oldest));
    }
}

std::size_t SpiLog::read(std::span<QRX_U8> space)
{
    const std::size_t begin = std::min<std::size_t>(read_until, lines.size());
    const std::size_t length = std::min(space.size(), lines.size() - begin);
    std::copy_n(lines.begin() + static_cast<std::ptrdiff_t>(begin), length, space.begin());
    read_until = length == 0 ? 0 : static_cast<QRX_U32>(begin + length);
    return length;
}

}  // namespace qrx::sim
