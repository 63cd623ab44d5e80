// Fuzzes the reader of one line of the device-tree scan: the location stays inside its field and ends there.
#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string>

#include "api/src/device/linux/LinuxDeviceManagement.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string line(reinterpret_cast<const char*>(data), size);
    BusDevFun record{};
    parseBusDevFun(&record, line.c_str());
    assert(std::find(std::begin(record.bus_dev_fun), std::end(record.bus_dev_fun), '\0') !=
           std::end(record.bus_dev_fun));
    assert(line.find(record.bus_dev_fun) != std::string::npos);
    assert(record.id <= static_cast<QRX_U32>(std::numeric_limits<std::int32_t>::max()));
    return 0;
}
