// The splitter of shell lines and the remover of double quotes.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "tests/unit/cli/run.h"

namespace {

using qrx::test::Outcome;
using qrx::test::outcomeOf;

struct Parsed {
    int result;
    std::vector<std::string> words;
    bool operator==(const Parsed&) const = default;
    friend std::ostream& operator<<(std::ostream& os, const Parsed& p)
    {
        os << p.result << ":";
        for (const auto& word : p.words) {
            os << " [" << word << "]";
        }
        return os;
    }
};

Parsed split(std::string line)
{
    std::array<char*, kMaxWords> argv{};
    int num = -1;
    const int result = parse(&num, argv.data(), line.data());
    return {result, {argv.begin(), argv.begin() + num}};
}

TEST(Parse, AnEmptyLineHasNoWords)
{
    EXPECT_EQ(split(""), (Parsed{1, {}}));
}

TEST(Parse, BlanksAndTabsPartWords)
{
    EXPECT_EQ(split("info"), (Parsed{1, {"info"}}));
    EXPECT_EQ(split("info -o\thba"), (Parsed{1, {"info", "-o", "hba"}}));
    EXPECT_EQ(split("a    b"), (Parsed{1, {"a", "b"}}));
}

TEST(Parse, ATabBehindASeparatorMakesAnEmptyWord)
{
    EXPECT_EQ(split("a\t\tb"), (Parsed{1, {"a", "", "b"}}));
    EXPECT_EQ(split("a \tb"), (Parsed{1, {"a", "", "b"}}));
    EXPECT_EQ(split("a\t b"), (Parsed{1, {"a", "b"}}));
}

TEST(Parse, ALeadingSeparatorMakesAnEmptyFirstWord)
{
    EXPECT_EQ(split(" help"), (Parsed{1, {"", "help"}}));
    EXPECT_EQ(split("   "), (Parsed{1, {""}}));
    EXPECT_EQ(split("\t"), (Parsed{1, {""}}));
}

TEST(Parse, TrailingSeparatorsMakeNoWord)
{
    EXPECT_EQ(split("a   "), (Parsed{1, {"a"}}));
    EXPECT_EQ(split("a\t"), (Parsed{1, {"a"}}));
}

TEST(Parse, QuotesKeepBlanksAndStay)
{
    EXPECT_EQ(split("-n \"My NQN\""), (Parsed{1, {"-n", "\"My NQN\""}}));
    EXPECT_EQ(split("\"ab\"cd e"), (Parsed{1, {"\"ab\"cd", "e"}}));
    EXPECT_EQ(split("x\"a b\"y\"c\td\""), (Parsed{1, {"x\"a b\"y\"c\td\""}}));
    EXPECT_EQ(split("\"\""), (Parsed{1, {"\"\""}}));
    EXPECT_EQ(split("\"a\" b"), (Parsed{1, {"\"a\"", "b"}}));
}

TEST(Parse, SingleQuotesAndBackslashesMeanNothing)
{
    EXPECT_EQ(split("'a b'"), (Parsed{1, {"'a", "b'"}}));
    EXPECT_EQ(split("a\\\"b c\""), (Parsed{1, {"a\\\"b c\""}}));
}

TEST(Parse, AnUnclosedQuoteIsRefused)
{
    EXPECT_EQ(split("help \"unclosed"), (Parsed{0, {"help"}}));
    EXPECT_EQ(split("\""), (Parsed{0, {}}));
    EXPECT_EQ(split("a \"b\" \""), (Parsed{0, {"a", "\"b\""}}));
}

TEST(Parse, SixtyFourWordsFitAndOneMoreIsRefused)
{
    std::string line;
    for (int i = 0; i < kMaxWords; ++i) {
        line += "w ";
    }
    EXPECT_EQ(split(line).result, 1);
    EXPECT_EQ(split(line).words.size(), 64U);
    EXPECT_EQ(split(line + "x").result, -1);
    EXPECT_EQ(split(line + "x").words.size(), 64U);
    EXPECT_EQ(split(line + "\"x\"").result, -1);
    EXPECT_EQ(split(line + "\t\t").result, -1);
}

// noQuoteStrncpy into 32 bytes of 'z' behind a zeroed head, so that each byte written shows.
struct Copied {
    Outcome outcome;
    std::string bytes;
};
Copied copyOf(std::string source, std::size_t zeroed = 32)
{
    std::array<char, 32> desc{};
    std::fill(desc.begin() + static_cast<long>(zeroed), desc.end(), 'z');
    const int length = static_cast<int>(source.size());
    auto outcome = outcomeOf([&] { return noQuoteStrncpy(desc.data(), source.data(), length); });
    return {outcome, {desc.begin(), desc.end()}};
}
std::string bytes(std::string head, std::size_t zeroed = 32)
{
    head.resize(zeroed, '\0');
    head.resize(32, 'z');
    return head;
}

TEST(NoQuoteStrncpy, CopiesPlainTextWithATerminator)
{
    EXPECT_EQ(copyOf("abc", 0).bytes, bytes(std::string("abc\0", 4), 4));
    EXPECT_EQ(copyOf("abc", 0).outcome, (Outcome{0, ""}));
    EXPECT_EQ(copyOf("", 0).bytes, bytes("", 1));
}

TEST(NoQuoteStrncpy, DropsEnclosingQuotesAndTerminatesOneByteFurther)
{
    EXPECT_EQ(copyOf("\"My NQN\"").bytes, bytes("My NQN"));
    EXPECT_EQ(copyOf("\"ab\"", 0).bytes, bytes(std::string("abz\0", 4), 4));
    EXPECT_EQ(copyOf("\"\"", 0).bytes, bytes(std::string("z\0", 2), 2));
}

TEST(NoQuoteStrncpy, KeepsAQuoteThatDoesNotEncloseTheText)
{
    EXPECT_EQ(copyOf("\"ab\"c").bytes, bytes("\"ab\"c"));
    EXPECT_EQ(copyOf("a\"b\"").bytes, bytes("a\"b\""));
}

TEST(NoQuoteStrncpy, AQuoteAloneIsAnEmptyText)
{
    EXPECT_EQ(copyOf("\"", 0).bytes, bytes("", 1));
}

TEST(NoQuoteStrncpy, RefusesASingleQuoteOnStandardOutput)
{
    const Copied copied = copyOf("'abc'", 0);
    EXPECT_EQ(copied.outcome, (Outcome{1, "", "Please use double quotation mark to include strings.\n"}));
    EXPECT_EQ(copied.bytes, std::string(32, 'z'));
}

TEST(NoQuoteCopy, StaysInsideTheBuffer)
{
    for (const char* const word : {"aaaaaaaaaaaaaaaaaaaa", "\"bbbbbbbbbbbbbbbbbbbb\"", "\"bbbbb\"", "\"", "\"\""}) {
        std::array<char, 16> desc{};
        qrx::noQuoteCopy(std::span(desc).first(8), word);
        EXPECT_EQ(std::string(desc.begin() + 8, desc.end()), std::string(8, '\0')) << word;
        EXPECT_LT(std::string(desc.data()).size(), 8U);
    }
}

}  // namespace
