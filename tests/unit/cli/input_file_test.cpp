// The file whose content a command sends.
#include "cli/Public/frame/input_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "cli/Public/frame/output_file.h"
#include "cli/Public/utility.h"
#include "tests/unit/cli/run.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

Command_Info row()
{
    return {"word", 5, nullptr, "\n", ":", 1};
}

class InputFileTest : public testing::Test {
protected:
    // What is said of it, and the return value.
    Outcome refusal()
    {
        return outcomeOf([this] {
            Command_Info mine = row();
            return input.refuse(&mine);
        });
    }

    Scratch scratch;
    qrx::InputFile input;
    std::array<QRX_U8, 8> space{};
};

TEST_F(InputFileTest, GivesTheContentAndItsLength)
{
    ASSERT_TRUE(input.open(scratch.file("f", std::string("a\0b\n", 4)).c_str()));
    EXPECT_EQ(input.read(space), 4U);
    EXPECT_EQ(space, (std::array<QRX_U8, 8>{'a', 0, 'b', '\n', 0, 0, 0, 0}));
}

TEST_F(InputFileTest, MayFillTheSpaceButNotMore)
{
    ASSERT_TRUE(input.open(scratch.file("f", "12345678").c_str()));
    EXPECT_EQ(input.read(space), 8U);
    const std::string longer = scratch.file("g", "123456789");
    ASSERT_TRUE(input.open(longer.c_str()));
    EXPECT_EQ(input.read(space), std::nullopt);
    EXPECT_EQ(refusal(), (Outcome{1, "word: '" + longer + "' has more than 8 bytes\n"}));
}

TEST_F(InputFileTest, MayBeEmpty)
{
    ASSERT_TRUE(input.open(scratch.file("f", "").c_str()));
    EXPECT_EQ(input.read(space), 0U);
}

TEST_F(InputFileTest, OfALongOneTheBeginningCanBeRead)
{
    ASSERT_TRUE(input.open(scratch.file("f", "123").c_str()));
    EXPECT_EQ(input.readUpTo(space), 3U);
    EXPECT_EQ(space, (std::array<QRX_U8, 8>{'1', '2', '3', 0, 0, 0, 0, 0}));
    ASSERT_TRUE(input.open(scratch.file("g", "abcdefghijk").c_str()));
    EXPECT_EQ(input.readUpTo(std::span<QRX_U8>(space).first(5)), 5U);
    EXPECT_EQ(input.readUpTo({}), 0U);
    EXPECT_EQ(input.readUpTo(space), 6U) << "it goes on where it was";
    EXPECT_EQ(space, (std::array<QRX_U8, 8>{'f', 'g', 'h', 'i', 'j', 'k', 0, 0}));
    ASSERT_TRUE(input.open("/dev/zero"));
    EXPECT_EQ(input.readUpTo(space), 8U) << "it has no end";
}

TEST_F(InputFileTest, ItsHeadIsWhatFitsAndTellsOfTheRest)
{
    ASSERT_TRUE(input.open(scratch.file("f", "1234").c_str()));
    const auto all = input.readHead(space);
    ASSERT_TRUE(all);
    EXPECT_EQ(all->held, 4U);
    EXPECT_EQ(all->length, 4U);
    ASSERT_TRUE(input.open(scratch.file("g", "123456789").c_str()));
    const auto head = input.readHead(space);
    ASSERT_TRUE(head);
    EXPECT_EQ(head->held, 8U);
    EXPECT_EQ(head->length, 9U);
    EXPECT_EQ(space, (std::array<QRX_U8, 8>{'1', '2', '3', '4', '5', '6', '7', '8'}));
}

TEST_F(InputFileTest, APipeIsReadToItsEnd)
{
    const std::string name = scratch.path("pipe");
    ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
    std::thread writer([&] { std::ofstream(name) << std::string(40000, 'p'); });
    ASSERT_TRUE(input.open(name.c_str()));
    const auto head = input.readHead(space);
    writer.join();
    ASSERT_TRUE(head);
    EXPECT_EQ(head->held, 8U);
    EXPECT_EQ(head->length, 40000U);
}

TEST_F(InputFileTest, AHeadHasTheRefusalsOfTheWhole)
{
    EXPECT_FALSE(input.readHead(space));
    const std::string huge = scratch.file("h", "12345678");
    ASSERT_EQ(truncate(huge.c_str(), 0x80000000), 0);
    ASSERT_TRUE(input.open(huge.c_str()));
    EXPECT_FALSE(input.readHead(space));
    EXPECT_EQ(refusal(), (Outcome{1, "word: '" + huge + "' has more than 2147483647 bytes\n"}));
    const std::string directory = scratch.path("");
    ASSERT_TRUE(input.open(directory.c_str()));
    EXPECT_FALSE(input.readHead(space));
    EXPECT_EQ(refusal(), (Outcome{1, "word: cannot read '" + directory + "': Is a directory\n"}));
}

TEST_F(InputFileTest, OthersMayBeOpenBesideIt)
{
    qrx::InputFile second;
    qrx::OutputFile output;
    ASSERT_TRUE(input.open(scratch.file("f", "abcdef").c_str()));
    ASSERT_TRUE(second.open(scratch.file("g", "123").c_str()));
    ASSERT_TRUE(output.open(scratch.path("o").c_str()));
    EXPECT_EQ(input.readUpTo(std::span<QRX_U8>(space).first(3)), 3U);
    EXPECT_TRUE(output.write(std::span<const QRX_U8>(space).first(3)));
    EXPECT_EQ(second.read(space), 3U);
    EXPECT_TRUE(output.write(std::span<const QRX_U8>(space).first(3)));
    EXPECT_EQ(input.read(space), 3U) << "it goes on where it was";
    EXPECT_TRUE(output.write(std::span<const QRX_U8>(space).first(3)));
    EXPECT_TRUE(output.close());
    std::string content;
    std::ifstream(scratch.path("o")) >> content;
    EXPECT_EQ(content, "abc123def");
}

TEST_F(InputFileTest, OneThatIsAsideIsClosedAtItsEndToo)
{
    const auto open = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    const auto before = open();
    {
        qrx::InputFile outer;
        ASSERT_TRUE(outer.open(scratch.file("f", "abc").c_str()));
        qrx::InputFile inner;
        {
            qrx::InputFile innermost;
            ASSERT_TRUE(innermost.open(scratch.file("f", "abc").c_str()));
            ASSERT_TRUE(inner.open(scratch.file("f", "abc").c_str()));
            EXPECT_EQ(open(), before + 3);
        }
        EXPECT_EQ(open(), before + 2);
        EXPECT_EQ(inner.read(space), 3U);
    }
    EXPECT_EQ(open(), before);
}

TEST_F(InputFileTest, QuotesAreNoPartOfTheName)
{
    const std::string name = scratch.file("f", "x");
    for (const std::string& quoted : {"\"" + name + "\"", "\"" + name, "\"" + name + "\"rest"}) {
        EXPECT_TRUE(input.open(quoted.c_str())) << quoted;
        EXPECT_EQ(input.read(space), 1U);
    }
}

TEST_F(InputFileTest, OneThatIsNotThere)
{
    const std::string name = scratch.path("none");
    EXPECT_FALSE(input.open(name.c_str()));
    EXPECT_EQ(input.read(space), std::nullopt);
    EXPECT_EQ(refusal(), (Outcome{1, "word: cannot open '" + name + "': No such file or directory\n"}));
}

TEST_F(InputFileTest, ANameThatIsTooLong)
{
    const std::string name(1024, 'x');
    EXPECT_FALSE(input.open(name.c_str()));
    EXPECT_EQ(refusal(), (Outcome{1, "word: cannot open '" + name + "': File name too long\n"}));
}

TEST_F(InputFileTest, OneThatCannotBeRead)
{
    const std::string name = scratch.path("");
    ASSERT_TRUE(input.open(name.c_str()));
    EXPECT_EQ(input.read(space), std::nullopt);
    EXPECT_EQ(refusal(), (Outcome{1, "word: cannot read '" + name + "': Is a directory\n"}));
}

TEST_F(InputFileTest, ALaterNameForgetsTheFailureOfAnEarlierOne)
{
    EXPECT_FALSE(input.open(scratch.path("none").c_str()));
    ASSERT_TRUE(input.open(scratch.file("f", "abc").c_str()));
    EXPECT_EQ(input.read(space), 3U);
}

TEST_F(InputFileTest, IsClosedAtItsEnd)
{
    {
        qrx::InputFile inner;
        ASSERT_TRUE(inner.open(scratch.file("f", "abc").c_str()));
        EXPECT_NE(file, nullptr);
    }
    EXPECT_EQ(file, nullptr);
}

}  // namespace
