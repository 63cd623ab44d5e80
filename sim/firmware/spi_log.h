// The debug console that the firmware writes to its SPI flash while that is switched on.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "api/src/interface/wire/types.h"
#include "sim/firmware/clock.h"

namespace qrx::sim {

struct SpiLog {
    static constexpr std::size_t kBytes = 65536;

    std::string lines;       // each with its line feed, at most kBytes in all
    QRX_U32 read_until = 0;  // how far a host has read it

    friend bool operator==(const SpiLog&, const SpiLog&) = default;

    // Writes a line, with the time since power-on in front. The oldest lines make room for it.
    void add(const Clock& clock, std::string_view line);
    // Copies what comes next and moves on; a host that has got everything begins anew. Returns the bytes copied.
    std::size_t read(std::span<QRX_U8> space);
};

}  // namespace qrx::sim
