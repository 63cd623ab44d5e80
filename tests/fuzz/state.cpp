// Fuzzes the reader of scenario and state files: it refuses a text and says where, or reads a machine that is written
// as a text which reads as the same machine.
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "sim/firmware/factory.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto machine = qrx::sim::load_machine(text, "fuzz.json");
    if (!machine) {
        assert(machine.error().starts_with("fuzz.json:"));
        return 0;
    }
    const std::string written = qrx::sim::save_machine(**machine);
    const auto again = qrx::sim::load_machine(written, "written.json");
    assert(again);
    assert((*again)->parts() == (*machine)->parts());
    assert(qrx::sim::save_machine(**again) == written);
    return 0;
}
