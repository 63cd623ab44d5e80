// What `iomon` and `iomon_polling` read of the controller's counters, and their page.
#include "cli/Functions/simple/iomon_report.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <span>
#include <string_view>

#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/report.h"

namespace qrx::iomon {

namespace {

constexpr QRX_U8 kSubCounters = 0x1F;
constexpr QRX_U8 kSubWindows = 0x20;

// Reads the table that a command leaves at the head of its answer. 0, or the device's status after `failure`.
template <class Table>
int fetch(QRX_U8 subOpcode, Table& table, const char* failure)
{
    const auto command = vendorCommand(kGroupAdapter, subOpcode).word(10, kWholePage);
    command.debug();
    std::array<QRX_U8, wire::kPageSize> page{};
    if (const int status = command.receive(page)) {
        return refuse(status, failure, static_cast<unsigned>(status));
    }
    table = *wire::read<Table>(page);
    return 0;
}

int fetchWindows(NVME_IOmon_Statistics_Table& table)
{
    return fetch(kSubWindows, table, "iomon command failed.(error code: 0x%02x)\n");
}

// Where the lines go: to `stream`, and to a file where there is one.
class Page {
public:
    explicit Page(OutputFile* file = nullptr) : file_(file) {}

    void line(const char* format, ...) const __attribute__((format(printf, 2, 3)))
    {
        std::array<char, 128> text{};  // longer than any line
        va_list arguments;
        va_start(arguments, format);
        (void)std::vsnprintf(text.data(), text.size(), format, arguments);
        va_end(arguments);
        std::fputs(text.data(), stream);
        if (file_ != nullptr) {
            std::array<QRX_U8, text.size()> bytes{};
            const std::string_view shown(text.data());
            std::copy(shown.begin(), shown.end(), bytes.begin());
            file_->write(std::span(bytes).first(shown.size()));  // that it failed is told at the end
        }
    }

private:
    OutputFile* file_;
};

using Wide = unsigned long long;

void showDirection(const Page& page, const char* name, const Direction& counters)
{
    page.line("        %s:\n", name);
    page.line("          I/O count           :%llu\n", Wide{counters.ios});
    page.line("          Sector count        :%llu\n", Wide{counters.sectors});
    page.line("          Success count       :%llu\n", Wide{counters.successes});
    page.line("          Fail count          :%llu\n", Wide{counters.failures});
    page.line("          I/O Ticks           :%llu(microseconds)\n", Wide{counters.microseconds});
    page.line("\n");
}

void showCounters(const Page& page, const NVME_IOmon_NS_Stat_Table& table, int id)
{
    const auto index = static_cast<std::size_t>(id - 1);
    showDirection(page, "Read", readsOf(table, id));
    showDirection(page, "Write", writesOf(table, id));
    page.line("        Inflight I/O          :%llu\n", Wide{table.inflight[index]});
    page.line("        Time in queue         :%llu(microseconds)\n\n", Wide{table.time_in_queue[index]});
}

// The window behind `cursor` in the ring is being filled, and has no figure yet.
void showWindows(const Page& page, const NVME_IOmon_Statistics_Table& table, int id)
{
    constexpr auto kCount = static_cast<unsigned>(kIomonWindows);
    const NVME_IOmon_Statistic_Idle_Time_Data& data = table.statistic_data[id - 1];
    const std::array<QRX_U32, kIomonWindows> idle{data.idle_time_slide_window1, data.idle_time_slide_window2,
                                                  data.idle_time_slide_window3, data.idle_time_slide_window4,
                                                  data.idle_time_slide_window5, data.idle_time_slide_window6,
                                                  data.idle_time_slide_window7, data.idle_time_slide_window8,
                                                  data.idle_time_slide_window9, data.idle_time_slide_window10};
    for (unsigned window = 1; window <= kCount; ++window) {
        if (table.cursor < kCount && (table.cursor + 1U) % kCount == window - 1) {
            page.line("        Busy time slide window  #%u:Calculating\n", window);
            continue;
        }
        const double busy = (double{kIomonWindow} - idle[window - 1]) / kIomonWindow * 100;
        page.line("        Busy time slide window %s%u:%.2lf%%\n", window < kCount ? " #" : "#", window, busy);
    }
}

void showRing(const Page& page, const NVME_IOmon_Statistics_Table& table)
{
    page.line("        Cursor      :%d\n", table.cursor);
    page.line("        Tag         :%d\n", table.tag);
}

constexpr char kWindowsHeading[] = "  NS Statistics Data:\n";

}  // namespace

Direction readsOf(const NVME_IOmon_NS_Stat_Table& table, int id)
{
    const auto i = static_cast<std::size_t>(id - 1);
    return {table.read[i].io_count, table.read[i].sector_count, table.success_count_read[i], table.fail_count_read[i],
            table.io_tick_r[i]};
}

Direction writesOf(const NVME_IOmon_NS_Stat_Table& table, int id)
{
    const auto i = static_cast<std::size_t>(id - 1);
    return {table.write[i].io_count, table.write[i].sector_count, table.success_count_write[i],
            table.fail_count_write[i], table.io_tick_w[i]};
}

int fetchCounters(NVME_IOmon_NS_Stat_Table& table)
{
    return fetch(kSubCounters, table, "iomon command, get NS raw failed.(error code: 0x%02x)\n");
}

int showAll()
{
    constexpr int kLast = kIomonNamespaces;
    const Page page;
    NVME_IOmon_NS_Stat_Table counters;
    const int failed = fetchCounters(counters);
    if (failed == 0) {
        page.line("  NS Raw Data:\n");
        for (int id = 1; id <= kLast; ++id) {
            page.line("      NS %d:\n", id);
            showCounters(page, counters, id);
        }
    }
    NVME_IOmon_Statistics_Table windows;
    if (const int status = fetchWindows(windows)) {
        return status;
    }
    page.line(kWindowsHeading);
    for (int id = 1; id <= kLast; ++id) {
        page.line("      NS %d:\n", id);
        showWindows(page, windows, id);
    }
    showRing(page, windows);
    return failed;
}

int showOne(PCommand_Info row, int id, OutputFile& output)
{
    const Page page(&output);
    NVME_IOmon_NS_Stat_Table counters;
    const int failed = fetchCounters(counters);
    if (failed == 0) {
        page.line("  NS %d Raw Data:\n", id);
        showCounters(page, counters, id);
    }
    NVME_IOmon_Statistics_Table windows;
    const int status = fetchWindows(windows);
    if (status == 0) {
        page.line(kWindowsHeading);
        showWindows(page, windows, id);
        showRing(page, windows);
    }
    return output.finish(row, status != 0 ? status : failed);
}

}  // namespace qrx::iomon
