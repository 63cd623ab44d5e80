// The text form of what a controller says of itself, and of what an administrator has set in it.
#include "sim/firmware/describe.h"

namespace qrx::sim {

namespace {

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

}  // namespace

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
    io.flag("protection", settings.protection);
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

template void describe(JsonReader&, Adapter&);
template void describe(JsonWriter&, Adapter&);
template void describe(JsonReader&, AdapterConfig&);
template void describe(JsonWriter&, AdapterConfig&);
template void describe(JsonReader&, HbaSettings&);
template void describe(JsonWriter&, HbaSettings&);

}  // namespace qrx::sim
