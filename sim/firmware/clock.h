// The controller's clock. It runs on simulated time: it moves when it is told to, and never by itself.
#pragma once

#include <chrono>

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

class Clock {
public:
    using Duration = std::chrono::milliseconds;

    // 2026-01-01 00:00:00 UTC, until somebody sets it.
    static constexpr QRX_U64 kPowerOn = 1767225600000ULL;

    QRX_U64 milliseconds = kPowerOn;  // since the epoch, UTC
    bool set = false;                 // a host has set it since power-on
    QRX_U64 uptime = 0;               // milliseconds since power-on

    friend bool operator==(const Clock&, const Clock&) = default;

    [[nodiscard]] QRX_U64 seconds() const { return milliseconds / 1000; }

    void advance(Duration duration)
    {
        milliseconds += static_cast<QRX_U64>(duration.count());
        uptime += static_cast<QRX_U64>(duration.count());
    }

    // Tells the controller the time of day. No time goes by thereby.
    void set_to(QRX_U64 new_milliseconds)
    {
        milliseconds = new_milliseconds;
        set = true;
    }
};

}  // namespace qrx::sim
