// What stands between a scan and its end: the signals that end it early, and the settings to put back.
#pragma once

#include <array>
#include <csignal>
#include <optional>

#include "api/src/interface/wire/types.h"

namespace qrx::eom {

// Over its life a signal that would end the process is only remembered. One that the process ignores stays ignored.
class Signals {
public:
    Signals();
    ~Signals() { release(); }
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    // The first signal that came, or 0.
    static int caught();
    // Handles signals as before, and gives up those that ask for the process's end: Ctrl-C asks for that of the scan
    // alone.
    void release();

private:
    static constexpr std::array kTaken{SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE};

    std::array<struct sigaction, kTaken.size()> before_{};
    bool held_ = true;
};

// Registers of the PHY as they were before the scan. Nothing: they could not be read.
struct Settings {
    std::optional<QRX_U32> circuit;  // eomCircuitCtrl; nothing: nor was it written
    std::optional<QRX_U32> dfe;      // dfeUpdateCtrl; nothing: the scan did not change it
    std::optional<QRX_U32> power;    // powerAndPllCtrl
};

// Switches the monitor off and puts back what a scan changed. A register that cannot be read now is taken to be as it
// was. False, with a line for each register, when one could not be written.
bool putBack(const Settings& settings);

// Why a scan ends before its time.
enum class Stop { kNone, kInterrupted, kNotReady, kUnreadable };

// The scan that runs, beside the globals of eom_scan.h.
struct Scan {
    bool running = false;
    Stop stop = Stop::kNone;
    Settings settings;
};
extern Scan scan;

// Whether the scan has to end: asked between measurements and while a bit is waited for.
bool stopped();

}  // namespace qrx::eom
