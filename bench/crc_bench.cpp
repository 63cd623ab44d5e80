// The sum and the CRC of a firmware image of 8 MiB, beside zlib's crc32 of the same bytes.
//
//     crc_bench
//
// The last lines give the fastest run of each and how many times the speed of zlib's crc32 both of ours together have:
// at least 1.
#include <zlib.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <vector>

#include "api/src/function/flash/common/image.h"

namespace {

constexpr std::size_t kSize = 8U << 20U;
constexpr int kRounds = 25;

// The fastest of several runs, in microseconds.
template <class Work>
double fastest(Work work)
{
    double best = std::numeric_limits<double>::max();
    for (int round = 0; round < kRounds; ++round) {
        const auto begin = std::chrono::steady_clock::now();
        volatile std::uint32_t result = work();
        (void)result;
        const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - begin;
        best = std::min(best, time.count());
    }
    return best;
}

}  // namespace

int main()
{
    std::vector<QRX_U8> image(kSize);
    std::uint32_t state = 1;
    for (QRX_U8& byte : image) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<QRX_U8>(state >> 24U);
    }
    constexpr auto kLength = static_cast<QRX_U32>(kSize);
    const auto theirs = static_cast<std::uint32_t>(crc32(0UL, image.data(), uInt{kLength}));
    if (__builtin_bswap32(crcMake(image.data(), kLength)) != ~theirs) {
        std::puts("crcMake and zlib's crc32 differ");
        return 1;
    }
    const double sum = fastest([&] { return checksumResult(image.data(), kLength); });
    const double crc = fastest([&] { return crcMake(image.data(), kLength); });
    const double zlib = fastest([&] { return static_cast<std::uint32_t>(crc32(0UL, image.data(), uInt{kLength})); });
    const double ratio = zlib / (sum + crc);
    std::printf("sum           %8.0f us\nCRC           %8.0f us\nzlib's crc32  %8.0f us\n", sum, crc, zlib);
    std::printf("sum and CRC   %8.2f times the speed of zlib's crc32 (at least 1)\n", ratio);
    return ratio >= 1 ? 0 : 1;
}
