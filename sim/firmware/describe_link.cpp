// The text form of what lies behind a PCIe interface: its registers, its eye, and the configuration space of a drive.
#include <algorithm>
#include <set>

#include "sim/firmware/describe.h"

namespace qrx::sim {

namespace {

constexpr auto kSpeedWords = std::to_array<JsonWord>({{1, "2.5Gb/s"}, {2, "5Gb/s"}, {3, "8Gb/s"}, {4, "16Gb/s"}});

struct Register {
    QRX_U32 address = 0;
    QRX_U32 value = 0;
};

template <class Io>
void describe(Io& io, Eye& eye)
{
    io.number("center", eye.center, 0, kAny16);
    io.number("width", eye.width, 0, kAny16);
    io.number("height", eye.height, 0, kAny16);
    io.number("jitter", eye.jitter, 0, kAny16);
    io.number("noise", eye.noise, 0, kAny16);
}

template <class Io>
void describe_registers(Io& io, PcieInterface& interface)
{
    std::vector<Register> registers;
    if (!Io::kReads) {
        for (const auto& [address, value] : interface.changed()) {
            registers.push_back({address, value});
        }
    }
    std::set<QRX_U32> seen;
    io.list("registers", registers, 2 * PcieInterface::kMostRegisters, [&](auto& inner, Register& entry) {
        inner.number("address", entry.address, 0, kAny32);
        inner.check(entry.address % 4 == 0, "address", "is no multiple of 4");
        const bool may_be_zero = PcieInterface::in_phy(entry.address);
        inner.number("value", entry.value, may_be_zero ? 0 : 1, kAny32);
        inner.check(may_be_zero || entry.value != 0, "value", "is missing");
        if (Io::kReads && !inner.failed()) {
            inner.check(seen.insert(entry.address).second, "address", "occurs twice");
            interface.restore(entry.address, entry.value);
        }
    });
    io.check(interface.registers.size() <= PcieInterface::kMostRegisters, "registers",
             "has more than " + std::to_string(PcieInterface::kMostRegisters) + " entries");
}

}  // namespace

template <class Io>
void describe(Io& io, PcieInterface& interface, const Controller& controller)
{
    io.number("id", interface.id, 0, kAny8);
    const auto& others = controller.interfaces;
    io.check(!Io::kReads || std::none_of(others.begin(), others.end() - 1,
                                         [&](const PcieInterface& other) { return other.id == interface.id; }),
             "id", "is the id of an earlier interface");
    io.object("eye", [&](auto& inner) { describe(inner, interface.phy.eye); });
    io.number("ready_after", interface.phy.ready_after, 0, kAny8);
    io.number("measured_after", interface.phy.measured_after, 0, kAny8);
    io.number("looks", interface.phy.looks, 0, kAny8);
    describe_registers(io, interface);
}

template <class Io>
void describe(Io& io, ConfigSpace& space)
{
    io.code("answer", space.answer, config_answer_words());
    io.code("speed", space.speed, kSpeedWords);
    io.number("width", space.width, 0, kAny8);
    io.flag("express", space.express);
    io.flag("aer", space.aer);
    io.number("correctable", space.correctable, 0, kAny32);
    io.number("correctable_mask", space.correctable_mask, 0, kAny32);
    io.number("uncorrectable", space.uncorrectable, 0, kAny32);
    io.number("uncorrectable_mask", space.uncorrectable_mask, 0, kAny32);
    io.number("severity", space.severity, 0, kAny32);
    io.number("aer_control", space.aer_control, 0, kAny32);
    io.bytes("header_log", std::span(space.header_log));
    io.bytes("prefix_log", std::span(space.prefix_log));
}

template void describe(JsonReader&, PcieInterface&, const Controller&);
template void describe(JsonWriter&, PcieInterface&, const Controller&);
template void describe(JsonReader&, ConfigSpace&);
template void describe(JsonWriter&, ConfigSpace&);

}  // namespace qrx::sim
