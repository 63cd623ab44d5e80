// The PHY of a PCIe interface: its register file, with the eye opening monitor.
//
// The monitor: EOM_READY of eomCircuitCtrl follows EOM_EN. When EOM_SET1_VLD of eomSet1Ctrl0 rises while it is ready,
// it takes as many samples as the population registers say at the chosen phase and voltage; EOM_SET1_RDY of
// eomSet1Ctrl1 tells that the counters hold the result, until EOM_SET1_VLD falls. EOM_MEASURE_STATE must name the same
// sign as EOM_SET1_SIGN_BIT, or what is compared has nothing to do with the data. A phase beyond 127 goes on in bits 7
// to 11 of eomSet1Ctrl1, which read as 0.
#pragma once

#include <array>

#include "api/src/interface/wire/pcie_phy.h"
#include "sim/firmware/eye.h"

namespace qrx::sim {

struct Phy {
    static constexpr std::size_t kRegisters = sizeof(PciePhy_t) / sizeof(QRX_U32);
    using Registers = std::array<QRX_U32, kRegisters>;

    // Looks at a bit that never follows.
    static constexpr QRX_U8 kNever = 255;

    Eye eye;
    QRX_U8 ready_after = 1;     // looks at EOM_READY until it follows
    QRX_U8 measured_after = 1;  // looks at EOM_SET1_RDY until it follows
    QRX_U8 looks = 0;           // how often the bit that is waited for was looked at
    Registers registers = power_on();

    friend bool operator==(const Phy&, const Phy&) = default;

    [[nodiscard]] static Registers power_on();
    // The register at an offset, which is a multiple of 4 within the file.
    [[nodiscard]] QRX_U32 read(QRX_U32 offset);
    void write(QRX_U32 offset, QRX_U32 value);
    // The power went and came back.
    void reset();

private:
    [[nodiscard]] QRX_U32& at(QRX_U32 offset) { return registers[offset / sizeof(QRX_U32)]; }
    // Looks at a bit that is to become `wanted`.
    void look(QRX_U32 offset, QRX_U32 bit, bool wanted, QRX_U8 after);
    void measure();
    void put_count(QRX_U32 offset, QRX_U64 count);
};

}  // namespace qrx::sim
