#include "cli/Functions/simple/eom_guard.h"

#include "api/src/interface/wire/pcie_phy.h"
#include "cli/Functions/simple/eom_scan.h"
#include "cli/Functions/simple/simple_pcie.h"
#include "cli/Public/frame/report.h"

namespace qrx::eom {

Scan scan;

namespace {

volatile std::sig_atomic_t first = 0;

extern "C" void remember(int signal)
{
    if (first == 0) {
        first = signal;
    }
}

constexpr int kAttempts = 3;

struct Register {
    const char* name;
    QRX_U32 offset;
    QRX_U32 mask;   // bits that are put back
    QRX_U32 fixed;  // bits that nobody but a failed read of the scan can have changed
};
constexpr Register kCircuit{"eomCircuitCtrl", offsetof(PciePhy_t, eomCircuitCtrl), 1U << 15U, 0xFFFF53FF};
constexpr Register kDfe{"dfeUpdateCtrl", offsetof(PciePhy_t, dfeUpdateCtrl), 0x3F, 0};
constexpr unsigned kPowerBit = 10;
constexpr Register kPower{"powerAndPllCtrl", offsetof(PciePhy_t, powerAndPllCtrl), 1U << kPowerBit, 0};

// Gives the bits of `mask` in a register the value `bits`. What cannot be read is taken to be as before.
bool replace(const Register& reg, QRX_U32 bits, const std::optional<QRX_U32>& before)
{
    std::optional<QRX_U32> value = before;
    QRX_U32 now = 0;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (readRegister(id, g_base_addr + reg.offset, now)) {
            value = before ? (now & ~reg.fixed) | (*before & reg.fixed) : now;
            break;
        }
    }
    for (int attempt = 0; value && attempt < kAttempts; ++attempt) {
        if (write_reg(id, g_base_addr + reg.offset, (*value & ~reg.mask) | bits) == 0) {
            return true;
        }
    }
    print("The PHY's %s is not restored: its bits 0x%x should be 0x%x.\n", reg.name, reg.mask, bits);
    return false;
}

}  // namespace

Signals::Signals()
{
    first = 0;
    struct sigaction action {};
    action.sa_handler = remember;
    action.sa_flags = SA_RESTART;
    (void)sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < kTaken.size(); ++i) {
        (void)sigaction(kTaken[i], nullptr, &before_[i]);
        if (before_[i].sa_handler != SIG_IGN) {
            (void)sigaction(kTaken[i], &action, nullptr);
        }
    }
}

int Signals::caught()
{
    return first;
}

void Signals::release()
{
    if (!held_) {
        return;
    }
    held_ = false;
    for (std::size_t i = 0; i < kTaken.size(); ++i) {
        (void)sigaction(kTaken[i], &before_[i], nullptr);
    }
    if (first != 0 && first != SIGINT) {
        (void)std::raise(first);
    }
}

bool putBack(const Settings& settings)
{
    bool good = true;
    if (settings.circuit) {
        good &= replace(kCircuit, 0, settings.circuit);
    }
    if (settings.dfe) {
        good &= replace(kDfe, sv_dfe_fx_force, settings.dfe);
    }
    if (settings.power) {
        good &= replace(kPower, sv_pu_dfe << kPowerBit, settings.power);
    }
    return good;
}

bool stopped()
{
    if (scan.running && scan.stop == Stop::kNone && Signals::caught() != 0) {
        scan.stop = Stop::kInterrupted;
    }
    return scan.stop != Stop::kNone;
}

}  // namespace qrx::eom
