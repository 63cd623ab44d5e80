// A PCIe interface of the controller, as the vendor register commands reach it: 32-bit registers at addresses of its
// own. Interfaces 0 and 1 are the end points, towards the host; those from 2 on are the root complexes, each with a
// drive behind it and an engine that reads its configuration space. All have a PHY.
#pragma once

#include <map>

#include "api/src/interface/wire/types.h"
#include "sim/firmware/phy.h"
#include "sim/firmware/pio_engine.h"
#include "sim/firmware/status.h"

namespace qrx::sim {

struct PcieInterface {
    static constexpr QRX_U8 kFirstRootComplex = 2;
    // Registers that may differ from 0 at a time, beside those of the PHY and the engine.
    static constexpr std::size_t kMostRegisters = 4096;

    QRX_U8 id = 0;
    Phy phy;
    PioEngine pio;
    std::map<QRX_U32, QRX_U32> registers;  // by address, what was written to the others; those that are not 0

    friend bool operator==(const PcieInterface&, const PcieInterface&) = default;

    // `address` is a multiple of 4. A register that nobody has written reads as 0.
    [[nodiscard]] QRX_U32 read(QRX_U32 address);
    // Refused when there is no room for one more. `behind` is what the drive behind the interface answers, or null.
    Verdict write(QRX_U32 address, QRX_U32 value, const ConfigSpace* behind);
    // The power went and came back.
    void reset();

    // The registers that are not as they are after power-on, by address, as they stand in a state file.
    [[nodiscard]] std::map<QRX_U32, QRX_U32> changed() const;
    // Takes over one of them.
    void restore(QRX_U32 address, QRX_U32 value);

    [[nodiscard]] static constexpr bool in_phy(QRX_U32 address)
    {
        return address >= kPciePhyBase && address < kPciePhyBase + sizeof(PciePhy_t);
    }

private:
    [[nodiscard]] bool in_engine(QRX_U32 address) const { return id >= kFirstRootComplex && PioEngine::owns(address); }
};

}  // namespace qrx::sim
