// Firmware images: what is made, and what a device finds in it.
#include "sim/firmware/firmware_image.h"

#include <gtest/gtest.h>

#include "api/src/interface/wire/buffer.h"

namespace qrx::sim {
namespace {

std::vector<QRX_U8> made(const ImagePlan& plan)
{
    Result<std::vector<QRX_U8>> image = make_image(plan);
    EXPECT_TRUE(image) << image.error();
    return *image;
}

QRX_U32 word(std::span<const QRX_U8> bytes, std::size_t offset)
{
    return wire::read<QRX_U32>(bytes, offset).value();
}

QRX_U32 sum_of(std::span<const QRX_U8> image)
{
    QRX_U32 sum = 0;
    for (std::size_t offset = 0; offset < image.size(); offset += 4) {
        sum += word(image, offset);
    }
    return sum;
}

// Whether each component's checksum fits the body at this distance from its header.
std::array<bool, 3> fits(std::span<const QRX_U8> image, std::size_t body)
{
    std::array<bool, 3> good{};
    for (std::size_t i = 0; i < good.size(); ++i) {
        const auto header = image.subspan(0x40000 + i * 0x20000);
        good[i] = word(header, 40) == raw_image_crc(header.subspan(body, word(header, 44)));
    }
    return good;
}

TEST(FirmwareImage, ChecksumsOfTheStandardTestText)
{
    const std::string text = "123456789";
    const std::vector<QRX_U8> bytes(text.begin(), text.end());
    EXPECT_EQ(image_crc(bytes), 0xCBF43926U);
    EXPECT_EQ(raw_image_crc(bytes), 0xD9C60B34U) << "not inverted, its bytes reversed";
    EXPECT_EQ(image_crc({}), 0U);
}

TEST(FirmwareImage, LabelTellsTheVersionAndTheRestIsCheckedAgainstIt)
{
    std::vector<QRX_U8> image = made({"2.5.0.1100", ImageKind::kPlain, 5000, false});
    ASSERT_EQ(image.size(), 5000U);
    const FirmwareContent content{"2.5.1100", "2.5.0.1100", 5000, image_crc(image), false};
    EXPECT_EQ(examine_image(image), content);
    std::vector<QRX_U8> padded = image;
    padded.resize(8192, 0x5A);
    EXPECT_EQ(examine_image(padded), content) << "padding is not counted";
    EXPECT_EQ(examine_image(std::span(image).first(4999)), std::nullopt);
    EXPECT_EQ(examine_image(std::span(image).first(63)), std::nullopt);
    image[64] ^= 1;
    EXPECT_EQ(examine_image(image), std::nullopt);
}

TEST(FirmwareImage, LabelWithoutAVersionIsNone)
{
    std::vector<QRX_U8> image = made({"A", ImageKind::kPlain, 64, false});
    ASSERT_TRUE(examine_image(image));
    image[16] = 0;
    EXPECT_EQ(examine_image(image), std::nullopt) << "empty";
    image[16] = 7;
    EXPECT_EQ(examine_image(image), std::nullopt) << "not printable";
    std::fill_n(image.begin() + 16, 32, QRX_U8{'V'});
    EXPECT_EQ(examine_image(image), std::nullopt) << "no end";
}

TEST(FirmwareImage, ImageWithoutLabelIsCalledAfterItsChecksum)
{
    const std::string text = "123456789";
    const std::vector<QRX_U8> bytes(text.begin(), text.end());
    EXPECT_EQ(examine_image(bytes), (FirmwareContent{"xbf43926", "0.0.52212.14630", 9, 0xCBF43926, false}));
}

TEST(FirmwareImage, RevokedImageSaysSo)
{
    EXPECT_TRUE(examine_image(made({"1.0", ImageKind::kPlain, std::nullopt, true}))->revoked);
    EXPECT_FALSE(examine_image(made({"1.0", ImageKind::kPlain, std::nullopt, false}))->revoked);
}

TEST(FirmwareImage, RawImageSumsToZeroAndFitsOneLayoutAlone)
{
    constexpr std::array<bool, 3> kAll{true, true, true};
    constexpr std::array<bool, 3> kNone{};
    for (const std::string& version : {std::string("2.5.0.1100"), std::string()}) {
        const std::vector<QRX_U8> digit = made({version, ImageKind::kRawDigit, std::nullopt, false});
        const std::vector<QRX_U8> no_digit = made({version, ImageKind::kRawNoDigit, 0x90000, false});
        EXPECT_EQ(digit.size(), 0x83000U);
        EXPECT_EQ(no_digit.size(), 0x90000U);
        EXPECT_EQ(sum_of(digit), 0U);
        EXPECT_EQ(sum_of(no_digit), 0U);
        EXPECT_EQ(fits(digit, 0x80), kAll);
        EXPECT_EQ(fits(digit, 0x40), kNone);
        EXPECT_EQ(fits(no_digit, 0x40), kAll);
        EXPECT_EQ(fits(no_digit, 0x80), kNone);
        EXPECT_EQ(std::string(digit.begin() + 0x60000, digit.begin() + 0x60008), "HALIIMGF");
        EXPECT_EQ(examine_image(digit)->revision, version.empty() ? examine_image(digit)->revision : "2.5.1100");
    }
}

TEST(FirmwareImage, EverySizeIsMadeAndTheSamePlanMakesTheSameBytes)
{
    for (const std::size_t size : {0U, 1U, 3U, 4U, 63U, 64U, 4095U, 4096U, 4097U}) {
        const std::vector<QRX_U8> image = made({"", ImageKind::kPlain, size, false});
        EXPECT_EQ(image.size(), size);
        EXPECT_EQ(image, made({"", ImageKind::kPlain, size, false}));
    }
    EXPECT_EQ(made({"2.5.0.1100", ImageKind::kPlain, 64, false}).size(), 64U);
}

TEST(FirmwareImage, PlansThatCannotBeAreRefused)
{
    EXPECT_EQ(make_image({std::string(32, 'V'), ImageKind::kPlain, std::nullopt, false}).error(),
              "the revision must be at most 31 printable letters");
    EXPECT_EQ(make_image({"a\tb", ImageKind::kPlain, std::nullopt, false}).error(),
              "the revision must be at most 31 printable letters");
    EXPECT_EQ(make_image({"1", ImageKind::kPlain, 63, false}).error(),
              "a revision needs an image of at least 64 bytes");
    EXPECT_EQ(make_image({"1", ImageKind::kRawDigit, 0x82000, false}).error(),
              "a raw image has a multiple of 4096 bytes, at least 536576");
    EXPECT_EQ(make_image({"1", ImageKind::kRawDigit, 0x83001, false}).error(),
              "a raw image has a multiple of 4096 bytes, at least 536576");
    EXPECT_EQ(make_image({"", ImageKind::kPlain, kImageMax + 1, false}).error(), "an image has at most 67108864 bytes");
    EXPECT_EQ(make_image({"", ImageKind::kPlain, 4096, true}).error(),
              "only an image with a revision can be a revoked one");
}

TEST(FirmwareImage, RevisionIsTheVersionWithinEightLetters)
{
    EXPECT_EQ(revision_of("2.5.0.1100"), "2.5.1100");
    EXPECT_EQ(revision_of("LAB1.0.5"), "LAB1.0.5");
    EXPECT_EQ(revision_of("65535.1.2.3"), "65535.1.");
    EXPECT_EQ(revision_of("a long name"), "a long n");
    EXPECT_EQ(parse_version("1.2.3.4"), (Version{1, 2, 3, 4}));
    for (const char* const text :
         {"", "1.2.3", "1.2.3.4.5", "1.2.3.65536", "1.2.3.", "1..2.3", "a.b.c.d", "1.2.3.4 "}) {
        EXPECT_EQ(parse_version(text), std::nullopt) << text;
    }
    EXPECT_EQ(version_text({2, 4, 1, 1063}), "2.4.1.1063");
}

}  // namespace
}  // namespace qrx::sim
