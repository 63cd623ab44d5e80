// The text form of a namespace, of a controller, a drive or an SSD.
#include <algorithm>
#include <functional>

#include "sim/firmware/describe.h"

namespace qrx::sim {

namespace {

constexpr auto kParentWords = std::to_array<JsonWord>({{kNsParentPd, "pd"}, {kNsParentVd, "vd"}});

struct StoredSector {
    QRX_U64 lba = 0;
    std::vector<QRX_U8> bytes;
};

template <class Io>
void describe(Io& io, SparseStore& store, const Namespace& ns)
{
    std::vector<StoredSector> sectors;
    for (const auto& [lba, bytes] : store.sectors) {
        sectors.push_back({lba, bytes});
    }
    io.list("data", sectors, kAny32, [&](auto& inner, StoredSector& sector) {
        inner.number("lba", sector.lba, 0, kAny64);
        inner.check(sector.lba < ns.sectors, "lba", "is beyond the namespace's 'sectors'");
        inner.bytes("bytes", sector.bytes, ns.sector_size);
        inner.check(sector.bytes.size() == ns.sector_size, "bytes", "is not one sector long");
        inner.check(!Io::kReads || store.sectors.find(sector.lba) == store.sectors.end(), "lba", "occurs twice");
        if (Io::kReads && !inner.failed()) {
            store.write(sector.lba, ns.sector_size, sector.bytes);
        }
    });
}

struct StoredRange {
    QRX_U64 lba = 0;
    QRX_U64 sectors = 1;
};

template <class Io>
void describe_uncorrectable(Io& io, SparseStore& store, const Namespace& ns)
{
    std::vector<StoredRange> ranges;
    for (const auto& [first, end] : store.uncorrectable) {
        ranges.push_back({first, end - first});
    }
    io.list("uncorrectable", ranges, kAny32, [&](auto& inner, StoredRange& range) {
        inner.number("lba", range.lba, 0, kAny64);
        inner.check(range.lba < ns.sectors, "lba", "is beyond the namespace's 'sectors'");
        inner.number("sectors", range.sectors, 1, kAny64);
        inner.check(range.sectors <= ns.sectors - std::min(range.lba, ns.sectors), "sectors",
                    "go beyond the namespace's");
        if (Io::kReads && !inner.failed()) {
            store.spoil(range.lba, range.sectors);
        }
    });
}

template <class Io>
void read_parent(Io& io, Namespace& ns, const Controller& controller)
{
    if (const VirtualDisk* const vd =
            ns.parent_kind == kNsParentVd ? controller.find_virtual_disk(ns.parent) : nullptr) {
        ns.sectors = vd->sectors;
        ns.sector_size = vd->sector_size == 4096 ? 4096 : 512;
        return;
    }
    if (const Drive* const drive = ns.parent_kind == kNsParentPd ? controller.find_drive(ns.parent) : nullptr) {
        ns.sectors = drive->sectors;
        ns.sector_size = drive->sector_size == 4096 ? 4096 : 512;
        return;
    }
    io.check(false, "parent_id",
             "is " + std::to_string(ns.parent) + ", and there is no such " +
                 (ns.parent_kind == kNsParentVd ? "virtual disk" : "drive"));
}

}  // namespace

template <class Io>
void describe_extent(Io& io, Namespace& ns)
{
    io.number("sectors", ns.sectors, 1, kAny64);
    io.check(ns.sectors > 0, "sectors", "is left out, and its parent has none; allowed are numbers from 1");
    io.number("sector_size", ns.sector_size, 512, 4096);
    io.check(ns.sector_size == 512 || ns.sector_size == 4096, "sector_size",
             "is " + std::to_string(ns.sector_size) + "; allowed are 512 and 4096");
    io.bytes("nguid", std::span(ns.nguid));
    io.bytes("eui64", std::span(ns.eui64));
    io.number("sectors_read", ns.sectors_read, 0, kAny64);
    io.number("sectors_written", ns.sectors_written, 0, kAny64);
    io.number("host_reads", ns.host_reads, 0, kAny64);
    io.number("host_writes", ns.host_writes, 0, kAny64);
    if (!io.failed()) {
        describe(io, ns.data, ns);
        describe_uncorrectable(io, ns.data, ns);
    }
}

template <class Io>
void describe_nsid(Io& io, Namespace& ns, const NvmeFunction& function, QRX_U64 most)
{
    io.check(most != 0, "nsid", "cannot be: the controller's 'max_ns' is 0");
    io.number("nsid", ns.nsid, 1, std::max<QRX_U64>(most, 1));
    if (Io::kReads) {
        const auto& others = function.namespaces;
        io.check(std::none_of(others.begin(), others.end() - 1,
                              [&](const Namespace& other) { return other.nsid == ns.nsid; }),
                 "nsid", "is the id of an earlier namespace");
        ns.derive_identifiers(function.serial);
    }
}

template <class Io>
void describe(Io& io, Namespace& ns, const Controller& controller)
{
    if (Io::kReads) {
        ns.parent_kind = controller.adapter.raid() ? kNsParentVd : kNsParentPd;
    }
    describe_nsid(io, ns, controller, controller.adapter.max_ns);
    io.code("parent", ns.parent_kind, kParentWords);
    io.number("parent_id", ns.parent, 0, kAny16);
    if (Io::kReads) {
        read_parent(io, ns, controller);
    }
    io.flag("valid", ns.valid);
    io.flag("waiting", ns.waiting);
    io.flag("active", ns.active);
    io.flag("shared", ns.shared);
    io.number("owner", ns.owner, 0, kAny8);
    io.numbers("elsewhere", ns.elsewhere, Controller::kHostFunctions, Controller::kHostFunctions - 1);
    io.check(
        std::adjacent_find(ns.elsewhere.begin(), ns.elsewhere.end(), std::greater_equal<>()) == ns.elsewhere.end() &&
            std::find(ns.elsewhere.begin(), ns.elsewhere.end(), controller.controller_id) == ns.elsewhere.end(),
        "elsewhere", "must name other host functions than this, in order and each once");
    describe_extent(io, ns);
    io.object("io", [&](auto& inner) { describe(inner, ns.io); });
}

template void describe_extent(JsonReader&, Namespace&);
template void describe_extent(JsonWriter&, Namespace&);
template void describe_nsid(JsonReader&, Namespace&, const NvmeFunction&, QRX_U64);
template void describe_nsid(JsonWriter&, Namespace&, const NvmeFunction&, QRX_U64);
template void describe(JsonReader&, Namespace&, const Controller&);
template void describe(JsonWriter&, Namespace&, const Controller&);

}  // namespace qrx::sim
