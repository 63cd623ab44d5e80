// What a device's SMART / Health Information log says.
#pragma once

#include "api/src/interface/wire/nvme.h"
#include "sim/firmware/clock.h"

namespace qrx::sim {

struct Health {
    QRX_U8 critical_warning = 0;
    QRX_U16 temperature = 311;              // Kelvin
    QRX_U8 spare = 100;                     // percent
    QRX_U8 spare_threshold = 10;            // percent
    QRX_U8 used = 1;                        // percent
    QRX_U64 sectors_read = 48271104000;     // of 512 bytes
    QRX_U64 sectors_written = 30912118000;  // of 512 bytes
    QRX_U64 host_reads = 391827401;
    QRX_U64 host_writes = 287110663;
    QRX_U64 busy_minutes = 1837;
    QRX_U64 power_cycles = 42;
    QRX_U64 power_on_milliseconds = 4711ULL * 3600 * 1000;
    QRX_U64 unsafe_shutdowns = 3;
    QRX_U64 media_errors = 0;
    QRX_U32 warning_minutes = 0;
    QRX_U32 critical_minutes = 0;
    // Of the two temperatures at which a device slows itself down to cool: how often, and how long.
    QRX_U32 throttle1_count = 0;
    QRX_U32 throttle2_count = 0;
    QRX_U32 throttle1_seconds = 0;
    QRX_U32 throttle2_seconds = 0;

    friend bool operator==(const Health&, const Health&) = default;

    // So many commands of so many bytes each.
    void count_reads(QRX_U64 commands, QRX_U64 bytes);
    void count_writes(QRX_U64 commands, QRX_U64 bytes);
    void advance(Clock::Duration passed) { power_on_milliseconds += static_cast<QRX_U64>(passed.count()); }
    // `errors`: entries that the error log has ever had.
    [[nodiscard]] _qrx_smart_log log(QRX_U64 errors) const;
};

}  // namespace qrx::sim
