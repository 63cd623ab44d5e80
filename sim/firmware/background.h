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
    [[nodiscard]] QRX_U8 percentage() const;
    // Lets `passed` go by. A paused activity does not move.
    void advance(Clock::Duration passed);
    [[nodiscard]] NVME_BGA_STATUS record(QRX_U8 id) const;
};

}  // namespace qrx::sim
