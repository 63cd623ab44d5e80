// Fuzzes the simulated controller's pair commands: whatever frame it gets, it answers once, signed, or refuses; and the
// machine that comes of it is one that its own state file can hold.
//
// The input is a row of requests: a byte that says what the frame is like, group, sub-opcode, an argument of 16 bits,
// the length of the record in 16 bits, and the record.
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "api/src/interface/wire/envelope.h"
#include "sim/firmware/factory.h"

namespace {

using qrx::sim::Machine;

enum : std::uint8_t { kSpoilsHead = 1, kAsksTwice = 2, kLetsTimePass = 4, kSavesAndLoads = 8 };

// Takes as many bytes as there are, up to `count`.
std::span<const std::uint8_t> take(std::span<const std::uint8_t>& input, std::size_t count)
{
    const auto bytes = input.first(std::min(count, input.size()));
    input = input.subspan(bytes.size());
    return bytes;
}

// Returns whether the input wants the machine to be saved and loaded.
bool ask(Machine& machine, std::span<const std::uint8_t>& input)
{
    std::array<std::uint8_t, 7> head{};
    const auto given = take(input, head.size());
    std::copy(given.begin(), given.end(), head.begin());
    const std::size_t length = std::min<std::size_t>(head[5] + head[6] * std::size_t{256}, 4080);

    std::array<QRX_U8, 4096> page{
        'Q', 'R', 'X', 0, 3, 16, static_cast<QRX_U8>(length), static_cast<QRX_U8>(length >> 8U)};
    page[8] = head[1];
    page[10] = head[2];
    page[12] = head[3];
    page[13] = head[4];
    const auto record = take(input, length);
    std::copy(record.begin(), record.end(), page.begin() + 16);
    if ((head[0] & kSpoilsHead) != 0) {
        const auto spoiled = take(input, 16);
        std::copy(spoiled.begin(), spoiled.end(), page.begin());
    }

    nvme_admin_cmd command{};
    command.cdw10 = 1024;
    command.cdw15 = kFrameSignWord;
    command.opcode = 0xCB;
    const auto before = page;
    const auto sent = machine.admin({}, command, page);
    assert(page == before);
    command.opcode = 0xCE;
    const auto received = machine.admin({}, command, page);
    assert((sent.status == 0) == (received.status == 0));
    assert(received.status != 0 || std::memcmp(page.data(), "QRX", 4) == 0);
    if ((head[0] & kAsksTwice) != 0) {
        assert(machine.admin({}, command, page).status == 0x00C);
    }
    if ((head[0] & kLetsTimePass) != 0) {
        machine.advance(std::chrono::minutes(10));
    }
    return (head[0] & kSavesAndLoads) != 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Machine::Parts parts = (*qrx::sim::make_scenario("lab"))->parts();
    Machine machine{Machine::Parts(parts)};
    std::span<const std::uint8_t> input(data, size);
    bool saves = false;
    for (int i = 0; i < 8 && !input.empty(); ++i) {
        saves = ask(machine, input) || saves;
    }
    if (saves) {  // a hundred times as slow as a request, and so not for each
        const auto loaded = qrx::sim::load_machine(qrx::sim::save_machine(machine), "state");
        assert(loaded && (*loaded)->parts() == machine.parts());
    }
    return 0;
}
