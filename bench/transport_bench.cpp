// How many 4-KiB commands a second reach the simulated controller: through seccomp user notification, through the
// preload library, and with no road at all (the bare model).
//
//     cmake -B build/bench -DCMAKE_BUILD_TYPE=Release -DQRX_BENCH=ON && cmake --build build/bench --target
//     transport_bench build/bench/bin/transport_bench [commands]
//
// On a quiet machine; the best of three runs counts. Wanted are 80,000 through seccomp and 60,000 through preload.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "sim/firmware/factory.h"
#include "sim/launcher/program.h"

namespace {

using namespace qrx::sim;

constexpr int kRuns = 3;
constexpr std::string_view kClient = "--client";

nvme_admin_cmd identify_controller()
{
    nvme_admin_cmd command{};
    command.opcode = 6;
    command.cdw10 = 1;
    return command;
}

// Calls `send` so many times, three times over. Prints the best rate; false when a command fails.
template <class Send>
bool measure(const char* name, long commands, Send send)
{
    double best = 0;
    for (int run = 0; run < kRuns; ++run) {
        const auto start = std::chrono::steady_clock::now();
        for (long index = 0; index < commands; ++index) {
            if (!send()) {
                std::printf("%-26s a command failed\n", name);
                return false;
            }
        }
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
        best = std::max(best, static_cast<double>(commands) / passed.count());
    }
    std::printf("%-26s %10.0f commands a second, %6.2f us each\n", name, best, 1e6 / best);
    return true;
}

int run_client(const char* name, long commands)
{
    const int fd = open("/dev/nvme0", O_RDWR | O_CLOEXEC);
    const std::unique_ptr<void, decltype(&std::free)> page(std::aligned_alloc(4096, 4096), std::free);
    return measure(name, commands,
                   [&] {
                       nvme_admin_cmd command = identify_controller();
                       command.addr = reinterpret_cast<std::uintptr_t>(page.get());
                       command.data_len = 4096;
                       return ioctl(fd, NVME_IOCTL_ADMIN_CMD, &command) == 0;
                   })
               ? 0
               : 1;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 4 && argv[1] == kClient) {
        return run_client(argv[2], std::atol(argv[3]));
    }
    const std::string commands = argc > 1 ? argv[1] : "200000";
    Result<std::unique_ptr<Machine>> machine = make_scenario("raid");
    if (!machine || std::atol(commands.c_str()) <= 0) {
        std::fprintf(stderr, "usage: transport_bench [commands]\n");
        return 1;
    }
    int failures = 0;
    constexpr std::array<std::pair<Transport, const char*>, 2> kWays = {
        {{Transport::seccomp, "seccomp user notification"}, {Transport::preload, "preload library"}}};
    for (const auto& [transport, name] : kWays) {
        ProgramOptions options;
        options.transport = transport;
        options.command = {"/proc/self/exe", std::string(kClient), name, commands};
        failures += run_program(**machine, options) == 0 ? 0 : 1;
    }
    std::array<QRX_U8, 4096> data{};
    nvme_admin_cmd command = identify_controller();
    command.data_len = data.size();
    failures += measure("bare model", std::atol(commands.c_str()),
                        [&] {
                            return (*machine)->admin({0, 0}, command, data).status == 0;
                        })
                    ? 0
                    : 1;
    return failures == 0 ? 0 : 1;
}
