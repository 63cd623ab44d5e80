// The PIO engine of a root complex: reads the configuration space of the drive behind it.
#pragma once

#include <array>

#include "api/src/interface/wire/pio.h"
#include "sim/firmware/config_space.h"

namespace qrx::sim {

struct PioEngine {
    static constexpr std::size_t kRegisters = (kPioIsr - kPioCtrl) / sizeof(QRX_U32) + 1;

    std::array<QRX_U32, kRegisters> registers{};  // from kPioCtrl on

    friend bool operator==(const PioEngine&, const PioEngine&) = default;

    // `address` is that of one of the registers.
    [[nodiscard]] QRX_U32 read(QRX_U32 address) const { return registers[index(address)]; }
    // A write that starts an access carries it out on `behind`, null where there is no drive: an unsupported request.
    // `link` is the engine's own number: an access over another link is never answered.
    void write(QRX_U32 address, QRX_U32 value, QRX_U32 link, const ConfigSpace* behind);

    [[nodiscard]] static constexpr bool owns(QRX_U32 address) { return address >= kPioCtrl && address <= kPioIsr; }
    [[nodiscard]] static constexpr std::size_t index(QRX_U32 address) { return (address - kPioCtrl) / sizeof(QRX_U32); }

private:
    [[nodiscard]] QRX_U8 ask(QRX_U32 link, const ConfigSpace* behind) const;
};

}  // namespace qrx::sim
