// A background activity: how far it is, as a function of the simulated time that has gone by.
#pragma once

#include "api/src/interface/wire/bga.h"
#include "sim/firmware/clock.h"

namespace qrx::sim {

struct BackgroundActivity {
    QRX_U8 type = QRX_NVME_BGA_TYPE_VD_INIT_BACKGROUND;
    QRX_U8 state = QRX_NVME_BGA_STATUS_RUNNING;
    QRX_U64 elapsed = 0;                // milliseconds of work done
    QRX_U64 duration = 7200ULL * 1000;  // milliseconds of work in all, at least 1

    friend bool operator==(const BackgroundActivity&, const BackgroundActivity&) = default;

    [[nodiscard]] bool running() const { return state == QRX_NVME_BGA_STATUS_RUNNING; }
    [[nodiscard]] bool finished() const { return elapsed >= duration; }
    // Simulated time until it is done; the longest there is while it does not run.
    [[nodiscard]] Clock::Duration left() const;
    // The same until the next tenth of it is done.
    [[nodiscard]] Clock::Duration left_of_tenth() const;
    [[nodiscard]] QRX_U8 percentage() const;
    // Makes it `to` / `from` times as long, with the same share of it done.
    void stretch(QRX_U64 from, QRX_U64 to);
    // Lets `passed` go by. A paused activity does not move.
    void advance(Clock::Duration passed);
    [[nodiscard]] NVME_BGA_STATUS record(QRX_U8 id) const;
};

// How many times as long as at the rate "high" an activity takes at `rate`.
[[nodiscard]] QRX_U64 rate_factor(QRX_U8 rate);

// The milliseconds that an activity takes which goes over `bytes` of every member.
[[nodiscard]] QRX_U64 activity_duration(QRX_U8 type, QRX_U64 bytes, QRX_U8 rate);

// "_INIT", "_MP", ...: what the event ring calls an activity of a virtual disk; empty for what it does not know.
[[nodiscard]] const char* activity_word(QRX_U8 type);

// "initialization", "media patrol", ...
[[nodiscard]] const char* activity_name(QRX_U8 type);

}  // namespace qrx::sim
