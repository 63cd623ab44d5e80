// The text form of what every NVMe device has: firmware slots, health, error log, features and a clock.
#include <algorithm>
#include <iterator>

#include "sim/firmware/describe.h"

namespace qrx::sim {

namespace {

constexpr auto kNeedWords = std::to_array<JsonWord>({{FirmwareSlots::kNothing, "nothing"},
                                                     {FirmwareSlots::kControllerReset, "controller-reset"},
                                                     {FirmwareSlots::kSubsystemReset, "subsystem-reset"},
                                                     {FirmwareSlots::kConventionalReset, "conventional-reset"}});

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
    io.number("throttle1_count", health.throttle1_count, 0, kAny32);
    io.number("throttle2_count", health.throttle2_count, 0, kAny32);
    io.number("throttle1_seconds", health.throttle1_seconds, 0, kAny32);
    io.number("throttle2_seconds", health.throttle2_seconds, 0, kAny32);
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

}  // namespace

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

template void describe_device(JsonReader&, NvmeFunction&, bool);
template void describe_device(JsonWriter&, NvmeFunction&, bool);

}  // namespace qrx::sim
