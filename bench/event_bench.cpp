// The whole event ring of a controller, read, parsed and printed to memory, as `event -c 0` does it.
//
//     event_bench
//
// The last lines give the fastest run on a ring of lines as a firmware writes them, and on one of the shortest lines
// that there can be, and the memory that the parsed events hold.
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "api/src/device/common/DeviceManagement.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/wire/command.h"
#include "cli/Functions/simple/event_ring.h"
#include "cli/Functions/simple/simple_event.h"

namespace {

constexpr int kRounds = 50;
constexpr double kMostMicroseconds = 2000;
constexpr double kMostKib = 4096 + 8;  // 65,536 events of 64 bytes, and what the allocator adds

using Page = std::array<QRX_U8, qrx::wire::kPageSize>;
std::array<Page, kEventPages> ring;

// Fills the ring with lines, each aligned to 4 bytes; it has wrapped in the middle.
template <class Line>
unsigned fill(std::size_t alignment, Line line)
{
    unsigned count = 0;
    for (std::size_t index = 0; index < ring.size(); ++index) {
        Page& page = ring[index];
        page.fill(0);
        std::size_t at = kEventTextOffset;
        for (;; ++count) {
            const std::string text = line((index < ring.size() / 2 ? 500000U : 400000U) + count);
            if (at + text.size() > page.size()) {
                break;
            }
            std::copy(text.begin(), text.end(), page.begin() + static_cast<std::ptrdiff_t>(at));
            at += (text.size() + alignment - 1) / alignment * alignment;
        }
    }
    return count;
}

Device deviceOfRing()
{
    Device device{};
    device.sendPassthruAdmin = [](PDevice, void* command, void*, QRX_U16, void* out, QRX_U16 length, QRX_U32*) {
        _qrx_admin_command_format record;
        std::memcpy(&record, command, sizeof(record));
        std::memcpy(out, ring[record.CDW[13] / qrx::wire::kPageSize % ring.size()].data(), length);
        return QRX_U32{0};
    };
    device.getNVMEDevice = [](PDevice self) { return self; };
    device.closeHandle = [](PDevice) {};
    return device;
}

// The fastest of several runs, in microseconds; `letters` gets what one prints.
double fastest(std::size_t& letters)
{
    double best = std::numeric_limits<double>::max();
    for (int round = 0; round < kRounds; ++round) {
        char* memory = nullptr;
        const auto begin = std::chrono::steady_clock::now();
        stream = open_memstream(&memory, &letters);
        (void)getPageEventSA(0);
        (void)std::fclose(stream);
        const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - begin;
        std::free(memory);
        best = std::min(best, time.count());
    }
    stream = stdout;
    return best;
}

double heldKib()
{
    const auto held = [] {
        const struct mallinfo2 info = mallinfo2();
        return info.uordblks + info.hblkhd;
    };
    const std::size_t before = held();
    qrx::EventRing events;
    for (Page page : ring) {
        events.addPage(page);
    }
    return static_cast<double>(held() - before) / 1024;
}

}  // namespace

int main()
{
    Device device = deviceOfRing();
    _DeviceManagement& table = *GetDeviceManagementInstance();
    table.m_devs[0] = &device;
    table.m_count = 1;
    gCurrentAdapter = 0;

    FILE* const report = fdopen(dup(fileno(stdout)), "w");
    if (report == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr) {
        return 1;
    }
    std::size_t letters = 0;
    const unsigned usual = fill(4, [](unsigned number) {
        return "[SEQ]" + std::to_string(number) + "[TIME]" + std::to_string(1764547200 + number) +
               "[MSG]VD0_REBUILD_PROGRESS_40%_NOTIFY\n";
    });
    const double time = fastest(letters);
    std::fprintf(report, "usual lines     %6u events %8zu letters %8.0f us (at most %.0f)\n", usual, letters, time,
                 kMostMicroseconds);
    const unsigned dense = fill(1, [](unsigned) { return std::string("[SEQ][TIME][MSG]\n"); });
    const double denseTime = fastest(letters);
    std::fprintf(report, "shortest lines  %6u events %8zu letters %8.0f us (at most %.0f)\n", dense, letters, denseTime,
                 kMostMicroseconds);
    const double kib = heldKib();
    std::fprintf(report, "held memory     %8.0f KiB (at most %.0f)\n", kib, kMostKib);
    std::fclose(report);
    return std::max(time, denseTime) <= kMostMicroseconds && kib <= kMostKib ? 0 : 1;
}
