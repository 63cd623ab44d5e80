// A controller with a PHY, for the tests of `eom`: a scan of few points, the accesses of its stages, the lines of its
// page.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "cli/Functions/simple/eom_scan.h"
#include "tests/unit/cli/fake_phy.h"
#include "tests/unit/cli/run.h"

namespace qrx::test {

inline const std::string kRestored = "The settings of the PHY are restored.\n";
inline const std::string kInit = "InitEOM...\n<<<<<<<<InitEOM Done...>>>>>>>>>>\nFindEyeCenter...\nScanning Phase...\n";

// Offsets.
inline constexpr QRX_U32 kPower = 0x004;
inline constexpr QRX_U32 kDfe = 0x020;
inline constexpr QRX_U32 kCircuit = 0x09C;
inline constexpr QRX_U32 kCtrl0 = 0x0A0;
inline constexpr QRX_U32 kCtrl1 = 0x0A4;
inline constexpr QRX_U32 kValid = 0x2000;

using Accesses = std::vector<Access>;

inline Accesses operator+(Accesses left, const Accesses& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}
inline Accesses reads(QRX_U32 offset, QRX_U32 value)
{
    return {{false, offset, value}};
}
// A register read and written back.
inline Accesses changes(QRX_U32 offset, QRX_U32 before, QRX_U32 after)
{
    return {{false, offset, before}, {true, offset, after}};
}
// SetValid with eomSet1Ctrl0 at `ctrl0` but for EOM_SET1_VLD, and the phase in eomSet1Ctrl1.
inline Accesses handshake(QRX_U32 ctrl0, QRX_U32 phase, int polls = 1)
{
    Accesses all = changes(kCtrl0, ctrl0, ctrl0) + changes(kCtrl0, ctrl0, ctrl0 | kValid);
    for (int poll = 1; poll <= polls; ++poll) {
        all = all + reads(kCtrl1, phase | (poll == polls ? 0x8000U : 0U)) +
              changes(kCtrl0, ctrl0 | kValid, ctrl0 | kValid);
    }
    return all + changes(kCtrl0, ctrl0 | kValid, ctrl0);
}

class EomCommand : public testing::Test {
protected:
    EomCommand()
    {
        gCurrentAdapter = 0;
        g_oneBaseMode = 0;
        dbg_enable = 0;
        id = 1;
        g_base_addr = 0xE2A00000;
        qrx::eom::patience = {5, std::chrono::milliseconds(0), 3};
        phy.registers[kPower] = 0x00007570;
        phy.registers[kDfe] = 0x0000AFD5;
        phy.registers[kCircuit] = 0x00000030;
        // A scan of a few measurements: three phases of search at least, four columns and two rows each half.
        eom_window = 4;
        voltage_skip = 60;
    }
    ~EomCommand() override
    {
        voltage_skip = 4;
        eom_window = 64;
        eom_search_range = 2560;
        min_width = 16;
        phase_skip = 8;
        no_plot_loop = 0;
        qrx::eom::patience = before_;
        nCurrentPhase = 0;
        eyeCenter = leftEdge = eyeWidth = sv_dfe_fx_force = sv_pu_dfe = 0;
        id = 0;
        g_base_addr = 0;
    }
    // Clean from the first to the last of these phases, all voltages.
    void openEye(QRX_U32 first, QRX_U32 last)
    {
        phy.errors = [first, last](QRX_U32 phase, QRX_U32, QRX_U32) {
            return phase >= first && phase <= last ? 0U : 40000U;
        };
    }
    static std::string search(const std::function<void()>& stage = FindEyeCenter)
    {
        return outcomeOf([&] {
                   stage();
                   return 0;
               })
            .stream;
    }
    static std::string estimate(int left, int center, int right, int width)
    {
        char text[256];
        std::snprintf(text, sizeof(text),
                      "\n Estimated Left edge is at:  %d  0x%x\n Estimated Center is at:       %d  0x%x\n"
                      " Estimated Right edge is at:   %d  0x%x\n Estimated Eye width is:       %d  0x%x\n",
                      left, left, center, center, right, right, width, width);
        return text;
    }
    static std::string phaseLine(unsigned phase, unsigned rate)
    {
        char text[128];
        std::snprintf(text, sizeof(text), "Phase:  %u  0x%x  0x%x, BER: %07u e-4 \n", phase, phase, phase & 0x7F, rate);
        return text;
    }
    // The lines of a search, clean from `first` to `last`, up to `end`.
    static std::string phaseLines(unsigned first, unsigned last, unsigned end)
    {
        std::string text;
        for (unsigned phase = 0; phase <= end; phase += 8) {
            text += phaseLine(phase, phase >= first && phase <= last ? 0 : 5000);
        }
        return text;
    }
    [[nodiscard]] bool settingsAreAsBefore()
    {
        return phy.registers[kPower] == 0x7570 && phy.registers[kDfe] == 0xAFD5 &&
               (phy.registers[kCircuit] & ~0xC00U) == 0x30;
    }

    GlobalsGuard guard;
    FakePhy phy;

private:
    qrx::eom::Patience before_ = qrx::eom::patience;
};

}  // namespace qrx::test
