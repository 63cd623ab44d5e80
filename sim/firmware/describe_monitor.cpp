// The text form of I/O counters and workloads, of rate limits, and of closed opcodes.
#include "sim/firmware/describe.h"

namespace qrx::sim {

namespace {

template <class Io>
void describe(Io& io, IoCounters& counters)
{
    io.number("commands", counters.commands, 0, kAny64);
    io.number("sectors", counters.sectors, 0, kAny64);
    io.number("successes", counters.successes, 0, kAny64);
    io.number("failures", counters.failures, 0, kAny16);
    io.number("microseconds", counters.microseconds, 0, kAny64);
}

template <class Io>
void describe(Io& io, Workload& load)
{
    io.number("reads", load.reads, 0, Workload::kMostCommands);
    io.number("writes", load.writes, 0, Workload::kMostCommands);
    io.number("blocks", load.blocks, 1, Workload::kMostBlocks);
    io.number("duration_ms", load.duration, 1, Workload::kMostSeconds * 1000);
    io.number("elapsed_ms", load.elapsed, 0, Workload::kMostSeconds * 1000);
    io.check(load.elapsed < load.duration, "elapsed_ms", "is not below 'duration_ms'");
}

struct LimitsOfHost {
    QRX_U16 host = 0;
    RateLimits limits;
};

template <class Io>
void describe(Io& io, LimitsOfHost& entry)
{
    io.number("host", entry.host, 0, Controller::kHostFunctions - 1);
    io.number("iops_read", entry.limits.iops_read, 0, kAny16);
    io.number("iops_write", entry.limits.iops_write, 0, kAny16);
    io.number("bandwidth_read", entry.limits.bandwidth_read, 0, kAny16);
    io.number("bandwidth_write", entry.limits.bandwidth_write, 0, kAny16);
    io.check(entry.limits.valid(), "host",
             "has limits that are too low; allowed are 0, IOPS from 5 and bandwidths from 50");
}

template <class Io>
void describe_opcodes(Io& io, const char* key, std::vector<QRX_U8>& opcodes)
{
    io.numbers(key, opcodes, kAny8 + 1, kAny8);
    io.check(OpcodeGate::in_order(opcodes), key, "must name opcodes in order and each once");
}

}  // namespace

template <class Io>
void describe(Io& io, IoStatistics& statistics)
{
    io.object("reads", [&](auto& inner) { describe(inner, statistics.reads); });
    io.object("writes", [&](auto& inner) { describe(inner, statistics.writes); });
    std::vector<QRX_U32> busy(statistics.busy.begin(), statistics.busy.end());
    io.numbers("busy_us", busy, statistics.busy.size(), kIomonWindow);
    busy.resize(statistics.busy.size());
    std::copy(busy.begin(), busy.end(), statistics.busy.begin());
    io.optional("workload", statistics.workload, [](auto& inner, Workload& load) { describe(inner, load); });
}

template <class Io>
void describe_rate_limits(Io& io, Controller& controller)
{
    std::vector<LimitsOfHost> entries;
    for (QRX_U16 host = 0; host < Controller::kHostFunctions; ++host) {
        if (const RateLimits& limits = controller.rate_limits.at(host); !limits.none()) {
            entries.push_back({host, limits});
        }
    }
    io.list("rate_limits", entries, Controller::kHostFunctions,
            [](auto& inner, LimitsOfHost& entry) { describe(inner, entry); });
    for (const LimitsOfHost& entry : entries) {
        controller.rate_limits.at(entry.host) = entry.limits;
    }
}

template <class Io>
void describe(Io& io, OpcodeGate& gate)
{
    describe_opcodes(io, "physical", gate.physical);
    describe_opcodes(io, "virtual", gate.virtuals);
}

template void describe(JsonReader&, IoStatistics&);
template void describe(JsonWriter&, IoStatistics&);
template void describe_rate_limits(JsonReader&, Controller&);
template void describe_rate_limits(JsonWriter&, Controller&);
template void describe(JsonReader&, OpcodeGate&);
template void describe(JsonWriter&, OpcodeGate&);

}  // namespace qrx::sim
