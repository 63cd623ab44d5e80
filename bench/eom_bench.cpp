// What the eye scan costs beside its register accesses: the scan, and a loop that issues the same accesses bare.
//
//     qrx_sim -- eom_bench
//
// Both run on /dev/nvme0, by turns; the fastest of each counts. The last line gives the scan's time as a multiple of
// the loop's: at most 1.15.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <vector>

#include "api/src/device/common/DeviceManagement.h"
#include "api/src/device/common/PairCMDDevice.h"
#include "api/src/device/linux/NVMEDevice.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/nvme_ioctl.h"
#include "api/src/interface/wire/pcie_phy.h"
#include "cli/Functions/simple/eom_scan.h"

namespace {

constexpr int kRounds = 5;
constexpr double kLimit = 1.15;
constexpr std::size_t kLeast = 100000;  // accesses of a map

PDevice real = nullptr;
std::vector<nvme_admin_cmd> accesses;

QRX_U32 record(PDevice /*_this*/, void* command, void* in, QRX_U16 in_length, void* out, QRX_U16 out_length,
               QRX_U32* params)
{
    nvme_admin_cmd copy;
    std::memcpy(&copy, command, sizeof(copy));
    copy.data_len = out_length;
    accesses.push_back(copy);
    return real->sendPassthruAdmin(real, command, in, in_length, out, out_length, params);
}

void scan()
{
    nCurrentPhase = 0;
    GetEOM();
}

bool loop(int fd)
{
    alignas(qrx::wire::kPageSize) static std::array<QRX_U8, qrx::wire::kPageSize> page;
    for (nvme_admin_cmd command : accesses) {
        command.addr = reinterpret_cast<std::uintptr_t>(page.data());
        if (ioctl(fd, NVME_IOCTL_ADMIN_CMD, &command) != 0) {
            return false;
        }
    }
    return true;
}

template <class Work>
void measure(double& best, Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - start;
    best = std::min(best, passed.count());
}

}  // namespace

int main()
{
    const int fd = open("/dev/nvme0", O_RDWR | O_CLOEXEC);
    real = CreateSimpleNVMEDeviceInstance(fd);
    stream = std::fopen("/dev/null", "w");
    if (fd < 0 || real == nullptr || stream == nullptr) {
        std::perror("eom_bench: /dev/nvme0");
        return 1;
    }
    _Device recorder{};
    recorder.sendPassthruAdmin = record;
    recorder.getNVMEDevice = [](PDevice device) { return device; };
    PDeviceManagement table = GetDeviceManagementInstance();
    table->m_count = 1;
    id = 0;
    g_base_addr = kPciePhyBase;
    table->m_devs[0] = &recorder;
    scan();
    table->m_devs[0] = CreatePairCMDDeviceInstance(real);

    bool good = eyeCenter != 0 && accesses.size() >= kLeast;
    double scanned = std::numeric_limits<double>::max();
    double bare = scanned;
    for (int round = 0; good && round < kRounds; ++round) {
        measure(bare, [&] { good = loop(fd); });
        measure(scanned, scan);
    }
    if (!good) {
        std::fprintf(stderr, "eom_bench: no eye, or an access failed\n");
        return 1;
    }
    std::printf("accesses           %10zu\n", accesses.size());
    std::printf("scan               %10.1f ms\n", scanned);
    std::printf("the same accesses  %10.1f ms\n", bare);
    std::printf("ratio              %10.3f (at most %.2f)\n", scanned / bare, kLimit);
    return scanned / bare <= kLimit ? 0 : 1;
}
