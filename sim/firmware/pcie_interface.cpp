#include "sim/firmware/pcie_interface.h"

namespace qrx::sim {

QRX_U32 PcieInterface::read(QRX_U32 address) const
{
    const auto found = registers.find(address);
    return found != registers.end() ? found->second : 0;
}

Verdict PcieInterface::write(QRX_U32 address, QRX_U32 value)
{
    if (value == 0) {
        registers.erase(address);
        return Verdict::kGood;
    }
    if (registers.size() >= kMostRegisters && registers.find(address) == registers.end()) {
        return Verdict::kFailed;
    }
    registers[address] = value;
    return Verdict::kGood;
}

}  // namespace qrx::sim
