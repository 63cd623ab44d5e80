// Fuzzes the simulated controller's management endpoint: whatever message it gets, it answers once or refuses, and its
// stores keep their sizes.
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "sim/firmware/factory.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using qrx::sim::Machine;
    static const Machine::Parts parts = (*qrx::sim::make_scenario("raid"))->parts();
    if (size < 5) {
        return 0;
    }
    Machine::Parts mine = parts;
    mine.controllers.front().settings.vpd_in_spi = (data[0] & 1) != 0;
    Machine machine(std::move(mine));
    nvme_admin_cmd command{};
    command.opcode = 0x1D;
    std::memcpy(&command.cdw11, data + 1, 4);
    std::vector<QRX_U8> message(data + 5, data + size);
    if ((data[0] & 2) != 0) {
        command.cdw11 = static_cast<QRX_U32>(message.size() / 4 - 1);
    }
    const std::vector<QRX_U8> before = message;
    const auto sent = machine.admin({}, command, message);
    assert(message == before);

    command.opcode = 0x1E;
    std::array<QRX_U8, 4096> page{};
    const auto received = machine.admin({}, command, page);
    assert((sent.status == 0) == (received.status == 0));
    assert(received.status != 0 || (page[0] == 0x04 && (page[1] & 0x80) != 0));
    assert(machine.admin({}, command, page).status == 0x00C);
    const auto& vpd = machine.parts().controllers.front().vpd;
    assert(vpd.eeprom.size() == 256 && vpd.spi.size() == 1024);
    return 0;
}
