// The file whose content a command sends.
#include "cli/Public/frame/input_file.h"

#include <gtest/gtest.h>

#include <array>

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
