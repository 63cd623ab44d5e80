// The name of a virtual disk as the user types it, and the refusal of commands without RAID.
#include "cli/Public/frame/name.h"

#include <gtest/gtest.h>

#include <array>

#include "api/src/interface/wire/adapter.h"
#include "cli/Public/frame/raid_only.h"
#include "tests/unit/cli/run.h"

namespace {

using namespace qrx::test;

constexpr char kTooLong[] = "-n : length of name should be no more than 16 characters\n";

// The name that was read, and all that was printed.
Outcome reading(const char* word, std::string& name)
{
    return outcomeOf([&] {
        const auto read = qrx::readName(word);
        name = read.value_or("(none)");
        return read ? 1 : 0;
    });
}

class Name : public testing::Test {
protected:
    GlobalsGuard globals;
    std::string name;
};

TEST_F(Name, SixteenCharactersAreTheMost)
{
    EXPECT_EQ(reading("ABCDEFGHIJKLMNOP", name), (Outcome{1, ""}));
    EXPECT_EQ(name, "ABCDEFGHIJKLMNOP");
    EXPECT_EQ(reading("ABCDEFGHIJKLMNOPQ", name), (Outcome{0, kTooLong}));
    EXPECT_EQ(reading(std::string(5000, 'x').c_str(), name), (Outcome{0, kTooLong}));
    EXPECT_EQ(reading("", name), (Outcome{1, ""}));
    EXPECT_EQ(name, "");
}

TEST_F(Name, DoubleQuotesDoNotCount)
{
    EXPECT_EQ(reading("\"ABCDEFG IJKLMNOP\"", name), (Outcome{1, ""}));
    EXPECT_EQ(name, "ABCDEFG IJKLMNOP");
    EXPECT_EQ(reading("\"ABCDEFG IJKLMNOPQ\"", name), (Outcome{0, kTooLong}));
    EXPECT_EQ(reading("\"\"", name), (Outcome{1, ""}));
    EXPECT_EQ(name, "");
}

TEST_F(Name, ASingleQuoteIsRefused)
{
    EXPECT_EQ(reading("'abc'", name), (Outcome{0, "", "Please use double quotation mark to include strings.\n"}));
}

TEST_F(Name, DigitsLettersBlanksAndUnderscoresMakeANameAndNothingElseDoes)
{
    for (int c = 1; c < 256; ++c) {
        const std::string text{'a', static_cast<char>(c)};
        const bool good =
            (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == ' ' || c == '_';
        const Outcome expected =
            good ? Outcome{1, ""}
                 : Outcome{0, "-n, name must be numeric, character, space or underline. Now is " + text + "\n"};
        EXPECT_EQ(outcomeOf([&] { return qrx::checkName(text) ? 1 : 0; }), expected) << c;
    }
    EXPECT_TRUE(qrx::checkName(""));
}

TEST_F(Name, TheFieldHasZerosBehindTheName)
{
    std::array<QRX_U8, 16> field{};
    field.fill(0xEE);
    qrx::storeName("ABC", field);
    EXPECT_EQ(field, (std::array<QRX_U8, 16>{'A', 'B', 'C'}));
    qrx::storeName("ABCDEFGHIJKLMNOP", field);
    EXPECT_EQ(field,
              (std::array<QRX_U8, 16>{'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H', 'I', 'J', 'K', 'L', 'M', 'N', 'O', 'P'}));
}

TEST(RaidOnly, OnlyTheCurrentControllerIsAsked)
{
    GlobalsGuard globals;
    std::array<NVME_Adapter_Info, 2> records{};
    records[0].Features = kFeatureRaid;
    g_pAdInfos = records.data();
    gNumAdaptersFound = 2;
    gCurrentAdapter = 0;
    const auto asked = [] { return outcomeOf([] { return qrx::refusedInJbof() ? qrx::kJbofResult : 0; }); };
    EXPECT_EQ(asked(), (Outcome{0, ""}));
    gCurrentAdapter = 1;
    EXPECT_EQ(asked(), (Outcome{34, "This feature is not support JBOF.\n"}));
}

}  // namespace
