// What the tool itself costs on the road of one device command.
//
//     device_bench                          on a descriptor whose driver refuses the ioctl
//     device_bench --device=/dev/nvme0      on a controller (or QRX_BENCH_DEVICE=/dev/nvme0)
//
// Two measurements on the same descriptor: the bare ioctl with a buffer that is page-aligned already, and the whole
// road of a handler's command with a page of answer. The last lines give the fastest of each and the difference,
// which is the tool's: at most 1.5 microseconds.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <string_view>

#include "api/src/device/common/DeviceManagement.h"
#include "api/src/device/common/PairCMDDevice.h"
#include "api/src/device/linux/NVMEDevice.h"
#include "api/src/interface/agent.h"
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/nvme_ioctl.h"

namespace {

using qrx::wire::kPageSize;

constexpr double kLimit = 1500;  // nanoseconds
constexpr int kRepetitions = 15;

int descriptor = -1;
bool answers = false;  // there is a controller behind the descriptor
alignas(kPageSize) std::array<QRX_U8, kPageSize> page;

// The adapter read: 4096 bytes from the controller.
_qrx_admin_command_format adapterRead()
{
    _qrx_admin_command_format record{};
    record.CDW[0] = kVendorRead;
    record.CDW[12] = kGroupAdapter;
    record.cdw_flag = 0x5001;
    return record;
}

void bareIoctl(benchmark::State& state)
{
    nvme_admin_cmd command{};
    const auto record = adapterRead();
    std::memcpy(&command, record.CDW, sizeof(command));
    command.addr = reinterpret_cast<std::uintptr_t>(page.data());
    command.data_len = kPageSize;
    for ([[maybe_unused]] auto round : state) {
        benchmark::DoNotOptimize(ioctl(descriptor, NVME_IOCTL_ADMIN_CMD, &command));
    }
}

// A refused command would print its status text each time, so without a controller the silent form is measured.
void deviceCommand(benchmark::State& state)
{
    auto record = adapterRead();
    for ([[maybe_unused]] auto round : state) {
        benchmark::DoNotOptimize(
            answers ? QRX_Adapter_PassthruAdmin(0, &record, nullptr, 0, page.data(), kPageSize, nullptr)
                    : QRX_Adapter_PassthruAdmin_no_status_code(0, &record, nullptr, 0, page.data(), kPageSize));
    }
}

BENCHMARK(bareIoctl)->Repetitions(kRepetitions)->MinTime(0.1)->UseRealTime();
BENCHMARK(deviceCommand)->Repetitions(kRepetitions)->MinTime(0.1)->UseRealTime();

// Shows the runs as usual and keeps the fastest of each.
class Fastest : public benchmark::ConsoleReporter {
public:
    Fastest() : ConsoleReporter(OO_Defaults) {}

    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                const double time = run.GetAdjustedRealTime();
                const auto [entry, first] = fastest_.emplace(run.run_name.function_name, time);
                entry->second = first ? time : std::min(entry->second, time);
            }
        }
    }
    [[nodiscard]] double of(const std::string& name) const { return fastest_.at(name); }

private:
    std::map<std::string, double> fastest_;
};

std::string deviceFrom(int& argc, char** argv)
{
    constexpr std::string_view kOption = "--device=";
    for (int i = 1; i < argc; ++i) {
        const std::string_view word(argv[i]);
        if (word.substr(0, kOption.size()) == kOption) {
            std::rotate(argv + i, argv + i + 1, argv + argc);
            --argc;
            return std::string(word.substr(kOption.size()));
        }
    }
    const char* named = std::getenv("QRX_BENCH_DEVICE");
    return named != nullptr ? named : "";
}

}  // namespace

int main(int argc, char** argv)
{
    const std::string device = deviceFrom(argc, argv);
    benchmark::Initialize(&argc, argv);
    descriptor = open(device.empty() ? "/dev/null" : device.c_str(), O_RDWR | O_CLOEXEC);
    if (descriptor < 0) {
        std::perror(device.c_str());
        return 1;
    }
    answers = !device.empty();

    PDeviceManagement table = GetDeviceManagementInstance();
    table->m_devs[0] = CreatePairCMDDeviceInstance(CreateSimpleNVMEDeviceInstance(descriptor));
    table->m_count = 1;

    Fastest reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    table->Final(table);

    const double bare = reporter.of("bareIoctl");
    const double whole = reporter.of("deviceCommand");
    std::printf("bare ioctl      %8.0f ns\ndevice command  %8.0f ns\nthe tool's own  %8.0f ns (limit %.0f ns)\n", bare,
                whole, whole - bare, kLimit);
    return whole - bare <= kLimit ? 0 : 1;
}
