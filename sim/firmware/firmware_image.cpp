#include "sim/firmware/firmware_image.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdio>
#include <cstring>

#include "api/src/interface/wire/buffer.h"
#include "sim/firmware/text.h"

namespace qrx::sim {

namespace {

constexpr std::array<QRX_U8, 8> kMagic{'Q', 'R', 'X', 'S', 'I', 'M', 'F', 'W'};
constexpr std::size_t kLabelSize = 64;
constexpr std::size_t kLengthAt = 8;
constexpr std::size_t kCrcAt = 12;
constexpr std::size_t kVersionAt = 16;
constexpr std::size_t kFlagsAt = 48;
constexpr std::size_t kBalanceAt = 60;
constexpr QRX_U32 kRevoked = 1;

// A raw image: three components, each with a header at its place.
constexpr std::array<std::size_t, 3> kComponents{0x40000, 0x60000, 0x80000};
constexpr std::array<QRX_U32, 3> kComponentSizes{0x1000, 0x1804, 0x2008};
constexpr std::array<QRX_U8, 8> kComponentSignature{'H', 'A', 'L', 'I', 'I', 'M', 'G', 'F'};
constexpr std::size_t kComponentCrcAt = 40;
constexpr std::size_t kComponentSizeAt = 44;
constexpr std::size_t kRawBlock = 4096;
constexpr std::size_t kRawLeast = 0x83000;
constexpr std::size_t kPlainDefault = 65536;

constexpr auto kCrcTable = [] {
    std::array<QRX_U32, 256> table{};
    for (QRX_U32 i = 0; i < table.size(); ++i) {
        QRX_U32 value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value >> 1) ^ ((value & 1) != 0 ? 0xEDB88320U : 0U);
        }
        table[i] = value;
    }
    return table;
}();

QRX_U32 crc_register(std::span<const QRX_U8> bytes)
{
    QRX_U32 value = 0xFFFFFFFF;
    for (const QRX_U8 byte : bytes) {
        value = (value >> 8) ^ kCrcTable[(value ^ byte) & 0xFF];
    }
    return value;
}

QRX_U32 word_at(std::span<const QRX_U8> bytes, std::size_t offset)
{
    return wire::read<QRX_U32>(bytes, offset).value();
}

void put_word(std::span<QRX_U8> bytes, std::size_t offset, QRX_U32 value)
{
    (void)wire::write(bytes, offset, value);  // the caller has seen to the room
}

// Bytes that look arbitrary.
void fill(std::span<QRX_U8> bytes, QRX_U64 seed)
{
    for (QRX_U8& byte : bytes) {
        seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
        byte = static_cast<QRX_U8>(seed >> 56);
    }
}

void put_components(std::span<QRX_U8> image, std::size_t body_offset)
{
    for (std::size_t i = 0; i < kComponents.size(); ++i) {
        const auto header = image.subspan(kComponents[i]);
        std::copy(kComponentSignature.begin(), kComponentSignature.end(), header.begin());
        put_word(header, kComponentCrcAt, raw_image_crc(header.subspan(body_offset, kComponentSizes[i])));
        put_word(header, kComponentSizeAt, kComponentSizes[i]);
    }
}

void put_label(std::span<QRX_U8> image, const ImagePlan& plan)
{
    std::fill_n(image.begin(), kLabelSize, QRX_U8{0});
    std::copy(kMagic.begin(), kMagic.end(), image.begin());
    put_word(image, kLengthAt, static_cast<QRX_U32>(image.size()));
    put_word(image, kCrcAt, image_crc(image.subspan(kLabelSize)));
    std::copy(plan.version.begin(), plan.version.end(), image.begin() + kVersionAt);
    put_word(image, kFlagsAt, plan.revoked ? kRevoked : 0);
}

// Makes the words of the image sum to 0.
void balance(std::span<QRX_U8> image)
{
    put_word(image, kBalanceAt, 0);
    QRX_U32 sum = 0;
    for (std::size_t offset = 0; offset < image.size(); offset += sizeof(QRX_U32)) {
        sum += word_at(image, offset);
    }
    put_word(image, kBalanceAt, 0U - sum);
}

bool printable(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char letter) { return letter >= ' ' && letter <= '~'; });
}

}  // namespace

QRX_U32 image_crc(std::span<const QRX_U8> bytes)
{
    return ~crc_register(bytes);
}

QRX_U32 raw_image_crc(std::span<const QRX_U8> bytes)
{
    const QRX_U32 value = crc_register(bytes);
    return value << 24 | (value & 0xFF00) << 8 | (value >> 8 & 0xFF00) | value >> 24;
}

std::optional<FirmwareContent> examine_image(std::span<const QRX_U8> image)
{
    FirmwareContent content;
    if (image.size() < kMagic.size() || !std::equal(kMagic.begin(), kMagic.end(), image.begin())) {
        content.size = static_cast<QRX_U32>(image.size());
        content.crc = image_crc(image);
        std::array<char, 16> text{};
        (void)std::snprintf(text.data(), text.size(), "x%07x", content.crc & 0xFFFFFFF);
        content.revision = text.data();
        content.version =
            version_text({0, 0, static_cast<QRX_U16>(content.crc >> 16), static_cast<QRX_U16>(content.crc)});
        return content;
    }
    if (image.size() < kLabelSize) {
        return std::nullopt;
    }
    content.size = word_at(image, kLengthAt);
    if (content.size < kLabelSize || content.size > image.size()) {
        return std::nullopt;
    }
    image = image.first(content.size);
    const auto text = image.subspan(kVersionAt, kVersionMax + 1);
    const auto end = std::find(text.begin(), text.end(), QRX_U8{0});
    content.version.assign(text.begin(), end);
    if (end == text.begin() || end == text.end() || !printable(content.version) ||
        word_at(image, kCrcAt) != image_crc(image.subspan(kLabelSize))) {
        return std::nullopt;
    }
    content.revision = revision_of(content.version);
    content.crc = image_crc(image);
    content.revoked = (word_at(image, kFlagsAt) & kRevoked) != 0;
    return content;
}

std::string revision_of(std::string_view version)
{
    if (version.size() <= kRevisionMax) {
        return std::string(version);
    }
    std::string text(version);
    if (const auto numbers = parse_version(version)) {
        text = std::to_string(numbers->major) + "." + std::to_string(numbers->minor) + "." +
               std::to_string(numbers->build);
    }
    return text.substr(0, kRevisionMax);
}

std::optional<Version> parse_version(std::string_view text)
{
    std::array<QRX_U16, 4> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i != 0) {
            if (text.empty() || text.front() != '.') {
                return std::nullopt;
            }
            text.remove_prefix(1);
        }
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), numbers[i]);
        if (error != std::errc()) {
            return std::nullopt;
        }
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    }
    return text.empty() ? std::optional(Version{numbers[0], numbers[1], numbers[2], numbers[3]}) : std::nullopt;
}

std::string version_text(const Version& version)
{
    return std::to_string(version.major) + "." + std::to_string(version.minor) + "." + std::to_string(version.oem) +
           "." + std::to_string(version.build);
}

Result<std::vector<QRX_U8>> make_image(const ImagePlan& plan)
{
    const bool raw = plan.kind != ImageKind::kPlain;
    const std::size_t size = plan.size.value_or(raw ? kRawLeast : kPlainDefault);
    if (plan.version.size() > kVersionMax || !printable(plan.version)) {
        return Failure{"the revision must be at most " + std::to_string(kVersionMax) + " printable letters"};
    }
    if (raw && (size < kRawLeast || size % kRawBlock != 0)) {
        return Failure{"a raw image has a multiple of " + std::to_string(kRawBlock) + " bytes, at least " +
                       std::to_string(kRawLeast)};
    }
    if (size > kImageMax) {
        return Failure{"an image has at most " + std::to_string(kImageMax) + " bytes"};
    }
    if (!plan.version.empty() && size < kLabelSize) {
        return Failure{"a revision needs an image of at least " + std::to_string(kLabelSize) + " bytes"};
    }
    if (plan.revoked && plan.version.empty()) {
        return Failure{"only an image with a revision can be a revoked one"};
    }
    std::vector<QRX_U8> image(size);
    fill(image, stable_hash(plan.version, size));
    if (raw) {
        put_components(image, plan.kind == ImageKind::kRawDigit ? 0x80 : 0x40);
    }
    if (!plan.version.empty()) {
        put_label(image, plan);
    }
    if (raw) {
        balance(image);
    }
    return image;
}

}  // namespace qrx::sim
