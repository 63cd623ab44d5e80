// Fuzzes the search for a controller's slot in the SMBIOS tables: any entry point, and any table behind it.
//
// The input: a byte of choices, a byte that says how many bytes of the entry point there are, those, then the table.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

#include "api/src/device/linux/SystemBIOS.h"

namespace {

constexpr std::size_t kEntryPointMost = 32;
constexpr std::size_t kEntryPoint64 = 24;  // the least that the caller of the decoders asks for
constexpr std::size_t kEntryPoint32 = 31;
constexpr int kBus = 3;

// A file in memory that holds `bytes`; its path stays the same.
std::string fileWith(std::span<const std::uint8_t> bytes)
{
    static const int file = ::memfd_create("table", 0);
    const bool written = ::ftruncate(file, 0) == 0 &&
                         ::pwrite(file, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size());
    assert(written);
    return "/proc/self/fd/" + std::to_string(file);
}

// Makes the first sum of a well-meant entry point right, so that the walk behind it is reached.
void repairSum(std::vector<u8>& entry, std::size_t from, std::size_t length, std::size_t sum_at)
{
    if (length > entry.size() - from || sum_at >= entry.size()) {
        return;
    }
    u8 sum = 0;
    entry[sum_at] = 0;
    for (std::size_t i = from; i < from + length; ++i) {
        sum = static_cast<u8>(sum + entry[i]);
    }
    entry[sum_at] = static_cast<u8>(-sum);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // What the decoders say goes nowhere; the fuzzer and the sanitizers keep the descriptor.
    static const bool quiet = (stderr = std::fopen("/dev/null", "w")) != nullptr;
    if (!quiet || size < 2) {
        return 0;
    }
    const std::uint8_t choice = data[0];
    std::span<const std::uint8_t> rest(data + 2, size - 2);
    const std::size_t length = std::min<std::size_t>({data[1], kEntryPointMost, rest.size()});
    std::vector<u8> entry(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(length));
    rest = rest.subspan(length);

    int slot = -1;
    if ((choice & 1) != 0) {  // the table alone, in memory of just its size
        std::vector<u8> table(rest.begin(), rest.end());
        dmi_table_decode(table.data(), static_cast<u32>(table.size()), static_cast<u16>((choice & 4) != 0 ? 2 : 0),
                         0x0300, (choice & 2) != 0 ? kStopAtEndOfTable : 0, kBus, &slot);
    } else if ((choice & 2) != 0 && length >= kEntryPoint64) {
        if ((choice & 4) != 0) {
            repairSum(entry, 0, entry[6], 5);
        }
        smbios3_decode(entry.data(), fileWith(rest).c_str(), kTableFileStartsAtTable, length, kBus, &slot);
    } else if (length >= kEntryPoint32) {
        if ((choice & 4) != 0) {
            repairSum(entry, 16, 15, 21);
            repairSum(entry, 0, entry[5], 4);
        }
        smbios_decode(entry.data(), fileWith(rest).c_str(), kTableFileStartsAtTable, length, kBus, &slot);
    }
    assert(slot >= -1 && slot <= 255);
    return 0;
}
