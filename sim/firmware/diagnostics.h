// What the firmware keeps for those who diagnose it.
#pragma once

#include "api/src/interface/wire/types.h"
#include "sim/firmware/clock.h"
#include "sim/firmware/spi_log.h"

namespace qrx::sim {

struct Diagnostics {
    static constexpr QRX_U32 kCrashLog = 1;
    static constexpr QRX_U64 kLongestStall = 255000;

    QRX_U32 error_status = 0;  // kCrashLog: the firmware has a log of a crash
    bool dual_port = false;    // the subsystem has two ports, not one
    QRX_U64 stall = 0;         // milliseconds for which it answers nobody yet
    bool vdm_on = false;       // vendor-defined messages are logged
    SpiLog vdm_log;

    friend bool operator==(const Diagnostics&, const Diagnostics&) = default;

    // Lets time go by.
    void advance(Clock::Duration passed)
    {
        const auto gone = static_cast<QRX_U64>(passed.count());
        stall -= gone < stall ? gone : stall;
    }
};

}  // namespace qrx::sim
