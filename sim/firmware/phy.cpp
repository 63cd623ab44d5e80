#include "sim/firmware/phy.h"

#include <cstddef>

namespace qrx::sim {

namespace {

constexpr QRX_U32 kPower = offsetof(PciePhy_t, powerAndPllCtrl);
constexpr QRX_U32 kDfe = offsetof(PciePhy_t, dfeUpdateCtrl);
constexpr QRX_U32 kCircuit = offsetof(PciePhy_t, eomCircuitCtrl);
constexpr QRX_U32 kCtrl0 = offsetof(PciePhy_t, eomSet1Ctrl0);
constexpr QRX_U32 kCtrl1 = offsetof(PciePhy_t, eomSet1Ctrl1);
constexpr QRX_U32 kPopulation = offsetof(PciePhy_t, eomSet1PopCntr0);
constexpr QRX_U32 kSamples = offsetof(PciePhy_t, eomSet1SampleCntr0);
constexpr QRX_U32 kErrors = offsetof(PciePhy_t, eomSet1ErrCntr0);
constexpr QRX_U32 kErrorsEnd = offsetof(PciePhy_t, externalDigiRsvd0);
constexpr QRX_U32 kWordSize = sizeof(QRX_U32);
constexpr QRX_U32 kWords = 4;  // of a 64-bit counter, the highest first, 16 bits each

constexpr QRX_U32 kPllLock = 1U << 8;
constexpr QRX_U32 kReady = 1U << 13;     // eomCircuitCtrl
constexpr QRX_U32 kEnable = 1U << 15;    // eomCircuitCtrl
constexpr QRX_U32 kValid = 1U << 13;     // eomSet1Ctrl0
constexpr QRX_U32 kMeasured = 1U << 15;  // eomSet1Ctrl1
constexpr QRX_U32 kPhase = 0xFFF;        // eomSet1Ctrl1, of which 0x7F can be read back
constexpr QRX_U32 kHiddenPhase = 0xF80;

// Bits of a register that a write cannot change.
constexpr QRX_U32 read_only(QRX_U32 offset)
{
    switch (offset) {
    case offsetof(PciePhy_t, Chip_id):
        return 0xFFFFFFFF;
    case kPower:
        return kPllLock;
    case kCircuit:
        return kReady;
    case kCtrl1:
        return ~kPhase;
    default:
        return offset >= kSamples && offset < kErrorsEnd ? 0xFFFFFFFF : 0;
    }
}

}  // namespace

Phy::Registers Phy::power_on()
{
    PowerAndPllCtrl_t power{};
    power.b.REF_FREF_SEL = 16;
    power.b.PHY_MODE = 3;
    power.b.PLL_LOCK = 1;
    power.b.PU_DFE = 1;
    power.b.PU_TX = 1;
    power.b.PU_RX = 1;
    power.b.PU_PLL = 1;
    DfeUpdateCtrl_t dfe{};
    dfe.b.DFE_FX_FORCE = 0x15;
    dfe.b.DFE_UPDATE_EN = 0x3F;
    dfe.b.F0_SAT_HOLD_THRES = 2;
    dfe.b.F0_SAT_EN = 1;
    EomCircuitCtrl_t circuit{};
    circuit.b.EOM_SAM_VLD_TIME = 3;
    Registers registers{};
    registers[offsetof(PciePhy_t, Chip_id) / sizeof(QRX_U32)] = 0x000100C0;
    registers[kPower / sizeof(QRX_U32)] = power.all;
    registers[kDfe / sizeof(QRX_U32)] = dfe.all;
    registers[kCircuit / sizeof(QRX_U32)] = circuit.all;
    return registers;
}

QRX_U32 Phy::read(QRX_U32 offset)
{
    if (offset == kCircuit) {
        look(kCircuit, kReady, (at(kCircuit) & kEnable) != 0, ready_after);
    } else if (offset == kCtrl1) {
        const bool measures = (at(kCtrl0) & kValid) != 0 && (at(kCircuit) & kReady) != 0;
        look(kCtrl1, kMeasured, measures, measured_after);
        return at(kCtrl1) & ~kHiddenPhase;
    }
    return at(offset);
}

void Phy::look(QRX_U32 offset, QRX_U32 bit, bool wanted, QRX_U8 after)
{
    if (((at(offset) & bit) != 0) == wanted || after == kNever) {
        return;
    }
    if (looks < after) {
        ++looks;
        return;
    }
    looks = 0;
    at(offset) ^= bit;
}

void Phy::write(QRX_U32 offset, QRX_U32 value)
{
    const QRX_U32 before = at(offset);
    const QRX_U32 kept = read_only(offset);
    at(offset) = (before & kept) | (value & ~kept);
    if (offset == kCircuit && ((before ^ value) & kEnable) != 0) {
        looks = 0;
    }
    if (offset == kCtrl0 && ((before ^ value) & kValid) != 0) {
        looks = 0;
        at(kCtrl1) &= ~kMeasured;
        if ((value & kValid) != 0 && (at(kCircuit) & kReady) != 0) {
            measure();
        }
    }
}

void Phy::measure()
{
    const EomSet1Ctrl0_t set{.all = at(kCtrl0)};
    const EomCircuitCtrl_t circuit{.all = at(kCircuit)};
    QRX_U64 samples = 0;
    for (QRX_U32 word = 0; word < kWords; ++word) {
        samples = samples << 16 | (at(kPopulation + word * kWordSize) & 0xFFFF);
    }
    const bool same = circuit.b.EOM_MEASURE_STATE == set.b.EOM_SET1_SIGN_BIT;
    const QRX_U64 errors = same ? eye.errors(at(kCtrl1) & kPhase, set.b.EOM_SET1_VOLTAGE, samples) : samples / 2;
    put_count(kSamples, samples);
    put_count(kErrors, errors);
}

void Phy::put_count(QRX_U32 offset, QRX_U64 count)
{
    for (QRX_U32 word = 0; word < kWords; ++word) {
        at(offset + word * kWordSize) = count >> (48 - 16 * word) & 0xFFFF;
    }
}

void Phy::reset()
{
    registers = power_on();
    looks = 0;
}

}  // namespace qrx::sim
