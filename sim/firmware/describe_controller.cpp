// The text form of a controller, and of what it shares with an SSD: its place in the machine and its identity.
#include <algorithm>

#include "sim/firmware/describe.h"

namespace qrx::sim {

namespace {

template <class Io>
void describe(Io& io, PairMailbox& mailbox)
{
    io.flag("pending", mailbox.pending);
    std::vector<QRX_U16> words(mailbox.words.begin(), mailbox.words.end());
    io.numbers("words", words, mailbox.words.size(), kAny16);
    std::copy(words.begin(), words.end(), mailbox.words.begin());
    io.bytes("request", mailbox.request, PairMailbox::kRequestMax);
}

// A store; bytes that the text leaves out are erased.
template <class Io>
void describe_store(Io& io, const char* key, std::vector<QRX_U8>& store, std::size_t size)
{
    io.bytes(key, store, size);
    store.resize(size, Vpd::kErased);
}

template <class Io>
void describe(Io& io, Vpd& vpd)
{
    describe_store(io, "eeprom", vpd.eeprom, Vpd::kEepromSize);
    describe_store(io, "spi", vpd.spi, Vpd::kSpiSize);
}

constexpr auto kSubjectWords =
    std::to_array<JsonWord>({{Event::kAdapter, "adapter"}, {Event::kPd, "pd"}, {Event::kVd, "vd"}, {Event::kNs, "ns"}});

template <class Io>
void describe(Io& io, EventList& events)
{
    io.number("count", events.count, 0, kAny64);
    io.list("entries", events.entries, EventList::kEntries, [&](auto& inner, Event& event) {
        inner.number("number", event.number, 1, kAny64);
        inner.number("uptime_ms", event.uptime, 0, kMaxMilliseconds);
        inner.number("time_ms", event.time, 0, kMaxMilliseconds);
        inner.code("subject", event.subject, kSubjectWords);
        inner.number("id", event.id, 0, kAny16);
        inner.text("text", event.text, EventList::kTextMax);
    });
    const bool ordered =
        std::adjacent_find(events.entries.begin(), events.entries.end(), [](const Event& left, const Event& right) {
            return left.number >= right.number;
        }) == events.entries.end();
    io.check(ordered && (events.entries.empty() || events.entries.back().number <= events.count), "entries",
             "must have rising numbers up to 'count'");
}

}  // namespace

template <class Io>
void describe_place(Io& io, NvmeFunction& function, const Machine::Parts& machine)
{
    io.number("number", function.number, 0, kMaxDeviceNumber);
    if (Io::kReads) {
        const auto same = [&](const NvmeFunction& other) {
            return &other != &function && other.number == function.number;
        };
        io.check(std::none_of(machine.controllers.begin(), machine.controllers.end(), same) &&
                     std::none_of(machine.ssds.begin(), machine.ssds.end(), same),
                 "number", "is " + std::to_string(function.number) + ", which an earlier device has");
        function.address.bus = static_cast<QRX_U8>(3 + function.number % 0xF0);
        function.slot = static_cast<QRX_U16>(function.number + 1);
    }
    std::string address = function.address.text();
    io.text("address", address, 12);
    if (const auto parsed = PciAddress::parse(address)) {
        function.address = *parsed;
    } else {
        io.check(false, "address", "is \"" + address + "\"; its form is \"0000:03:00.0\"");
    }
    io.number("slot", function.slot, 0, kAny16);
}

template <class Io>
void describe_identity(Io& io, NvmeFunction& function)
{
    if (Io::kReads) {
        const std::string number = std::to_string(function.number);
        function.serial = "QRXSIM" + std::string(number.size() < 4 ? 4 - number.size() : 0, '0') + number;
    }
    io.number("controller_id", function.controller_id, 0, kAny16);
    io.text("model", function.model, sizeof(nvme_id_ctrl::mn));
    io.text("serial", function.serial, sizeof(nvme_id_ctrl::sn));
    if (Io::kReads) {
        function.subnqn = "nqn.2026-01.com.example:qrx:" + function.serial;
    }
    io.text("subnqn", function.subnqn, 223, true);
    describe_device(io, function, false);
}

template <class Io>
void describe(Io& io, Controller& controller, const Machine::Parts& machine)
{
    describe_place(io, controller, machine);
    describe_identity(io, controller);
    io.object("adapter", [&](auto& inner) { describe(inner, controller.adapter); });
    io.object("config", [&](auto& inner) { describe(inner, controller.config); });
    io.object("settings", [&](auto& inner) { describe(inner, controller.settings); });
    if (Io::kReads) {
        controller.board.boot(controller.settings);
    }
    io.object("board", [&](auto& inner) { describe(inner, controller.board); });
    describe_rate_limits(io, controller);
    io.object("closed_opcodes", [&](auto& inner) { describe(inner, controller.gate); });
    controller.subsystem_vendor_id = controller.adapter.subsystem_vendor_id;
    if (Io::kReads && !io.has("oem_data")) {
        (void)controller.set_oem_data("factory");
    }
    io.bytes("oem_data", controller.oem.bytes, OemStore::kSize);
    io.list("drives", controller.drives, kMaxPdId + 1,
            [&](auto& inner, Drive& drive) { describe(inner, drive, controller); });
    io.list("virtual_disks", controller.virtual_disks, kMaxVdId + 1,
            [&](auto& inner, VirtualDisk& vd) { describe(inner, vd, controller); });
    io.list("namespaces", controller.namespaces, Controller::kMaxNamespaces,
            [&](auto& inner, Namespace& ns) { describe(inner, ns, controller); });
    io.object("host_functions", [&](auto& inner) { describe(inner, controller.host_functions); });
    io.list("interfaces", controller.interfaces, kAny8 + 1,
            [&](auto& inner, PcieInterface& interface) { describe(inner, interface, controller); });
    if (Io::kReads) {
        controller.vpd = factory_vpd(controller.vpd_facts());
    }
    io.object("vpd", [&](auto& inner) { describe(inner, controller.vpd); });
    io.object("endpoint",
              [&](auto& inner) { inner.bytes("answer", controller.endpoint.answer, ManagementEndpoint::kAnswerMax); });
    io.object("child_controllers", [&](auto& inner) { describe(inner, controller.children); });
    io.object("security", [&](auto& inner) { describe(inner, controller.security); });
    io.object("mailbox", [&](auto& inner) { describe(inner, controller.mailbox); });
    io.object("events", [&](auto& inner) { describe(inner, controller.events); });
    io.object("event_ring", [&](auto& inner) { describe(inner, controller.ring); });
    io.object("spi_log", [&](auto& inner) { describe(inner, controller.spi_log); });
    io.object("diagnostics", [&](auto& inner) { describe(inner, controller.diagnostics); });
    io.number("namespaces_made", controller.namespaces_made, 0, kAny32);
    sort_by(controller.drives, &Drive::id);
    sort_by(controller.virtual_disks, &VirtualDisk::id);
    sort_by(controller.interfaces, &PcieInterface::id);
    sort_by(controller.namespaces, &Namespace::nsid);
}

template void describe_place(JsonReader&, NvmeFunction&, const Machine::Parts&);
template void describe_place(JsonWriter&, NvmeFunction&, const Machine::Parts&);
template void describe_identity(JsonReader&, NvmeFunction&);
template void describe_identity(JsonWriter&, NvmeFunction&);
template void describe(JsonReader&, Controller&, const Machine::Parts&);
template void describe(JsonWriter&, Controller&, const Machine::Parts&);

}  // namespace qrx::sim
