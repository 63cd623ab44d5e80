#include "sim/firmware/aer.h"

#include <algorithm>
#include <array>

namespace qrx::sim {

namespace {

struct Error {
    const char* word;
    bool correctable;
    unsigned bit;
    bool has_header;  // the packet at fault is known
};

constexpr auto kErrors = std::to_array<Error>({
    {"receiver", true, 0, false},
    {"bad-tlp", true, 6, false},
    {"bad-dllp", true, 7, false},
    {"replay-rollover", true, 8, false},
    {"replay-timeout", true, 12, false},
    {"advisory", true, 13, false},
    {"corrected-internal", true, 14, false},
    {"header-log-overflow", true, 15, false},
    {"data-link-protocol", false, 4, false},
    {"poisoned-tlp", false, 12, true},
    {"flow-control", false, 13, false},
    {"completion-timeout", false, 14, false},
    {"completer-abort", false, 15, true},
    {"unexpected-completion", false, 16, true},
    {"receiver-overflow", false, 17, false},
    {"malformed-tlp", false, 18, true},
    {"ecrc", false, 19, true},
    {"unsupported-request", false, 20, true},
    {"acs-violation", false, 21, true},
    {"uncorrectable-internal", false, 22, false},
    {"blocked-multicast", false, 23, true},
    {"blocked-atomic", false, 24, true},
    {"blocked-prefix", false, 25, true},
});

constexpr QRX_U32 kFirstErrorBits = 0x1F;
constexpr QRX_U32 kPrefixLogged = 1U << 11;
constexpr unsigned kBlockedPrefix = 25;
// A read of memory by the drive: bytes 3 to 0 of the header, 7 to 4, 11 to 8, 15 to 12.
constexpr std::array<QRX_U8, 16> kHeader{0x20, 0x00, 0x00, 0x20, 0xFF, 0x07, 0x00, 0x01,
                                         0x01, 0x00, 0x00, 0x00, 0x00, 0x40, 0x3A, 0x7C};
constexpr std::array<QRX_U8, 4> kPrefix{0x34, 0x12, 0x00, 0x91};

}  // namespace

AER_Data aer_record(const ConfigSpace& space)
{
    AER_Data record{};
    record.AERID = space.dword(ConfigSpace::kAerAt);
    record.AERUCES = space.uncorrectable;
    record.AERUCEM = space.uncorrectable_mask;
    record.AERUCESEV = space.severity;
    record.AERCS = space.correctable;
    record.AERCEM = space.correctable_mask;
    record.AERCC = space.aer_control;
    std::copy(space.header_log.begin(), space.header_log.end(), std::begin(record.AERHL));
    std::copy(space.prefix_log.begin(), space.prefix_log.end(), std::begin(record.AERTLP));
    return record;
}

bool put_aer_error(ConfigSpace& space, std::string_view word)
{
    if (word == "none") {
        space.uncorrectable = 0;
        space.correctable = 0;
        space.aer_control &= ~(kFirstErrorBits | kPrefixLogged);
        space.header_log.fill(0);
        space.prefix_log.fill(0);
        return true;
    }
    const auto* const error =
        std::find_if(kErrors.begin(), kErrors.end(), [word](const Error& row) { return row.word == word; });
    if (error == kErrors.end()) {
        return false;
    }
    const QRX_U32 bit = 1U << error->bit;
    if (error->correctable) {
        space.correctable |= bit;
        return true;
    }
    if (space.uncorrectable == 0) {  // the first one is kept with its packet
        space.aer_control = (space.aer_control & ~kFirstErrorBits) | error->bit;
        space.header_log = error->has_header ? kHeader : decltype(space.header_log){};
        if (error->bit == kBlockedPrefix) {
            space.aer_control |= kPrefixLogged;
            std::copy(kPrefix.begin(), kPrefix.end(), space.prefix_log.begin());
        }
    }
    space.uncorrectable |= bit;
    return true;
}

std::string aer_errors()
{
    std::string text;
    for (const Error& row : kErrors) {
        text += std::string(row.word) + ", ";
    }
    return text + "none";
}

}  // namespace qrx::sim
