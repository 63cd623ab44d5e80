// Firmware images: what a device finds in one, and how one is made for tests and demonstrations.
//
// An image of ours begins with a label, 64 bytes, all integers little-endian:
//    0   8  "QRXSIMFW"
//    8   4  length of the whole image in bytes; what a host sends behind it is padding
//   12   4  CRC-32 of the bytes 64 to the end
//   16  32  version, text with zeros behind it
//   48   4  flags; bit 0: revoked, no device lets it run
//   52   8  zeros
//   60   4  any value; a raw image has here what makes the sum of its words 0
// An image without a label is taken as it comes, and has a revision made from its CRC-32.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "api/src/interface/wire/types.h"
#include "sim/firmware/adapter.h"
#include "sim/firmware/result.h"

namespace qrx::sim {

// The IEEE CRC-32, as zlib reckons it.
[[nodiscard]] QRX_U32 image_crc(std::span<const QRX_U8> bytes);
// The CRC of raw images: the register as it stands at the end, not inverted, with its bytes reversed.
[[nodiscard]] QRX_U32 raw_image_crc(std::span<const QRX_U8> bytes);

inline constexpr std::size_t kRevisionMax = 8;  // letters of a firmware revision
inline constexpr std::size_t kVersionMax = 31;  // letters of a version in a label

// What a device keeps of an image in a slot.
struct FirmwareContent {
    std::string revision;  // as Identify and the slot log show it; empty: nothing in the slot
    std::string version;   // in full, such as "2.5.0.1100"; empty: not known
    QRX_U32 size = 0;      // bytes, without padding; 0: not known
    QRX_U32 crc = 0;       // image_crc of those bytes
    bool revoked = false;

    friend bool operator==(const FirmwareContent&, const FirmwareContent&) = default;
};

// What is in the image, or nothing when its label does not fit what stands behind it.
[[nodiscard]] std::optional<FirmwareContent> examine_image(std::span<const QRX_U8> image);

// "2.5.0.1100" is the revision "2.5.1100"; a version of at most 8 letters is the revision itself.
[[nodiscard]] std::string revision_of(std::string_view version);
// The numbers of "2.5.0.1100", or nothing for a text of another form.
[[nodiscard]] std::optional<Version> parse_version(std::string_view text);
[[nodiscard]] std::string version_text(const Version& version);

enum class ImageKind {
    kPlain,
    kRawDigit,    // a raw flash picture whose components begin behind header and digest
    kRawNoDigit,  // one whose components begin right behind their headers
};

struct ImagePlan {
    std::string version;  // empty: no label
    ImageKind kind = ImageKind::kPlain;
    std::optional<std::size_t> size;  // bytes
    bool revoked = false;
};

inline constexpr std::size_t kImageMax = std::size_t{64} << 20U;

// Makes the image, the same bytes for the same plan. A failure says what is allowed.
[[nodiscard]] Result<std::vector<QRX_U8>> make_image(const ImagePlan& plan);

}  // namespace qrx::sim
