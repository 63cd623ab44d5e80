// What the controller counts of the I/O of one namespace, and a workload that other programs put on it.
//
// Time goes by between commands alone, so that a command takes as long as the model says: so many microseconds, and
// more for much data. By these times a namespace is busy or idle.
#pragma once

#include <array>
#include <optional>

#include "api/src/interface/wire/iomon.h"
#include "api/src/interface/wire/types.h"
#include "sim/firmware/clock.h"

namespace qrx::sim {

// I/O commands of one direction since power-on.
struct IoCounters {
    QRX_U64 commands = 0;
    QRX_U64 sectors = 0;
    QRX_U64 successes = 0;
    QRX_U16 failures = 0;      // stays at its highest value
    QRX_U64 microseconds = 0;  // that they took

    friend bool operator==(const IoCounters&, const IoCounters&) = default;

    void add(QRX_U64 count, QRX_U64 sectors_each, QRX_U64 microseconds_each);
    void add_failures(QRX_U64 count);
};

// Reads and writes that come evenly over a time.
struct Workload {
    static constexpr QRX_U64 kMostCommands = 1000000000;
    static constexpr QRX_U64 kMostBlocks = 65536;
    static constexpr QRX_U64 kMostSeconds = QRX_U64{24} * 3600;

    QRX_U64 reads = 0;
    QRX_U64 writes = 0;
    QRX_U32 blocks = 8;       // of each command
    QRX_U64 duration = 1000;  // milliseconds
    QRX_U64 elapsed = 0;

    friend bool operator==(const Workload&, const Workload&) = default;

    // How many of `all` have come after `elapsed` milliseconds.
    [[nodiscard]] QRX_U64 come(QRX_U64 all) const { return all * elapsed / duration; }
    // Commands under way at a time, on the average.
    [[nodiscard]] QRX_U16 inflight(QRX_U32 sector_size) const;
};

struct IoStatistics {
    IoCounters reads;
    IoCounters writes;
    // Microseconds that the namespace was busy in each window; the window of the present second is being filled.
    std::array<QRX_U32, kIomonWindows> busy{};
    std::optional<Workload> workload;

    friend bool operator==(const IoStatistics&, const IoStatistics&) = default;

    // The window of the second that `uptime`, in milliseconds, lies in.
    [[nodiscard]] static std::size_t window_at(QRX_U64 uptime) { return uptime / 1000 % kIomonWindows; }
    // A command of a host has ended. `sectors` is what it moved.
    void count(bool write, bool good, QRX_U64 sectors, QRX_U32 sector_size, QRX_U64 uptime);
    // Lets `passed` go by from `uptime` on. Without service the commands of the workload fail.
    void advance(QRX_U64 uptime, Clock::Duration passed, QRX_U32 sector_size, bool in_service);

private:
    void busy_for(QRX_U64 microseconds, QRX_U64 uptime);
    // The workload's part of one step, which does not leave the second.
    void work(QRX_U64 uptime, QRX_U64 step, QRX_U32 sector_size, bool in_service);
};

}  // namespace qrx::sim
