#include "cli/Functions/simple/eom_scan.h"

#include <algorithm>

#include "cli/Functions/simple/eom_guard.h"
#include "cli/Functions/simple/eom_monitor.h"
#include "cli/Public/frame/report.h"

QRX_U32 voltage_skip = 4;
QRX_U32 eom_window = 64;
QRX_U32 eom_search_range = 2560;
QRX_U32 min_width = 16;
QRX_U32 phase_skip = 8;
QRX_U32 no_plot_loop = 0;

int id = 0;
QRX_U32 g_base_addr = 0;
QRX_U32 nCurrentPhase = 0;
QRX_U32 eyeCenter = 0;
QRX_U32 leftEdge = 0;
QRX_U32 rightEdge = 0;
QRX_U32 eyeWidth = 0;
QRX_U32 sv_dfe_fx_force = 0;
QRX_U32 sv_pu_dfe = 0;

namespace {

using namespace qrx::eom;
using qrx::print;

constexpr QRX_U32 kPopulation = 80000;  // samples of one measurement
constexpr int kAttempts = 10;           // to find the eye

// Signs of the two measurements at one point, for each half of the eye.
struct SignPair {
    QRX_U32 first;
    QRX_U32 second;
};
constexpr SignPair kUpper{3, 1};
constexpr SignPair kLower{2, 0};

// Search for the first run of clean phases.
enum class Search { kOutside, kInside, kEndAtLimit, kFound, kPastLimit };

// What the error rate at `nPhase` makes of the search. False: it is over.
bool advance(Search& state, QRX_U32 nPhase, QRX_U32 errorRate, QRX_U32& nLeftEdge, QRX_U32& nRightEdge)
{
    switch (state) {
    case Search::kOutside:
        if (errorRate == 0) {
            nLeftEdge = nPhase == 0 ? 0 : nPhase - phase_skip;
            state = Search::kInside;
        }
        return true;
    case Search::kInside:
        if (errorRate == 0) {
            return true;
        }
        if (nPhase - nLeftEdge <= min_width) {
            state = Search::kOutside;
            return true;
        }
        nRightEdge = nPhase;
        state = nPhase < eom_search_range - phase_skip ? Search::kFound : Search::kEndAtLimit;
        return state == Search::kEndAtLimit;
    default:
        state = Search::kPastLimit;
        return false;
    }
}

void printTwice(const char* format, QRX_U32 value)
{
    print(format, static_cast<int>(value), value);
}

// Runs of clean phases in one row.
class Runs {
public:
    void add(bool clean)
    {
        run_ = clean ? run_ + 1 : 0;
        longest_ = std::max(longest_, run_);
    }
    // 0: no phase was clean.
    [[nodiscard]] QRX_U32 longest() const { return longest_; }

private:
    QRX_U32 run_ = 0;
    QRX_U32 longest_ = 0;
};

// A pass over the eye, row by row.
class Map {
public:
    Map(QRX_U32 left, QRX_U32 right, QRX_U32 center) : left_(left), right_(right), center_(center) {}

    // One row. Every phase is measured when it is plotted, or on demand; otherwise the center alone.
    void row(QRX_U32 nVoltage, const SignPair& signs, bool whole, Runs* runs)
    {
        print("%02x ", nVoltage);
        for (QRX_U32 phase = left_; phase < right_; ++phase) {
            if (no_plot_loop == 0 || phase == center_ || whole) {
                berr_ = GetBER(phase, nVoltage, kPopulation, signs.first, signs.second);
            }
            if (stopped()) {
                return;
            }
            if (no_plot_loop == 0) {
                PlotSymbol(berr_);
            }
            if (berr_ == 0 && phase == center_) {
                height_ += voltage_skip;
            }
            if (runs != nullptr) {
                runs->add(berr_ == 0);
            }
        }
        if (no_plot_loop == 0) {
            print("\n");
        }
    }
    [[nodiscard]] QRX_U32 height() const { return height_; }

private:
    QRX_U32 left_;
    QRX_U32 right_;
    QRX_U32 center_;
    QRX_U32 berr_ = 0;
    QRX_U32 height_ = 0;
};

const char* reason()
{
    switch (scan.stop) {
    case Stop::kInterrupted:
        return "\nThe scan was interrupted.\n";
    case Stop::kUnreadable:
        return "\nThe eye opening monitor cannot be read.\n";
    default:
        return "\nThe eye opening monitor does not get ready.\n";
    }
}

void runStages()
{
    for (int attempt = 0; attempt < kAttempts && !stopped(); ++attempt) {
        print("InitEOM...\n");
        InitEOM();
        if (stopped()) {
            return;
        }
        print("FindEyeCenter...\n");
        FindEyeCenter();
        if (eyeCenter != 0) {
            break;
        }
    }
    if (stopped()) {
        return;
    }
    print("MapEye eyeCenter=%d, window=%d\n", static_cast<int>(eyeCenter), static_cast<int>(eom_window));
    const QRX_U32 half = eom_window / 2;
    for (QRX_U32 pass = 0; pass < std::max<QRX_U32>(no_plot_loop, 1) && !stopped(); ++pass) {
        MapEye(eyeCenter - half, eyeCenter + half, eyeCenter);
    }
}

}  // namespace

void PlotSymbol(QRX_U32 berr)
{
    const char* symbol = "#";
    if (berr == 0) {
        symbol = ".";
    } else if (berr < 10) {
        symbol = "*";
    } else if (berr < 1000) {
        symbol = "+";
    }
    print("%s", symbol);
}

void FindEyeCenter()
{
    setVoltage(0);
    print("Scanning Phase...\n");
    Search state = Search::kOutside;
    QRX_U32 nLeftEdge = 0;
    QRX_U32 nRightEdge = 0;
    bool searching = true;
    for (QRX_U32 nPhase = 0; searching && nPhase <= eom_search_range - phase_skip; nPhase += phase_skip) {
        const QRX_U32 errorRate = GetBER(nPhase, 0, kPopulation, kUpper.first, kUpper.second);
        if (stopped()) {
            return;
        }
        print("Phase:  %d  0x%x  0x%x, BER: %07d e-4 \n", static_cast<int>(nPhase), nPhase, get(kCtrl1) & kPhaseMask,
              static_cast<int>(errorRate));
        searching = advance(state, nPhase, errorRate, nLeftEdge, nRightEdge);
    }
    // An eye that touches phase 0 has no left edge that could be seen.
    const bool found = nLeftEdge != 0 && state == Search::kFound;
    leftEdge = found ? nLeftEdge : 0;
    eyeCenter = found ? nLeftEdge + (nRightEdge - nLeftEdge) / 2 : 0;
    eyeWidth = nRightEdge - leftEdge;
    printTwice("\n Estimated Left edge is at:  %d  0x%x\n", leftEdge);
    printTwice(" Estimated Center is at:       %d  0x%x\n", eyeCenter);
    printTwice(" Estimated Right edge is at:   %d  0x%x\n", nRightEdge);
    printTwice(" Estimated Eye width is:       %d  0x%x\n", eyeWidth);
}

void MapEye(QRX_U32 nLeftEdge, QRX_U32 nRightEdge, QRX_U32 nEyeCenter)
{
    constexpr int kTop = 63;
    constexpr int kUpperEnd = 3;
    constexpr int kLowerEnd = 60;
    const int skip = static_cast<int>(voltage_skip);
    print("Map the eye digram between left phase= %d   to right phase=  %d\n", static_cast<int>(nLeftEdge),
          static_cast<int>(nRightEdge));
    Map map(nLeftEdge, nRightEdge, nEyeCenter);
    for (int nVoltage = kTop; nVoltage >= kUpperEnd && !stopped(); nVoltage -= skip) {
        map.row(static_cast<QRX_U32>(nVoltage), kUpper, false, nullptr);
    }
    Runs runs;
    for (int nVoltage = 0; nVoltage <= kLowerEnd && !stopped(); nVoltage += skip) {
        map.row(static_cast<QRX_U32>(nVoltage), kLower, nVoltage == 0, nVoltage == 0 ? &runs : nullptr);
    }
    if (stopped()) {
        return;
    }
    eyeWidth = runs.longest();
    if (eyeWidth == 0) {
        print("\n Eye not open at lower half! \n");
    }
    printTwice("\n eye height is:  %d   0x%x\n", map.height());
    printTwice(" eye width is:   %d   0x%x\n", eyeWidth);
}

void GetEOM()
{
    Signals signals;
    scan = {};
    scan.running = true;
    runStages();
    const bool complete = !stopped();
    print("%s", complete ? "End of EOM capture\n" : reason());
    const bool restored = putBack(scan.settings);
    if (!complete && restored) {
        print("The settings of the PHY are restored.\n");
    }
    scan.running = false;
}
