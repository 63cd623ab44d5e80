#include "sim/firmware/io_statistics.h"

#include <algorithm>
#include <limits>

namespace qrx::sim {

namespace {

constexpr QRX_U64 kMillisecond = 1000;  // microseconds
constexpr QRX_U64 kSecond = 1000;       // milliseconds

// How long a command takes, in microseconds: a read waits for the flash, a write for the cache alone.
QRX_U64 read_time(QRX_U64 bytes)
{
    return 90 + bytes / 4096;
}

QRX_U64 write_time(QRX_U64 bytes)
{
    return 30 + bytes / 2048;
}

}  // namespace

void IoCounters::add(QRX_U64 count, QRX_U64 sectors_each, QRX_U64 microseconds_each)
{
    commands += count;
    successes += count;
    sectors += count * sectors_each;
    microseconds += count * microseconds_each;
}

void IoCounters::add_failures(QRX_U64 count)
{
    constexpr QRX_U64 kMost = std::numeric_limits<QRX_U16>::max();
    commands += count;
    failures = static_cast<QRX_U16>(std::min(kMost, failures + std::min(count, kMost)));
}

QRX_U16 Workload::inflight(QRX_U32 sector_size) const
{
    const QRX_U64 bytes = QRX_U64{blocks} * sector_size;
    const QRX_U64 work = reads * read_time(bytes) + writes * write_time(bytes);
    const QRX_U64 time = duration * kMillisecond;
    return static_cast<QRX_U16>(std::min<QRX_U64>((work + time - 1) / time, std::numeric_limits<QRX_U16>::max()));
}

void IoStatistics::count(bool write, bool good, QRX_U64 sectors, QRX_U32 sector_size, QRX_U64 uptime)
{
    IoCounters& counters = write ? writes : reads;
    if (!good) {
        counters.add_failures(1);
        return;
    }
    const QRX_U64 bytes = sectors * sector_size;
    const QRX_U64 time = write ? write_time(bytes) : read_time(bytes);
    counters.add(1, sectors, time);
    busy_for(time, uptime);
}

void IoStatistics::busy_for(QRX_U64 microseconds, QRX_U64 uptime)
{
    QRX_U32& window = busy.at(window_at(uptime));
    window = static_cast<QRX_U32>(std::min<QRX_U64>(kIomonWindow, window + microseconds));
}

void IoStatistics::work(QRX_U64 uptime, QRX_U64 step, QRX_U32 sector_size, bool in_service)
{
    Workload& load = *workload;
    step = std::min(step, load.duration - load.elapsed);
    const QRX_U64 reads_before = load.come(load.reads);
    const QRX_U64 writes_before = load.come(load.writes);
    load.elapsed += step;
    const QRX_U64 new_reads = load.come(load.reads) - reads_before;
    const QRX_U64 new_writes = load.come(load.writes) - writes_before;
    if (in_service) {
        const QRX_U64 bytes = QRX_U64{load.blocks} * sector_size;
        reads.add(new_reads, load.blocks, read_time(bytes));
        writes.add(new_writes, load.blocks, write_time(bytes));
        busy_for(std::min(step * kMillisecond, new_reads * read_time(bytes) + new_writes * write_time(bytes)), uptime);
    } else {
        reads.add_failures(new_reads);
        writes.add_failures(new_writes);
    }
    if (load.elapsed >= load.duration) {
        workload.reset();
    }
}

void IoStatistics::advance(QRX_U64 uptime, Clock::Duration passed, QRX_U32 sector_size, bool in_service)
{
    auto left = static_cast<QRX_U64>(passed.count());
    while (left > 0) {
        if (!workload && left > (kIomonWindows + 1) * kSecond) {
            busy.fill(0);  // all windows have been filled anew
            return;
        }
        const QRX_U64 step = std::min(left, kSecond - uptime % kSecond);
        if (workload) {
            work(uptime, step, sector_size, in_service);
        }
        uptime += step;
        left -= step;
        if (uptime % kSecond == 0) {
            busy.at(window_at(uptime)) = 0;
        }
    }
}

}  // namespace qrx::sim
