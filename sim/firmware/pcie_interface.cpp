#include "sim/firmware/pcie_interface.h"

namespace qrx::sim {

QRX_U32 PcieInterface::read(QRX_U32 address)
{
    if (in_phy(address)) {
        return phy.read(address - kPciePhyBase);
    }
    if (in_engine(address)) {
        return pio.read(address);
    }
    const auto found = registers.find(address);
    return found != registers.end() ? found->second : 0;
}

Verdict PcieInterface::write(QRX_U32 address, QRX_U32 value, const ConfigSpace* behind)
{
    if (in_phy(address)) {
        phy.write(address - kPciePhyBase, value);
        return Verdict::kGood;
    }
    if (in_engine(address)) {
        pio.write(address, value, QRX_U32{id} - kFirstRootComplex, behind);
        return Verdict::kGood;
    }
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

void PcieInterface::reset()
{
    phy.reset();
    pio = {};
    registers.clear();
}

std::map<QRX_U32, QRX_U32> PcieInterface::changed() const
{
    std::map<QRX_U32, QRX_U32> all = registers;
    const Phy::Registers fresh = Phy::power_on();
    for (std::size_t i = 0; i < fresh.size(); ++i) {
        if (phy.registers[i] != fresh[i]) {
            all[kPciePhyBase + static_cast<QRX_U32>(i * sizeof(QRX_U32))] = phy.registers[i];
        }
    }
    for (std::size_t i = 0; i < pio.registers.size(); ++i) {
        if (pio.registers[i] != 0) {
            all[kPioCtrl + static_cast<QRX_U32>(i * sizeof(QRX_U32))] = pio.registers[i];
        }
    }
    return all;
}

void PcieInterface::restore(QRX_U32 address, QRX_U32 value)
{
    if (in_phy(address)) {
        phy.registers[(address - kPciePhyBase) / sizeof(QRX_U32)] = value;
    } else if (in_engine(address)) {
        pio.registers[PioEngine::index(address)] = value;
    } else {
        registers[address] = value;
    }
}

}  // namespace qrx::sim
