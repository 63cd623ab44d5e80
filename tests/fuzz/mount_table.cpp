// Fuzzes the reader of the mount table: what it names is text out of the table, short enough for a path's field.
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "api/src/function/osvolume/osvolume.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    std::string table(reinterpret_cast<const char*>(data), size);
    FILE* file = ::fmemopen(table.data(), table.size(), "r");
    assert(file != nullptr);
    const std::vector<std::string> devices = qrx::bootDevices(file);
    std::fclose(file);
    for (const std::string& device : devices) {
        assert(!device.empty() || table.find('p') != std::string::npos);
        assert(device.size() <= 1023);
        assert(table.find(device) != std::string::npos);
    }
    return 0;
}
