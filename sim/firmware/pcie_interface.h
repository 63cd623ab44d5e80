// A PCIe interface of the controller, as the vendor register commands reach it: 32-bit registers at addresses of its
// own. Interfaces 0 and 1 are the end points, towards the host; those from 2 on are the root complexes, each with a
// drive behind it.
#pragma once

#include <map>

#include "api/src/interface/wire/types.h"
#include "sim/firmware/status.h"

namespace qrx::sim {

struct PcieInterface {
    static constexpr QRX_U8 kFirstRootComplex = 2;
    // Registers that may differ from 0 at a time.
    static constexpr std::size_t kMostRegisters = 4096;

    QRX_U8 id = 0;
    std::map<QRX_U32, QRX_U32> registers;  // by address, what was written; those that are not 0

    friend bool operator==(const PcieInterface&, const PcieInterface&) = default;

    // `address` is a multiple of 4. A register that nobody has written reads as 0.
    [[nodiscard]] QRX_U32 read(QRX_U32 address) const;
    // Refused when there is no room for one more.
    Verdict write(QRX_U32 address, QRX_U32 value);
    // The power went and came back.
    void reset() { registers.clear(); }
};

}  // namespace qrx::sim
