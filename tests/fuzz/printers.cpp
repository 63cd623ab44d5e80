// Fuzzes what commands print of the records that a controller sends: it answers every command, with the right
// signature, and with whatever bytes it likes behind it.
//
// The input: a byte that chooses the command among those of the torture, a byte of choices, the controller's own record
// as start-up would have read it, and the payload of every answer, which goes round.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <span>

#include <torture_rows.h>  // made by the build
#include "api/src/interface/globals.h"
#include "api/src/interface/wire/envelope.h"
#include "tests/fuzz/controller.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace qrx::fuzz;
    constexpr std::uint8_t kUnsigned = 2;    // no envelope: standard NVMe data
    constexpr unsigned kMostAnswers = 2000;  // then the driver fails: a log may seem to have no end
    if (size < 2 + sizeof(NVME_Adapter_Info)) {
        return 0;
    }
    const char* line = kTortureRows[data[0] % std::size(kTortureRows)];
    const std::uint8_t choice = data[1];
    NVME_Adapter_Info info;
    std::memcpy(&info, data + 2, sizeof(info));
    limitPorts(info.PortCount);
    const std::span<const std::uint8_t> payload(data + 2 + sizeof(info), size - 2 - sizeof(info));

    std::size_t at = 0;
    unsigned answered = 0;
    const World world(
        [&](std::span<std::uint8_t> out) {
            if (++answered > kMostAnswers) {
                return ~0U;
            }
            const bool sign = (choice & kUnsigned) == 0 && out.size() >= kReceiveDataOffset;
            if (sign) {
                std::memset(out.data(), 0, kReceiveDataOffset);
                std::memcpy(out.data(), kFrameSign, sizeof(kFrameSign));
            }
            at = goRound(out.subspan(sign ? kReceiveDataOffset : 0), payload, at);
            return 0U;
        },
        payload);
    dbg_enable = (choice & 1) != 0;
    gSpecificAdapterFlag = (choice & 4) != 0;
    g_pAdInfos = &info;
    World::run(line);
    g_pAdInfos = nullptr;
    return 0;
}
