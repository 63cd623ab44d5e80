// `iomon_polling`.
#include "cli/Functions/simple/simple_iomon_polling.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <optional>

#include "cli/Functions/simple/iomon_options.h"
#include "cli/Functions/simple/iomon_report.h"
#include "cli/Functions/simple/ns_table.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_iomon_polling_sh[] = ":For polling IO monitor statistics";
const char simple_iomon_polling_help[] =
    "\n"
    "iomon [-a <show> | -i <NS id> |-h ]\n"
    "\n"
    "Options:\n"
    "    -a, --action <show>\n"
    "        show, show the statistics of all namespaces\n"
    "    -i, --id <NS id>\n"
    "        poll one namespace, 1 to 32\n"
    "    -t, --time <polling time(seconds)>\n"
    "    --outputfile <outputfile>\n"
    "    -h, --help\n"
    "Examples:\n"
    "    iomon_polling -i 1 -t 10\n"
    "    Show bandwidth and IOPS of namespace 1 ten times, once a second, and their averages\n"
    "\n";

namespace {

using qrx::iomon::Direction;

constexpr char kLetters[] = "a:i:t:\x01:h";
constexpr option kLong[] = {
    qrx::iomon::kActionRow, qrx::iomon::kIdRow,         {"time", required_argument, nullptr, 't'},
    qrx::kOutputRow,        qrx::iomon::kOutputFileRow, qrx::kHelpRow,
    qrx::kEndRow,
};

timespec monotonicNow()
{
    timespec time{};
    (void)clock_gettime(CLOCK_MONOTONIC, &time);
    return time;
}

void sleepUntilMonotonic(const timespec& time)
{
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &time, nullptr) == EINTR) {
    }
}

// The sector size of each namespace in bytes, by its id less 1; 0 where it is not known.
using SectorSizes = std::array<QRX_U32, kIomonNamespaces>;

SectorSizes readSectorSizes(QRX_U8 maxNs)
{
    SectorSizes ns_sector{};
    qrx::Response response;
    (void)qrx::readNsList(response);  // the answer tells whether it came
    if (!response.checkSign() || response.status() != 0) {
        return ns_sector;
    }
    for (std::size_t i = 0; i < maxNs; ++i) {
        const auto ns = response.record<NVME_NS_Info>(i * sizeof(NVME_NS_Info));
        if (ns && ns->NSID >= 1 && ns->NSID <= ns_sector.size()) {
            ns_sector[ns->NSID - 1U] = ns->SectorSize;
        }
    }
    return ns_sector;
}

// The counters of the polled namespace at one moment.
struct Sample {
    QRX_U32 tick = 0;
    Direction reads;
    Direction writes;
};

// What one direction did between two samples, or on the average.
struct Rate {
    double bandwidth = 0;  // MiB
    double iops = 0;       // thousands a second

    Rate& operator+=(const Rate& other)
    {
        bandwidth += other.bandwidth;
        iops += other.iops;
        return *this;
    }
    // Over no time at all there is nothing to divide.
    [[nodiscard]] Rate over(std::int32_t seconds) const
    {
        return seconds == 0 ? *this : Rate{bandwidth / seconds, iops / seconds};
    }
};

// I/O commands between two samples, in 32 bits.
int commandsBetween(const Direction& before, const Direction& now)
{
    return static_cast<std::int32_t>(static_cast<QRX_U32>(now.ios - before.ios));
}

Rate rateBetween(const Direction& before, const Direction& now, QRX_U32 sectorSize, double microseconds)
{
    constexpr unsigned kMebibyte = 20;
    const int commands = commandsBetween(before, now);
    if (commands == 0) {
        return {};
    }
    const auto sectors = static_cast<QRX_U32>(now.sectors - before.sectors);
    // A clock that stands still is no clock: it measures nothing.
    return {double(sectors * sectorSize >> kMebibyte), microseconds == 0 ? 0 : double{1000} * commands / microseconds};
}

// Shows what has happened between two samples, on standard output at once.
void showBlock(const Sample& before, const Sample& now, double microseconds, const Rate& reads, const Rate& writes)
{
    std::printf("Spend time(microseconds):%lf, R IO cnt=%d, W IO cnt=%d, total R(%d)/W(%d), tick R(%lld)/W(%lld)\n",
                microseconds, commandsBetween(before.reads, now.reads), commandsBetween(before.writes, now.writes),
                commandsBetween({}, now.reads), commandsBetween({}, now.writes),
                static_cast<long long>(now.reads.microseconds), static_cast<long long>(now.writes.microseconds));
    std::printf("Bandwith : R: %fM, W: %f M\n", reads.bandwidth, writes.bandwidth);
    std::printf("IOPS R: %fk, W: %fk\n\n", reads.iops, writes.iops);
    (void)std::fflush(stdout);  // who waits for it behind a pipe sees it in time, too
}

std::optional<Sample> takeSample(int id)
{
    NVME_IOmon_NS_Stat_Table table;
    if (qrx::iomon::fetchCounters(table) != 0) {
        return std::nullopt;
    }
    return Sample{table.cpu_tick, qrx::iomon::readsOf(table, id), qrx::iomon::writesOf(table, id)};
}

int poll(int id, std::int32_t seconds)
{
    const QRX_U8 maxNs = qrx::recordOf(gCurrentAdapter).MaxNS;
    if (maxNs == 0) {
        return qrx::refuse(0, "Get MaxNS from adapter info fail.\n");
    }
    const QRX_U32 sectorSize = readSectorSizes(maxNs)[static_cast<std::size_t>(id - 1)];
    std::optional<Sample> before;
    Rate reads;
    Rate writes;
    for (std::int32_t taken = 0;; ++taken) {
        const std::optional<Sample> now = takeSample(id);
        timespec next = qrx::pollingClock.now();
        if (now && before) {
            const QRX_U32 microseconds = (now->tick - before->tick) / kIomonTicksPerMicrosecond;
            const Rate read = rateBetween(before->reads, now->reads, sectorSize, microseconds);
            const Rate written = rateBetween(before->writes, now->writes, sectorSize, microseconds);
            showBlock(*before, *now, microseconds, read, written);
            reads += read;
            writes += written;
        }
        before = now ? now : before;
        if (taken == seconds) {
            break;
        }
        ++next.tv_sec;
        qrx::pollingClock.sleepUntil(next);
    }
    const Rate read = reads.over(seconds);
    const Rate written = writes.over(seconds);
    return qrx::refuse(0, "Bandwith I/O count AVG R:%fM/W:%fM, IOPS R:%fk/W:%fk\n", read.bandwidth, written.bandwidth,
                       read.iops, written.iops);
}

}  // namespace

qrx::PollingClock qrx::pollingClock{monotonicNow, sleepUntilMonotonic};

int doSIOmonPolling(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    qrx::iomon::Wish wish;
    const char* time = "";
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "ait1", 0, [&](int letter) {
            if (letter == 't') {
                time = scan.word();
                return true;
            }
            return qrx::iomon::readOption(letter, scan.word(), wish);
        })) {
        return *result;
    }
    if (scan.repeated("ait")) {
        return qrx::duplicateOption();
    }
    if (const auto result = qrx::requireOptions(scan, pCmdInfo, "it")) {
        return *result;
    }
    if (!qrx::iomon::checkFile(wish.output)) {
        return 0;
    }
    const std::optional<std::int32_t> seconds = qrx::readNumber(time);
    if (!seconds) {
        return qrx::refuse(0, "-t : time should be a number\n");
    }
    return scan.has('a') ? qrx::iomon::showAll() : poll(wish.id, *seconds);
}
