// What the controller counts of its I/O, the limits it keeps, the opcodes it lets hosts use, and the error registers of
// its drives.
#include <algorithm>
#include <array>

#include "api/src/interface/wire/cse.h"
#include "api/src/interface/wire/iomon.h"
#include "sim/firmware/aer.h"
#include "sim/firmware/controller.h"
#include "sim/firmware/opcodes.h"
#include "sim/firmware/reply.h"

namespace qrx::sim {

namespace {

// The namespaces that the tables have room for.
bool is_counted(const Namespace& ns)
{
    return ns.nsid >= 1 && ns.nsid <= kIomonNamespaces;
}

// The time of the windows, in their order.
NVME_IOmon_Statistic_Idle_Time_Data idle_times(const std::array<QRX_U32, kIomonWindows>& busy)
{
    const auto idle = [&](std::size_t window) { return kIomonWindow - busy.at(window); };
    return {idle(0), idle(1), idle(2), idle(3), idle(4), idle(5), idle(6), idle(7), idle(8), idle(9)};
}

}  // namespace

void Controller::io_ended(const nvme_admin_cmd& command, const Completion& completion)
{
    Namespace* const ns = find_namespace(*this, command.nsid);
    const bool marks = command.opcode == nvm::kWriteZeroes || command.opcode == nvm::kWriteUncorrectable;
    const bool write = command.opcode == nvm::kWrite || marks;
    if (ns == nullptr || !(write || command.opcode == nvm::kRead || command.opcode == nvm::kCompare)) {
        return;
    }
    const QRX_U64 sectors = marks ? 0 : (command.cdw12 & 0xFFFF) + 1;
    ns->io.count(write, completion.status == status::kSuccess, sectors, ns->sector_size, clock.uptime);
}

void Controller::advance_io(Clock::Duration passed)
{
    const QRX_U64 before = clock.uptime - static_cast<QRX_U64>(passed.count());  // the clock is there already
    for (Namespace& ns : namespaces) {
        const QRX_U64 reads = ns.io.reads.successes;
        const QRX_U64 writes = ns.io.writes.successes;
        const QRX_U64 bytes = ns.io.workload ? QRX_U64{ns.io.workload->blocks} * ns.sector_size : 0;
        ns.io.advance(before, passed, ns.sector_size, in_service(ns));
        ns.count_reads(ns.io.reads.successes - reads, bytes);
        ns.count_writes(ns.io.writes.successes - writes, bytes);
        health.count_reads(ns.io.reads.successes - reads, bytes);
        health.count_writes(ns.io.writes.successes - writes, bytes);
    }
}

std::optional<Failure> Controller::start_workload(QRX_U32 nsid, const Workload& workload)
{
    Namespace* const ns = find_namespace(*this, nsid);
    if (ns == nullptr || !ns->valid || !ns->active) {
        return Failure{"no namespace " + std::to_string(nsid) + " is attached"};
    }
    if (workload.blocks > ns->sectors) {
        return Failure{"namespace " + std::to_string(nsid) + " has but " + std::to_string(ns->sectors) + " blocks"};
    }
    ns->io.workload = workload;
    return std::nullopt;
}

Completion Controller::read_io_counters(std::span<QRX_U8> data) const
{
    NVME_IOmon_NS_Stat_Table table{};
    for (const Namespace& ns : namespaces) {
        if (!is_counted(ns)) {
            continue;
        }
        const auto i = static_cast<std::size_t>(ns.nsid - 1);
        const IoStatistics& io = ns.io;
        table.read[i] = {io.reads.commands, io.reads.sectors};
        table.write[i] = {io.writes.commands, io.writes.sectors};
        table.fail_count_read[i] = io.reads.failures;
        table.fail_count_write[i] = io.writes.failures;
        table.success_count_read[i] = io.reads.successes;
        table.success_count_write[i] = io.writes.successes;
        table.io_tick_r[i] = io.reads.microseconds;
        table.io_tick_w[i] = io.writes.microseconds;
        table.inflight[i] = io.workload && in_service(ns) ? io.workload->inflight(ns.sector_size) : QRX_U16{0};
        table.time_in_queue[i] = io.reads.microseconds + io.writes.microseconds;
    }
    table.cpu_tick = static_cast<QRX_U32>(clock.uptime * 1000 * kIomonTicksPerMicrosecond);
    return answer_with(data, table);
}

Completion Controller::read_idle_windows(std::span<QRX_U8> data) const
{
    NVME_IOmon_Statistics_Table table{};
    for (auto& idle : table.statistic_data) {
        idle = idle_times({});
    }
    for (const Namespace& ns : namespaces) {
        if (is_counted(ns)) {
            table.statistic_data[ns.nsid - 1] = idle_times(ns.io.busy);
        }
    }
    const std::size_t filling = IoStatistics::window_at(clock.uptime);
    table.cursor = static_cast<QRX_U8>((filling + kIomonWindows - 1) % kIomonWindows);
    table.tag = static_cast<QRX_U8>(clock.uptime / 1000 / kIomonWindows);
    return answer_with(data, table);
}

Completion Controller::read_rate_limits(QRX_U16 host, std::span<QRX_U8> data) const
{
    return host < kHostFunctions ? answer_with(data, rate_limits.at(host).record())
                                 : complete(Verdict::kInvalidParameter);
}

Verdict Controller::set_rate_limits(QRX_U16 host, QRX_U32 iops, QRX_U32 bandwidth)
{
    const RateLimits wanted{static_cast<QRX_U16>(iops), static_cast<QRX_U16>(iops >> 16),
                            static_cast<QRX_U16>(bandwidth), static_cast<QRX_U16>(bandwidth >> 16)};
    if (host >= kHostFunctions || !wanted.valid()) {
        return Verdict::kInvalidParameter;
    }
    rate_limits.at(host) = wanted;
    tell(Event::kAdapter, 0,
         std::string("has the rate limits of host function ") + std::to_string(host) +
             (wanted.none() ? " lifted" : " set"));
    return Verdict::kGood;
}

Completion Controller::permit_opcodes(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    if (is_virtual()) {
        return complete(status::kOperationDenied);
    }
    const QRX_U64 length = (QRX_U64{command.cdw10} + 1) * sizeof(QRX_U32);
    const auto request = wire::read<NVME_SetCmd_Support>(data);
    if (length != data.size() || !request) {
        return complete(status::kInvalidField);
    }
    const std::span all(request->opcode);
    const auto wanted = all.first(std::min<std::size_t>(request->total_cnt, all.size()));
    const bool known = std::all_of(wanted.begin(), wanted.end(), [](QRX_U16 opcode) {
        return std::find(kVendorOpcodes.begin(), kVendorOpcodes.end(), opcode) != kVendorOpcodes.end();
    });
    if (request->total_cnt == 0 || request->total_cnt > all.size() || !known ||
        (command.cdw14 & ~(kCseOn | kCseVirtualFunctions)) != 0) {
        return complete(Verdict::kInvalidParameter);
    }
    const bool open = (command.cdw14 & kCseOn) != 0;
    const bool virtuals = (command.cdw14 & kCseVirtualFunctions) != 0;
    for (const QRX_U16 opcode : wanted) {
        gate.set(virtuals, static_cast<QRX_U8>(opcode), open);
    }
    tell(Event::kAdapter, 0,
         std::string("has opcodes ") + (open ? "opened" : "closed") + " for " + (virtuals ? "virtual" : "physical") +
             " functions");
    return complete(Verdict::kGood);
}

Completion Controller::read_pd_aer(QRX_U32 id, std::span<QRX_U8> data) const
{
    const Drive* const drive = reachable_drive(id);
    if (drive == nullptr) {
        return reply(data, Verdict::kInvalidPd);
    }
    const ConfigSpace& space = drive->config_space;
    if (drive->failed || space.answer != ConfigSpace::kData) {
        return reply(data, Verdict::kFailed);
    }
    return space.aer ? reply_with(data, aer_record(space)) : reply(data, Verdict::kNotSupported);
}

std::optional<Failure> Controller::put_pcie_error(QRX_U32 id, std::string_view error)
{
    Drive* const drive = drive_of(id);
    if (drive == nullptr) {
        return Failure{"there is no PD " + std::to_string(id)};
    }
    if (!put_aer_error(drive->config_space, error)) {
        return Failure{"'" + std::string(error) + "' is no error; errors are " + aer_errors()};
    }
    return std::nullopt;
}

}  // namespace qrx::sim
