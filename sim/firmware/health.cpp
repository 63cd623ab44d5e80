#include "sim/firmware/health.h"

#include <cstring>

namespace qrx::sim {

namespace {

void put_counter(QRX_U8 (&field)[16], QRX_U64 value)
{
    std::memcpy(field, &value, sizeof(value));
}

// The log counts thousands of sectors, rounded up.
QRX_U64 data_units(QRX_U64 sectors)
{
    return sectors / 1000 + (sectors % 1000 != 0 ? 1 : 0);
}

}  // namespace

void Health::count_reads(QRX_U64 commands, QRX_U64 bytes)
{
    sectors_read += commands * (bytes / 512);
    host_reads += commands;
}

void Health::count_writes(QRX_U64 commands, QRX_U64 bytes)
{
    sectors_written += commands * (bytes / 512);
    host_writes += commands;
}

_qrx_smart_log Health::log(QRX_U64 errors) const
{
    _qrx_smart_log log{};
    log.critical_warning = critical_warning;
    std::memcpy(log.temperature, &temperature, sizeof(temperature));
    log.avail_spare = spare;
    log.spare_thresh = spare_threshold;
    log.percent_used = used;
    put_counter(log.data_units_read, data_units(sectors_read));
    put_counter(log.data_units_written, data_units(sectors_written));
    put_counter(log.host_reads, host_reads);
    put_counter(log.host_writes, host_writes);
    put_counter(log.ctrl_busy_time, busy_minutes);
    put_counter(log.power_cycles, power_cycles);
    put_counter(log.power_on_hours, power_on_milliseconds / (3600ULL * 1000));
    put_counter(log.unsafe_shutdowns, unsafe_shutdowns);
    put_counter(log.media_errors, media_errors);
    put_counter(log.num_err_log_entries, errors);
    log.warning_temp_time = warning_minutes;
    log.critical_comp_time = critical_minutes;
    log.temp_sensor[0] = temperature;
    log.tmt1tc = throttle1_count;
    log.tmt2tc = throttle2_count;
    log.ttftmt1 = throttle1_seconds;
    log.ttftmt2 = throttle2_seconds;
    return log;
}

}  // namespace qrx::sim
