// The text form of a machine: what each thing's fields are called, which values they take, and what must hold
// between them.
#include <algorithm>
#include <functional>

#include "sim/firmware/factory.h"
#include "sim/firmware/json_fields.h"

namespace qrx::sim {

namespace {

constexpr QRX_U64 kAny8 = 0xFF;
constexpr QRX_U64 kAny16 = 0xFFFF;
constexpr QRX_U64 kAny32 = 0xFFFFFFFF;
constexpr QRX_U64 kAny64 = ~QRX_U64{0};
constexpr QRX_U64 kMaxDeviceNumber = 1087;
constexpr std::size_t kMaxDevices = 64;
constexpr std::size_t kMaxPdId = 254;  // 255 asks for all of them
constexpr QRX_U64 kMaxVdId = 254;
constexpr QRX_U64 kMaxMilliseconds = QRX_U64{1} << 52;

constexpr auto kVdStatusWords = std::to_array<JsonWord>({
    {kVdFunctional, "functional"},
    {kVdDegrade, "degraded"},
    {kVdDeleted, "deleted"},
    {kVdMissing, "missing"},
    {kVdOffline, "offline"},
    {kVdPartiallyOptimal, "partially-optimal"},
    {kVdForeign, "foreign"},
    {kVdImportable, "importable"},
    {kVdNotImportable, "not-importable"},
    {kVdInitialization, "initialization"},
    {kVdRebuilding, "rebuilding"},
    {kVdErrorHandling, "error-handling"},
});

constexpr auto kRaidModeWords = std::to_array<JsonWord>({
    {kRaid0, "raid0"},
    {kRaid1, "raid1"},
    {kJbod, "jbod"},
    {kRaid10, "raid10"},
    {kRaid5, "raid5"},
    {kRaid50, "raid50"},
    {kRaid6, "raid6"},
    {kRaid60, "raid60"},
});

// Bits of the adapter's mask of RAID modes.
constexpr auto kRaidModeBits = std::to_array<JsonWord>({
    {0, "raid0"},
    {1, "raid1"},
    {2, "jbod"},
    {3, "raid10"},
    {4, "raid5"},
    {5, "raid50"},
    {6, "raid6"},
    {7, "raid60"},
});

constexpr auto kFeatureBits = std::to_array<JsonWord>({
    {1, "import"},
    {2, "raid"},
    {3, "namespace"},
    {4, "dump"},
    {5, "nmic"},
});

constexpr auto kBackgroundBits = std::to_array<JsonWord>({
    {0, "initialization"},
    {1, "rebuild"},
    {2, "sync"},
    {3, "migrate"},
    {4, "media-patrol"},
});

constexpr auto kStripeBits = std::to_array<JsonWord>({{0, "128KB"}, {1, "256KB"}, {2, "512KB"}});
constexpr auto kRevisionBits = std::to_array<JsonWord>({{4, "stepping-a"}, {5, "stepping-b"}});
constexpr auto kCacheWords = std::to_array<JsonWord>({{0, "off"}, {1, "on"}});
constexpr auto kSkuWords = std::to_array<JsonWord>({{0, "V"}, {1, "D"}, {2, "B"}, {3, "A"}});
constexpr auto kPortWords = std::to_array<JsonWord>({{kPcieEndPoint, "end-point"}, {kPcieRootComplex, "root-complex"}});
constexpr auto kSpeedWords = std::to_array<JsonWord>({{1, "2.5Gb/s"}, {2, "5Gb/s"}, {3, "8Gb/s"}});
constexpr auto kRateWords = std::to_array<JsonWord>({{0, "high"}, {2, "medium"}, {32, "low"}});
constexpr auto kDamageWords = std::to_array<JsonWord>({{HbaSettings::kIntact, "intact"},
                                                       {HbaSettings::kBadSignature, "bad-signature"},
                                                       {HbaSettings::kBadChecksum, "bad-checksum"}});
constexpr auto kNeedWords = std::to_array<JsonWord>({{FirmwareSlots::kNothing, "nothing"},
                                                     {FirmwareSlots::kControllerReset, "controller-reset"},
                                                     {FirmwareSlots::kSubsystemReset, "subsystem-reset"},
                                                     {FirmwareSlots::kConventionalReset, "conventional-reset"}});
constexpr auto kParentWords = std::to_array<JsonWord>({{kNsParentPd, "pd"}, {kNsParentVd, "vd"}});
constexpr auto kActivityStateWords =
    std::to_array<JsonWord>({{QRX_NVME_BGA_STATUS_RUNNING, "running"}, {QRX_NVME_BGA_STATUS_PAUSE, "paused"}});
constexpr auto kActivityWords = std::to_array<JsonWord>({
    {QRX_NVME_BGA_TYPE_VD_INIT_QUICK, "quick-initialization"},
    {QRX_NVME_BGA_TYPE_VD_INIT_BACKGROUND, "initialization"},
    {QRX_NVME_BGA_TYPE_VD_REBUILD, "rebuild"},
    {QRX_NVME_BGA_TYPE_VD_SYNC, "sync"},
    {QRX_NVME_BGA_TYPE_VD_MIGRATE, "migrate"},
    {QRX_NVME_BGA_TYPE_HD_MEDIAPATROL, "pd-media-patrol"},
    {QRX_NVME_BGA_TYPE_VD_MEDIAPATROL, "media-patrol"},
});

template <class Items, class Key>
void sort_by(Items& items, Key key)
{
    std::sort(items.begin(), items.end(),
              [key](const auto& left, const auto& right) { return left.*key < right.*key; });
}

template <class Io>
void describe(Io& io, Version& version)
{
    io.number("major", version.major, 0, kAny16);
    io.number("minor", version.minor, 0, kAny16);
    io.number("oem", version.oem, 0, kAny16);
    io.number("build", version.build, 0, kAny16);
}

template <class Io>
void describe(Io& io, PciePort& port)
{
    io.code("type", port.type, kPortWords);
    io.number("id", port.id, 0, kAny8);
    io.code("speed", port.speed, kSpeedWords);
    io.number("width", port.width, 0, kAny8);
}

// The stepping and its number share a byte; in the text they are a list of bits and a number.
template <class Io>
void describe_revision(Io& io, QRX_U8& revision)
{
    auto stepping = static_cast<QRX_U8>(revision & 0xF0);
    auto number = static_cast<QRX_U8>(revision & 0x0F);
    io.mask("stepping", stepping, kRevisionBits);
    io.check((stepping & 0x0F) == 0, "stepping", "holds a bit below 4; those are the 'stepping_number'");
    io.number("stepping_number", number, 0, 0x0F);
    revision = static_cast<QRX_U8>(stepping | number);
}

template <class Io>
void describe(Io& io, Adapter& adapter)
{
    io.object("uefi", [&](auto& inner) { describe(inner, adapter.uefi); });
    io.object("firmware", [&](auto& inner) { describe(inner, adapter.firmware); });
    io.number("subsystem_vendor_id", adapter.subsystem_vendor_id, 0, kAny16);
    io.number("subsystem_device_id", adapter.subsystem_device_id, 0, kAny16);
    describe_revision(io, adapter.revision);
    io.number("ports", adapter.ports, 0, kAny8);
    io.number("max_pd_per_vd", adapter.max_pd_per_vd, 0, kAny8);
    io.number("max_vd", adapter.max_vd, 0, kAny8);
    io.number("max_pd", adapter.max_pd, 0, kAny8);
    io.number("max_ns_per_vd", adapter.max_ns_per_vd, 0, kAny8);
    io.number("max_ns", adapter.max_ns, 0, Controller::kMaxNamespaces);
    io.number("visible_vf_host0", adapter.visible_vf_host0, 0, kAny8);
    io.number("visible_vf_host1", adapter.visible_vf_host1, 0, kAny8);
    io.number("flash_size", adapter.flash_size, 0, kAny32);
    io.number("buffer_size", adapter.buffer_size, 0, kAny16);
    io.mask("raid_modes", adapter.raid_modes, kRaidModeBits);
    io.code("cache", adapter.cache, kCacheWords);
    io.mask("background", adapter.background, kBackgroundBits);
    io.mask("stripes", adapter.stripes, kStripeBits);
    io.code("sku", adapter.sku, kSkuWords);
    io.mask("features", adapter.features, kFeatureBits);
    io.number("oem_features", adapter.oem_features, 0, kAny32);
    io.text("build_date", adapter.build_date, sizeof(NVME_Adapter_Info::BuildDate));
    io.flag("routing_number", adapter.routing_number);
    io.list("pcie", adapter.pcie, kPcieInfoMax, [](auto& inner, PciePort& port) { describe(inner, port); });
}

template <class Io>
void describe(Io& io, AdapterConfig& config)
{
    io.number("auto_rebuild", config.auto_rebuild, 0, kAny8);
    io.code("rate", config.rate, kRateWords);
}

template <class Io>
void describe(Io& io, HbaSettings& settings)
{
    io.flag("debug_dump", settings.debug_dump);
    io.flag("flash_tools", settings.flash_tools);
    io.flag("sriov", settings.sriov);
    io.flag("vpd_in_spi", settings.vpd_in_spi);
    io.flag("errors_only", settings.errors_only);
    io.flag("dsp", settings.dsp);
    io.number("nguid_offset", settings.nguid_offset, 0, kAny32);
    io.number("fuse_id", settings.fuse_id, 0, kAny8);
    io.number("max_vf", settings.max_vf, 0, kAny8);
    io.number("max_namespaces", settings.max_namespaces, 0, kAny8);
    io.flag("virtual_namespaces", settings.virtual_namespaces);
    io.number("firmware_slot", settings.firmware_slot, 0, kAny8);
    io.number("gpio_enable", settings.gpio_enable, 0, kAny32);
    io.number("gpio_levels", settings.gpio_levels, 0, kAny32);
    io.number("gpio_values", settings.gpio_values, 0, kAny32);
    io.flag("gpio_from_settings", settings.gpio_from_settings);
    io.number("gpio_inverse", settings.gpio_inverse, 0, kAny8);
    io.code("damage", settings.damage, kDamageWords);
}

template <class Io>
void describe(Io& io, BackgroundActivity& activity)
{
    io.code("type", activity.type, kActivityWords);
    io.code("state", activity.state, kActivityStateWords);
    io.number("duration_ms", activity.duration, 1, kMaxMilliseconds);
    io.number("elapsed_ms", activity.elapsed, 0, kMaxMilliseconds);
    io.check(!activity.finished(), "elapsed_ms", "is not below 'duration_ms'; an activity that is done is left out");
}

template <class Io>
void describe_activity(Io& io, std::optional<BackgroundActivity>& activity)
{
    io.optional("activity", activity, [](auto& inner, BackgroundActivity& value) { describe(inner, value); });
}

template <class Io>
void describe(Io& io, Health& health)
{
    io.number("critical_warning", health.critical_warning, 0, kAny8);
    io.number("temperature", health.temperature, 0, kAny16);
    io.number("spare", health.spare, 0, kAny8);
    io.number("spare_threshold", health.spare_threshold, 0, kAny8);
    io.number("used", health.used, 0, kAny8);
    io.number("sectors_read", health.sectors_read, 0, kAny64);
    io.number("sectors_written", health.sectors_written, 0, kAny64);
    io.number("host_reads", health.host_reads, 0, kAny64);
    io.number("host_writes", health.host_writes, 0, kAny64);
    io.number("busy_minutes", health.busy_minutes, 0, kAny64);
    io.number("power_cycles", health.power_cycles, 0, kAny64);
    io.number("power_on_ms", health.power_on_milliseconds, 0, kAny64);
    io.number("unsafe_shutdowns", health.unsafe_shutdowns, 0, kAny64);
    io.number("media_errors", health.media_errors, 0, kAny64);
    io.number("warning_minutes", health.warning_minutes, 0, kAny32);
    io.number("critical_minutes", health.critical_minutes, 0, kAny32);
}

template <class Io>
void describe(Io& io, FirmwareContent& content)
{
    io.text("version", content.version, kVersionMax);
    io.number("size", content.size, 0, kAny32);
    io.number("crc", content.crc, 0, kAny32);
    io.flag("revoked", content.revoked);
}

template <class Io>
void describe(Io& io, FirmwareSlots& slots, bool unnamed_may_run)
{
    static constexpr std::array<const char*, FirmwareSlots::kMax> kKeys{"slot1", "slot2", "slot3", "slot4",
                                                                        "slot5", "slot6", "slot7"};
    io.number("count", slots.count, 1, FirmwareSlots::kMax);
    static constexpr std::array<const char*, FirmwareSlots::kMax> kImageKeys{"image1", "image2", "image3", "image4",
                                                                             "image5", "image6", "image7"};
    io.flag("first_read_only", slots.first_read_only);
    io.code("need", slots.need, kNeedWords);
    io.number("active", slots.active, 1, slots.count);
    io.number("next", slots.next, 0, slots.count);
    io.text("overwritten", slots.overwritten, kRevisionMax);
    for (std::size_t i = 0; i < kKeys.size(); ++i) {
        FirmwareContent& content = slots.contents[i];
        io.text(kKeys[i], content.revision, kRevisionMax);
        io.check(i < slots.count || content.revision.empty(), kKeys[i], "is beyond the 'count' of slots");
        io.object(kImageKeys[i], [&](auto& inner) { describe(inner, content); });
    }
    io.check(unnamed_may_run || !slots.running().empty(), "active", "names a slot that is empty");
}

template <class Io>
void describe(Io& io, FirmwareDownload& download)
{
    struct Piece {
        QRX_U32 offset = 0;
        std::vector<QRX_U8> bytes;
    };
    std::vector<Piece> pieces;
    if (!Io::kReads) {
        for (const auto& [offset, bytes] : download.pieces) {
            pieces.push_back({offset, bytes});
        }
    }
    io.list("download", pieces, kAny32, [&](auto& inner, Piece& piece) {
        inner.number("offset", piece.offset, 0, kImageMax);
        inner.bytes("bytes", piece.bytes, kImageMax);
        inner.check(!piece.bytes.empty(), "bytes", "is empty");
        if (Io::kReads && !inner.failed()) {
            inner.check(download.add(piece.offset, piece.bytes), "offset", "overlaps an earlier piece");
        }
    });
}

template <class Io>
void describe(Io& io, ErrorEntry& entry, const ErrorLog& log)
{
    io.number("number", entry.number, 1, kAny64);
    io.check(entry.number <= log.count && log.count - entry.number < ErrorLog::kEntries, "number",
             "is not among the last 64 of 'count'");
    io.number("queue", entry.queue, 0, kAny16);
    io.number("command", entry.command, 0, kAny16);
    io.number("status", entry.status, 1, 0x7FFF);
    io.number("lba", entry.lba, 0, kAny64);
    io.number("nsid", entry.nsid, 0, kAny32);
}

template <class Io>
void describe(Io& io, ErrorLog& log)
{
    io.number("count", log.count, 0, kAny64);
    std::vector<ErrorEntry> entries;
    std::copy_if(log.entries.begin(), log.entries.end(), std::back_inserter(entries),
                 [](const ErrorEntry& entry) { return entry.number != 0; });
    io.list("entries", entries, ErrorLog::kEntries, [&](auto& inner, ErrorEntry& entry) {
        describe(inner, entry, log);
        const bool repeated =
            Io::kReads && std::any_of(entries.begin(), entries.end() - 1,
                                      [&](const ErrorEntry& other) { return other.number == entry.number; });
        inner.check(!repeated, "number", "occurs twice");
    });
    if (Io::kReads && !io.failed()) {
        for (const ErrorEntry& entry : entries) {
            log.entries[(entry.number - 1) % ErrorLog::kEntries] = entry;
        }
    }
}

template <class Io>
void describe(Io& io, Features& features)
{
    for (std::size_t i = 0; i < Features::kCount; ++i) {
        io.number(feature_rules()[i].name, features.values[i], 0, kAny32);
    }
    io.number("under_temperature", features.under_temperature, 0, kAny16);
}

template <class Io>
void describe(Io& io, Clock& clock)
{
    io.number("milliseconds", clock.milliseconds, 0, kMaxMilliseconds);
    io.flag("set", clock.set);
    io.number("uptime_ms", clock.uptime, 0, kMaxMilliseconds);
}

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

// What every NVMe device has. Drives may run firmware without a name.
template <class Io>
void describe_device(Io& io, NvmeFunction& function, bool unnamed_firmware)
{
    io.object("slots", [&](auto& inner) { describe(inner, function.slots, unnamed_firmware); });
    describe(io, function.download);
    io.object("health", [&](auto& inner) { describe(inner, function.health); });
    io.object("errors", [&](auto& inner) { describe(inner, function.errors); });
    io.object("feature_values", [&](auto& inner) { describe(inner, function.features); });
    io.object("clock", [&](auto& inner) { describe(inner, function.clock); });
}

template <class Io>
void describe_own_namespaces(Io& io, Drive& drive);

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
    io.flag("failed", drive.failed);
    io.flag("importable", drive.importable);
    io.list("foreign_namespaces", drive.foreign_namespaces, Controller::kMaxNamespaces,
            [&](auto& inner, ForeignNamespace& ns) { describe(inner, ns, drive); });
    describe_activity(io, drive.activity);
}

template <class Io>
void check_members(Io& io, const VirtualDisk& vd, const Controller& controller)
{
    for (std::size_t i = 0; i < vd.members.size(); ++i) {
        const QRX_U16 pd = vd.members[i];
        if (pd == kMissingMember) {
            continue;
        }
        const std::string name = "PD " + std::to_string(pd);
        io.check(controller.find_drive(pd) != nullptr, "members",
                 "names " + name + ", which is not among the drives; " + std::to_string(kMissingMember) +
                     " marks a missing one");
        io.check(std::find(vd.members.begin(), vd.members.begin() + static_cast<std::ptrdiff_t>(i), pd) ==
                     vd.members.begin() + static_cast<std::ptrdiff_t>(i),
                 "members", "names " + name + " twice");
        for (const VirtualDisk& other : controller.virtual_disks) {
            io.check(&other == &vd || !other.uses(pd), "members",
                     "names " + name + ", which VD " + std::to_string(other.id) + " already uses");
        }
    }
}

QRX_U64 default_sectors(const VirtualDisk& vd, const Controller& controller)
{
    QRX_U64 share = 0;
    for (const QRX_U16 pd : vd.members) {
        const Drive* const drive = controller.find_drive(pd);
        if (drive != nullptr && (share == 0 || drive->sectors < share)) {
            share = drive->sectors;
        }
    }
    return usable_sectors(vd.raid_mode, vd.members.size(), vd.parity_disks, share);
}

template <class Io>
void describe(Io& io, VirtualDisk& vd, const Controller& controller)
{
    io.number("id", vd.id, 0, kMaxVdId);
    if (Io::kReads) {
        vd.name = "VD_" + std::to_string(vd.id);
        const auto& others = controller.virtual_disks;
        io.check(io.has("id"), "id", "is missing");
        io.check(
            std::none_of(others.begin(), others.end() - 1, [&](const VirtualDisk& other) { return other.id == vd.id; }),
            "id", "is the id of an earlier virtual disk");
        io.check(controller.adapter.raid(), "id",
                 "makes no sense: without the feature \"raid\" there are no virtual disks");
    }
    io.text("name", vd.name, sizeof(NVME_VD_Info::Name));
    io.code("status", vd.status, kVdStatusWords);
    io.flag("importable", vd.importable);
    io.code("raid_mode", vd.raid_mode, kRaidModeWords);
    io.numbers("members", vd.members, kVdMembersMax, kAny16);
    io.number("parity_disks", vd.parity_disks, 0, kAny8);
    io.number("stripe", vd.stripe, 0, kAny16);
    if (Io::kReads) {
        check_members(io, vd, controller);
        if (const Drive* const first = vd.members.empty() ? nullptr : controller.find_drive(vd.members.front())) {
            vd.sector_size = first->sector_size;
        }
        vd.sectors = default_sectors(vd, controller);
    }
    io.number("sectors", vd.sectors, 0, kAny64);
    io.number("sector_size", vd.sector_size, 0, kAny16 + 1);
    io.flag("initialized", vd.initialized);
    describe_activity(io, vd.activity);
    const bool rebuilds = vd.activity && vd.activity->type == QRX_NVME_BGA_TYPE_VD_REBUILD;
    if (Io::kReads && rebuilds && !vd.members.empty()) {
        vd.rebuild_target = vd.members.back();
    }
    io.number("rebuild_target", vd.rebuild_target, 0, kAny16);
    io.check(vd.rebuild_target == kMissingMember || (rebuilds && vd.uses(vd.rebuild_target)), "rebuild_target",
             "names a drive that is no member of a virtual disk in rebuild; " + std::to_string(kMissingMember) +
                 " stands for none");
}

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
}

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
void describe(Io& io, PairMailbox& mailbox)
{
    io.flag("pending", mailbox.pending);
    std::vector<QRX_U16> words(mailbox.words.begin(), mailbox.words.end());
    io.numbers("words", words, mailbox.words.size(), kAny16);
    std::copy(words.begin(), words.end(), mailbox.words.begin());
    io.bytes("request", mailbox.request, PairMailbox::kRequestMax);
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

template <class Io>
void describe(Io& io, Controller& controller, const Machine::Parts& machine)
{
    describe_place(io, controller, machine);
    describe_identity(io, controller);
    io.object("adapter", [&](auto& inner) { describe(inner, controller.adapter); });
    io.object("config", [&](auto& inner) { describe(inner, controller.config); });
    io.object("settings", [&](auto& inner) { describe(inner, controller.settings); });
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
    io.object("mailbox", [&](auto& inner) { describe(inner, controller.mailbox); });
    io.object("events", [&](auto& inner) { describe(inner, controller.events); });
    io.number("namespaces_made", controller.namespaces_made, 0, kAny32);
    sort_by(controller.drives, &Drive::id);
    sort_by(controller.virtual_disks, &VirtualDisk::id);
    sort_by(controller.namespaces, &Namespace::nsid);
}

template <class Io>
void describe(Io& io, Ssd& ssd, const Machine::Parts& machine)
{
    describe_place(io, ssd, machine);
    io.number("vendor_id", ssd.vendor_id, 0, kAny16);
    io.number("device_id", ssd.device_id, 0, kAny16);
    io.number("subsystem_vendor_id", ssd.subsystem_vendor_id, 0, kAny16);
    describe_identity(io, ssd);
    io.list("namespaces", ssd.namespaces, 1, [&](auto& inner, Namespace& ns) {
        if (Io::kReads) {
            ns.parent_kind = kNsParentPd;
            ns.sectors = 1000215216;
        }
        describe_nsid(inner, ns, ssd, 1);
        describe_extent(inner, ns);
    });
}

template <class Io>
void describe(Io& io, Machine::Parts& machine)
{
    io.lines("mount_table", machine.mount_table);
    io.list("controllers", machine.controllers, kMaxDevices,
            [&](auto& inner, Controller& controller) { describe(inner, controller, machine); });
    io.list("ssds", machine.ssds, kMaxDevices, [&](auto& inner, Ssd& ssd) { describe(inner, ssd, machine); });
}

}  // namespace

Result<std::unique_ptr<Machine>> load_machine(std::string_view text, std::string_view file)
{
    const Result<JsonTree> tree = parse_json(text, file);
    if (!tree) {
        return Failure{tree.error()};
    }
    if (tree->kind != JsonTree::Kind::kObject) {
        return failure_at(file, tree->line, std::string("a machine must be an object, not ") + tree->kind_name());
    }
    Failure failure;
    Machine::Parts parts;
    JsonReader reader(*tree, file, failure);
    describe(reader, parts);
    reader.finish();
    if (reader.failed()) {
        return failure;
    }
    return std::make_unique<Machine>(std::move(parts));
}

std::string save_machine(const Machine& machine)
{
    JsonTree tree;
    JsonWriter writer(tree);
    Machine::Parts parts = machine.parts();  // a description takes what it describes by reference
    describe(writer, parts);
    return print_json(tree);
}

}  // namespace qrx::sim
