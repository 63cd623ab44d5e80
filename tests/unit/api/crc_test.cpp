// crc32 and its table.
#include "api/src/function/file/common/crc32.h"

#include <gtest/gtest.h>

#include "tests/unit/support/flash_image.h"

namespace {

using namespace qrx::test;

TEST(Crc32, TheTableIsThatOfIeee8023)
{
    for (QRX_U32 index = 0; index < 256; ++index) {
        EXPECT_EQ(crc_tab[index], plainCrc({static_cast<QRX_U8>(index)}, 0)) << index;
    }
}

TEST(Crc32, GivesTheCheckValue)
{
    const std::string text = "123456789";
    const Bytes bytes(text.begin(), text.end());
    EXPECT_EQ(crc32(0xFFFFFFFF, bytes.data(), bytes.size()), ~0xCBF43926U);
    EXPECT_EQ(crc32(0x12345678, bytes.data(), 0), 0x12345678U);
    EXPECT_EQ(crc32(0x12345678, nullptr, 0), 0x12345678U);
}

TEST(Crc32, IsTheSameForEveryLengthAndPlace)
{
    const Bytes bytes = pattern(30000, 5);
    for (const std::size_t length :
         {1U, 7U, 8U, 9U, 63U, 4096U, 9599U, 9600U, 9601U, 9607U, 9608U, 10591U, 10592U, 10600U, 18791U, 29000U}) {
        for (const std::size_t start : {0U, 1U, 5U}) {
            const auto from = bytes.begin() + static_cast<long>(start);
            EXPECT_EQ(crc32(0xDEADBEEF, bytes.data() + start, length),
                      plainCrc(Bytes(from, from + static_cast<long>(length)), 0xDEADBEEF))
                << length << " bytes from " << start;
        }
    }
}

TEST(Crc32, GoesOnWhereItStopped)
{
    const Bytes bytes = pattern(50000, 9);
    const QRX_U32 first = crc32(0xFFFFFFFF, bytes.data(), 20001);
    EXPECT_EQ(crc32(first, bytes.data() + 20001, bytes.size() - 20001), plainCrc(bytes));
}

}  // namespace
