// Text that comes from a device, on its way to a terminal.
#include "cli/Public/frame/device_text.h"

#include <gtest/gtest.h>

#include "tests/unit/support/bytes.h"

namespace {

using qrx::fieldText;
using qrx::printable;
using qrx::test::Bytes;

Bytes bytes(std::string_view text)
{
    return {text.begin(), text.end()};
}

TEST(DeviceText, OfAllBytesThePrintableOnesPass)
{
    for (int byte = 0; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        EXPECT_EQ(printable(one), byte >= 0x20 && byte <= 0x7E ? one : "?") << byte;
    }
}

TEST(DeviceText, KeepsItsLengthAndTakesAnyFiller)
{
    EXPECT_EQ(printable("\x1b[2J\xc2\x9b\t\x7f ~", ' '), " [2J     ~");
    EXPECT_EQ(printable(std::string_view("a\0b", 3)), "a?b");
    EXPECT_EQ(printable(""), "");
}

TEST(DeviceText, AFieldEndsAtAZeroByteOrAtItsEnd)
{
    EXPECT_EQ(fieldText(bytes("Model  ")), "Model  ");
    EXPECT_EQ(fieldText(bytes(std::string_view("Mo\0del", 6))), "Mo");
    EXPECT_EQ(fieldText(Bytes{}), "");
    EXPECT_EQ(fieldText(Bytes(8)), "");
    EXPECT_EQ(fieldText(bytes("a\x1b]0;x\x07z")), "a?]0;x?z");
}

TEST(DeviceText, OfLeadingBlanksTheFirstOnesGo)
{
    EXPECT_EQ(fieldText(bytes("   x ")), "   x ");
    EXPECT_EQ(fieldText(bytes("   x "), 2), " x ");
    EXPECT_EQ(fieldText(bytes("   x "), 99), "x ");
    EXPECT_EQ(fieldText(bytes("    "), 4), "");
    EXPECT_EQ(fieldText(bytes(" \t x"), 9), "? x");
}

}  // namespace
