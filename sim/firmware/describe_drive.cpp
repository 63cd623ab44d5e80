// The text form of a drive behind a controller.
#include <algorithm>

#include "sim/firmware/describe.h"

namespace qrx::sim {

namespace {

template <class Io>
void describe(Io& io, ForeignNamespace& ns, const Drive& drive)
{
    if (Io::kReads) {
        // As if the other controller had made it.
        Namespace made;
        made.nsid = static_cast<QRX_U8>(drive.foreign_namespaces.size());
        made.derive_identifiers("foreign " + drive.serial);
        ns.nguid = made.nguid;
        ns.eui64 = made.eui64;
        ns.sectors = std::max<QRX_U64>(drive.sectors, 1);
    }
    io.number("table", ns.table, 0, kAny8 - 1);
    io.number("sectors", ns.sectors, 1, kAny64);
    io.bytes("nguid", std::span(ns.nguid));
    io.bytes("eui64", std::span(ns.eui64));
}

template <class Io>
void describe_own_namespaces(Io& io, Drive& drive)
{
    if (Io::kReads && !io.has("namespaces")) {
        drive.make_default_namespace();
        return;
    }
    io.list("namespaces", drive.namespaces, kAny8, [&](auto& inner, Namespace& ns) {
        if (Io::kReads) {
            ns.parent_kind = kNsParentPd;
        }
        describe_nsid(inner, ns, drive, kAny8 - 1);
        inner.flag("active", ns.active);
        describe_extent(inner, ns);
    });
    sort_by(drive.namespaces, &Namespace::nsid);
}

}  // namespace

template <class Io>
void describe(Io& io, Drive& drive, const Controller& controller)
{
    io.number("id", drive.id, 0, kMaxPdId);
    if (Io::kReads) {
        drive.slot = drive.id;
        drive.serial = controller.serial + "D" + std::to_string(drive.id);
        drive.serial = drive.serial.substr(0, sizeof(NVME_PD_Info::SerialNo));
        const auto& others = controller.drives;
        io.check(io.has("id"), "id", "is missing");
        io.check(
            std::none_of(others.begin(), others.end() - 1, [&](const Drive& other) { return other.id == drive.id; }),
            "id", "is the id of an earlier drive");
        const unsigned ids = controller.adapter.drive_ids();
        io.check(drive.id < ids, "id",
                 "is beyond the controller's ids; 'ports' times 'max_pd' allows 0 to " +
                     std::to_string(ids == 0 ? 0 : ids - 1));
    }
    io.text("model", drive.model, sizeof(NVME_PD_Info::Model));
    io.text("serial", drive.serial, sizeof(NVME_PD_Info::SerialNo));
    if (Io::kReads) {  // in short for what "slots" and "health" say in full
        io.text("firmware", drive.slots.contents[0].revision, sizeof(NVME_PD_Info::FWVersion));
        io.number("temperature", drive.health.temperature, 0, kAny16);
        io.number("critical_warning", drive.health.critical_warning, 0, kAny8);
    }
    io.number("sector_size", drive.sector_size, 0, kAny16 + 1);
    io.number("sectors", drive.sectors, 0, kAny64);
    io.number("slot", drive.slot, 0, kAny16);
    io.number("nsid", drive.nsid, 0, kAny16);
    describe_device(io, drive, true);
    describe_own_namespaces(io, drive);
    io.flag("sata", drive.sata);
    io.flag("failed", drive.failed);
    io.flag("importable", drive.importable);
    if (Io::kReads) {
        const auto interface = static_cast<QRX_U8>(drive.slot + PcieInterface::kFirstRootComplex);
        if (const PciePort* const port = drive.slot < kMaxPdId ? controller.port_of(interface) : nullptr) {
            drive.config_space.speed = port->speed;
            drive.config_space.width = port->width;
        }
    }
    io.object("config_space", [&](auto& inner) { describe(inner, drive.config_space); });
    io.list("foreign_namespaces", drive.foreign_namespaces, Controller::kMaxNamespaces,
            [&](auto& inner, ForeignNamespace& ns) { describe(inner, ns, drive); });
    describe_activity(io, drive.activity);
}

template void describe(JsonReader&, Drive&, const Controller&);
template void describe(JsonWriter&, Drive&, const Controller&);

}  // namespace qrx::sim
