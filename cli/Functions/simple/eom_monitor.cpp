// The eye opening monitor, register by register: how it is switched on, and how one point of the eye is measured.
#include "cli/Functions/simple/eom_monitor.h"

#include <algorithm>
#include <optional>

#include "cli/Functions/simple/eom_guard.h"
#include "cli/Public/frame/report.h"

namespace qrx::eom {

Patience patience{1000, std::chrono::seconds(2), 10};

namespace {

constexpr QRX_U32 kCircuit = offsetof(PciePhy_t, eomCircuitCtrl);
constexpr QRX_U32 kDfe = offsetof(PciePhy_t, dfeUpdateCtrl);
constexpr QRX_U32 kPower = offsetof(PciePhy_t, powerAndPllCtrl);
constexpr QRX_U32 kCountMask = 0xFFFF;  // of one counter register

void setValidBit(bool valid)
{
    modify<EomSet1Ctrl0_t>(kCtrl0, [valid](auto& reg) { reg.b.EOM_SET1_VLD = valid; });
}

// One wait for a bit.
class Wait {
public:
    // After a look that did not find the bit as wanted: whether to look again. `read`: the register could be read.
    bool goOn(bool read)
    {
        ++looks_;
        failures_ = read ? 0 : failures_ + 1;
        if (stopped()) {
            return false;
        }
        if (failures_ >= patience.failures) {
            scan.stop = Stop::kUnreadable;
        } else if (looks_ >= patience.looks && std::chrono::steady_clock::now() - start_ >= patience.time) {
            scan.stop = Stop::kNotReady;
        }
        return scan.stop == Stop::kNone;
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    unsigned looks_ = 0;
    unsigned failures_ = 0;
};

// Remembers a setting as it was before the scan; an earlier attempt of the same scan has changed it since.
void remember(std::optional<QRX_U32>& setting, QRX_U32 value)
{
    if (!scan.running || !setting) {
        setting = value;
    }
}

// Switches the monitor on or off, and waits until it is. A register that was never read is not written: it could not be
// put back.
void enable(bool on)
{
    constexpr int kAttempts = 3;
    EomCircuitCtrl_t circuit{};
    bool read = false;
    for (int attempt = 0; attempt < kAttempts && !read; ++attempt) {
        read = readRegister(id, g_base_addr + kCircuit, circuit.all);
    }
    if (read) {
        remember(scan.settings.circuit, circuit.all);
    } else if (scan.settings.circuit) {
        circuit.all = *scan.settings.circuit;
    } else {
        scan.stop = Stop::kUnreadable;
        return;
    }
    circuit.b.EOM_EN = on;
    set(kCircuit, circuit.all);
    Wait wait;
    do {
        read = readRegister(id, g_base_addr + kCircuit, circuit.all);
    } while ((circuit.b.EOM_READY != 0) != on && wait.goOn(read));
}

// The settings that the scan changes or may change. What cannot be read is not written either: it could not be put
// back.
void saveSettings()
{
    DfeUpdateCtrl_t dfe{};
    if (readRegister(id, g_base_addr + kDfe, dfe.all)) {
        remember(scan.settings.dfe, dfe.all);
        sv_dfe_fx_force = DfeUpdateCtrl_t{.all = *scan.settings.dfe}.b.DFE_FX_FORCE;
        set(kDfe, dfe.all & ~QRX_U32{1});
    }
    PowerAndPllCtrl_t power{};
    if (readRegister(id, g_base_addr + kPower, power.all)) {
        remember(scan.settings.power, power.all);
        sv_pu_dfe = PowerAndPllCtrl_t{.all = *scan.settings.power}.b.PU_DFE;
    }
}

void setPopulation(QRX_U32 nPopCount)
{
    set(offsetof(PciePhy_t, eomSet1PopCntr0), get(offsetof(PciePhy_t, eomSet1PopCntr0)) & ~kCountMask);
    set(offsetof(PciePhy_t, eomSet1PopCntr1), get(offsetof(PciePhy_t, eomSet1PopCntr1)) & ~kCountMask);
    // Bit 16 of the count: the monitor counts 80000 samples or fewer than 65536.
    const QRX_U32 bit16 = nPopCount > 16 ? 1 : 0;
    set(offsetof(PciePhy_t, eomSet1PopCntr2), (get(offsetof(PciePhy_t, eomSet1PopCntr2)) & ~kCountMask) | bit16);
    (void)get(offsetof(PciePhy_t, eomSet1PopCntr3));
    set(offsetof(PciePhy_t, eomSet1PopCntr3), nPopCount & kCountMask);
}

// Moves the sampling phase in steps that the receiver can follow.
void movePhase(QRX_U32 nPhase)
{
    while (nCurrentPhase != nPhase && !stopped()) {
        const bool up = nPhase > nCurrentPhase;
        const QRX_U32 distance = up ? nPhase - nCurrentPhase : nCurrentPhase - nPhase;
        const QRX_U32 step = std::min(distance, phase_skip);
        nCurrentPhase = up ? nCurrentPhase + step : nCurrentPhase - step;
        set(kCtrl1, (get(kCtrl1) & ~kPhaseMask) + nCurrentPhase);
        SetValid();
    }
}

// The low 32 bits of a counter of four registers, all of which are read.
QRX_U32 count(QRX_U32 first)
{
    (void)get(first);
    (void)get(first + 4);
    const QRX_U32 high = get(first + 8);
    return (high << 16U) + (get(first + 12) & kCountMask);
}

struct Counts {
    QRX_U32 errors = 0;
    QRX_U32 samples = 0;
};

void measure(QRX_U32 sign, Counts& total)
{
    modify<EomSet1Ctrl0_t>(kCtrl0, [sign](auto& reg) { reg.b.EOM_SET1_SIGN_BIT = sign & 3U; });
    modify<EomCircuitCtrl_t>(kCircuit, [sign](auto& reg) { reg.b.EOM_MEASURE_STATE = sign & 3U; });
    SetValid();
    total.errors += count(offsetof(PciePhy_t, eomSet1ErrCntr0));
    total.samples += count(offsetof(PciePhy_t, eomSet1SampleCntr0));
}

}  // namespace

}  // namespace qrx::eom

using namespace qrx::eom;

void SetValid()
{
    setValidBit(false);
    setValidBit(true);
    Wait wait;
    EomSet1Ctrl1_t seen{};
    bool read = false;
    do {
        read = qrx::readRegister(id, g_base_addr + kCtrl1, seen.all);
        setValidBit(true);
    } while (seen.b.EOM_SET1_RDY == 0 && wait.goOn(read));
    setValidBit(false);
}

QRX_U32 GetBER(QRX_U32 nPhase, QRX_U32 nVoltage, QRX_U32 nPopCount, QRX_U32 eyeSign1, QRX_U32 eyeSign2)
{
    constexpr QRX_U32 kUnit = 10000;
    setPopulation(nPopCount);
    setVoltage(nVoltage);
    movePhase(nPhase);
    Counts total;
    for (const QRX_U32 sign : {eyeSign1, eyeSign2}) {
        if (stopped()) {
            return 0;
        }
        measure(sign, total);
    }
    if (total.errors == 0) {
        return 0;
    }
    // Errors among no samples: nothing was right.
    return total.samples == 0 ? kUnit : total.errors * kUnit / total.samples;
}

void InitEOM()
{
    if (!scan.running) {
        scan = {};
    }
    set(kCtrl1, get(kCtrl1) & ~kPhaseMask);
    setVoltage(0);
    for (const bool on : {false, true}) {
        enable(on);
        if (stopped()) {
            return;
        }
    }
    saveSettings();
    qrx::print("<<<<<<<<InitEOM Done...>>>>>>>>>>\n");
}
