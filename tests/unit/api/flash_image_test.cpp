// The arithmetic checks of a firmware image.
#include "api/src/function/flash/common/image.h"

#include <gtest/gtest.h>

#include "tests/unit/support/flash_image.h"

namespace {

using namespace qrx::test;

QRX_U32 sizeOf(const Bytes& bytes)
{
    return static_cast<QRX_U32>(bytes.size());
}

TEST(FirmwareImage, TheCrcIsTheRegisterWithItsBytesReversed)
{
    const std::string text = "123456789";
    const Bytes bytes(text.begin(), text.end());
    EXPECT_EQ(crcMake(bytes.data(), sizeOf(bytes)), 0xD9C60B34U);  // ~0xCBF43926 is 0x340BC6D9
    EXPECT_EQ(crcMake(bytes.data(), 0), 0xFFFFFFFFU);
    const Bytes longer = pattern(100000);
    EXPECT_EQ(crcMake(longer.data(), sizeOf(longer)), headerCrc(longer));
}

TEST(FirmwareImage, TheSumIsThatOfItsWords)
{
    Bytes image(8192);
    EXPECT_EQ(checksumResult(image.data(), sizeOf(image)), 0U);
    put32(image, 0, 0x01020304);
    put32(image, 8188, 0xFF000000);
    EXPECT_EQ(checksumResult(image.data(), sizeOf(image)), 0x00020304U);
    image = pattern(8192);
    EXPECT_EQ(checksumResult(image.data(), sizeOf(image)), sumOf(image));
    setSum(image);
    EXPECT_EQ(checksumResult(image.data(), sizeOf(image)), 0U);
}

TEST(FirmwareImage, ASizeThatIsNoMultipleOfAPageHasSumOne)
{
    const Bytes image(8192);
    for (const QRX_U32 size : {1U, 4U, 4095U, 4097U, 4100U, 8191U}) {
        EXPECT_EQ(checksumResult(image.data(), size), 1U) << size;
    }
    EXPECT_EQ(checksumResult(image.data(), 4096), 0U);
    EXPECT_EQ(checksumResult(image.data(), 0), 0U);
}

TEST(FirmwareImage, AComponentIsGoodWhenItsCrcFits)
{
    Bytes image = rawImage({0x40, 0x40, 0x80});
    const auto check = [&](QRX_U32 header, QRX_U32 body) {
        return fwImgCheck(image.data(), sizeOf(image), header, header + body);
    };
    EXPECT_EQ(check(0x40000, 0x40), 0);
    EXPECT_EQ(check(0x40000, 0x80), 1);
    EXPECT_EQ(check(0x80000, 0x40), 1);
    EXPECT_EQ(check(0x80000, 0x80), 0);
    ++image[0x40040 + kBody];  // behind the body
    EXPECT_EQ(check(0x40000, 0x40), 0);
    ++image[0x40040 + kBody - 1];
    EXPECT_EQ(check(0x40000, 0x40), 1);
}

TEST(FirmwareImage, TheSignatureDecidesNothing)
{
    Bytes image = rawImage({0x40, 0x40, 0x40});
    const std::string signature = "HALIIMGF";
    for (const std::string& text : {signature, std::string("whatever")}) {
        std::copy(text.begin(), text.end(), image.begin() + 0x60000);
        EXPECT_EQ(fwImgCheck(image.data(), sizeOf(image), 0x60000, 0x60040), 0) << text;
    }
    ++image[0x60000 + 40];
    std::copy(signature.begin(), signature.end(), image.begin() + 0x60000);
    EXPECT_EQ(fwImgCheck(image.data(), sizeOf(image), 0x60000, 0x60040), 1);
}

TEST(FirmwareImage, NothingIsReadBeyondTheEnd)
{
    Bytes image = pattern(0x200);
    const auto check = [&](QRX_U32 size, QRX_U32 header, QRX_U32 body) {
        return fwImgCheck(image.data(), size, header, body);
    };
    put32(image, 44, 0x1C0);  // up to the very end
    put32(image, 40, headerCrc(Bytes(image.begin() + 0x40, image.end())));
    EXPECT_EQ(check(0x200, 0, 0x40), 0);
    EXPECT_EQ(check(0x1FF, 0, 0x40), 1);
    for (const QRX_U32 length : {0x1C1U, 0xFFFFFFFFU, 0xFFFFFFC0U, 0x80000000U}) {
        put32(image, 44, length);
        EXPECT_EQ(check(0x200, 0, 0x40), 1) << length;
    }
    EXPECT_EQ(check(63, 0, 63), 1);  // no whole header
    EXPECT_EQ(check(0, 0, 0), 1);
    EXPECT_EQ(check(0x200, 0x1C1, 0x200), 1);  // the header runs over the end
    EXPECT_EQ(check(0x200, 0, 0x201), 1);      // the body starts behind the end
    EXPECT_EQ(check(0x200, 0xFFFFFFF0, 0), 1);
    put32(image, 44, 0);
    put32(image, 40, 0xFFFFFFFF);
    EXPECT_EQ(check(0x200, 0, 0x200), 0);  // an empty body at the end
}

TEST(FirmwareImage, OneLayoutMustFitAllComponents)
{
    for (const std::size_t ccp : {0x40U, 0x80U}) {
        for (const std::size_t dqp : {0x40U, 0x80U}) {
            for (const std::size_t mep : {0x40U, 0x80U}) {
                const Bytes image = rawImage({ccp, dqp, mep});
                EXPECT_EQ(qrx::componentsFit(image.data(), sizeOf(image)), ccp == dqp && dqp == mep)
                    << ccp << " " << dqp << " " << mep;
            }
        }
    }
}

}  // namespace
