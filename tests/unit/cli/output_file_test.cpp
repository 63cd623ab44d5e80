// The file of --outputfile, and what is said of one that cannot be opened or not written whole.
#include "cli/Public/frame/output_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "cli/Public/utility.h"
#include "tests/unit/cli/run.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx;
using namespace qrx::test;

std::string contentOf(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

std::string textOf(const Bytes& bytes)
{
    return {bytes.begin(), bytes.end()};
}

// Files of this process may grow to `bytes` and no more, as on a disk with so much room, over its life.
class RoomFor {
public:
    explicit RoomFor(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~RoomFor()
    {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    RoomFor(const RoomFor&) = delete;
    RoomFor& operator=(const RoomFor&) = delete;

private:
    rlimit before_{};
    void (*handler_)(int);
};

class OutputFileTest : public testing::Test {
protected:
    Outcome refusal()
    {
        return outcomeOf([this] { return output.refuse(&row); });
    }
    Outcome warning()
    {
        return outcomeOf([this] {
            output.warnOfMissingRest(&row);
            return 0;
        });
    }

    Command_Info row{"tell", 5, nullptr, "", "", 1};
    Scratch scratch;
    OutputFile output;
};

TEST_F(OutputFileTest, WithoutANameThereIsNothingToDo)
{
    EXPECT_FALSE(output.isNamed());
    EXPECT_FALSE(output.isOpen());
    EXPECT_TRUE(output.write(pattern(3)));
    EXPECT_TRUE(output.close());
    EXPECT_EQ(warning(), (Outcome{0, ""}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(OutputFileTest, IsEmptiedWhenOpenedAndHoldsWhatWasWritten)
{
    const std::string name = scratch.file("x", "before");
    EXPECT_TRUE(output.open(name.c_str()));
    EXPECT_TRUE(output.isNamed());
    EXPECT_TRUE(output.isOpen());
    EXPECT_EQ(contentOf(name), "");
    EXPECT_TRUE(output.write(pattern(300, 1)));
    EXPECT_EQ(contentOf(name), textOf(pattern(300, 1)));  // the system has it before the end
    EXPECT_TRUE(output.write(pattern(5, 9)));
    EXPECT_TRUE(output.close());
    EXPECT_TRUE(output.close());
    EXPECT_EQ(contentOf(name), textOf(pattern(300, 1)) + textOf(pattern(5, 9)));
    EXPECT_EQ(file, nullptr);
}

TEST_F(OutputFileTest, IsClosedAtTheEndOfItsLife)
{
    {
        OutputFile shortLived;
        const std::string name = scratch.path("x");
        EXPECT_TRUE(shortLived.open(name.c_str()));
        EXPECT_NE(file, nullptr);
    }
    EXPECT_EQ(file, nullptr);
}

TEST_F(OutputFileTest, TheLastNameCounts)
{
    const std::string absent = scratch.path("no/such/directory");
    const std::string first = scratch.file("first", "1");
    const std::string second = scratch.path("second");
    EXPECT_FALSE(output.open(absent.c_str()));
    EXPECT_TRUE(output.open(first.c_str()));
    EXPECT_TRUE(output.open(second.c_str()));
    EXPECT_TRUE(output.write(pattern(2)));
    EXPECT_TRUE(output.close());
    EXPECT_EQ(contentOf(first), "");
    EXPECT_EQ(contentOf(second), textOf(pattern(2)));
}

TEST_F(OutputFileTest, AFileThatCannotBeOpened)
{
    const std::string name = "\"" + scratch.path("no/such/directory") + "\"";
    EXPECT_FALSE(output.open(name.c_str()));
    EXPECT_TRUE(output.isNamed());
    EXPECT_FALSE(output.isOpen());
    EXPECT_FALSE(output.write(pattern(1)));
    EXPECT_FALSE(output.close());
    EXPECT_EQ(refusal(), (Outcome{1, "tell: cannot open '" + name + "': No such file or directory\n"}));
    EXPECT_EQ(warning(), (Outcome{0, ""}));
}

TEST_F(OutputFileTest, ADirectoryIsNoFile)
{
    const std::string name = scratch.path("");
    EXPECT_FALSE(output.open(name.c_str()));
    EXPECT_EQ(refusal(), (Outcome{1, "tell: cannot open '" + name + "': Is a directory\n"}));
}

TEST_F(OutputFileTest, AFullDiskIsTold)
{
    EXPECT_TRUE(output.open("/dev/full"));
    EXPECT_TRUE(output.write({}));
    EXPECT_FALSE(output.write(pattern(4096)));
    EXPECT_FALSE(output.isOpen());
    EXPECT_FALSE(output.close());
    EXPECT_EQ(refusal(),
              (Outcome{1, "tell: cannot write '/dev/full': No space left on device; the file is incomplete\n"}));
}

TEST_F(OutputFileTest, WhatFitsIsKeptAndNothingFollowsTheFirstFailure)
{
    const std::string name = scratch.path("x");
    EXPECT_TRUE(output.open(name.c_str()));
    {
        const RoomFor room(5000);
        EXPECT_TRUE(output.write(pattern(4096, 1)));
        EXPECT_FALSE(output.write(pattern(4096, 2)));
    }
    EXPECT_FALSE(output.write(pattern(4096, 3)));
    EXPECT_FALSE(output.close());
    EXPECT_EQ(refusal(), (Outcome{1, "tell: cannot write '" + name + "': File too large; the file is incomplete\n"}));
    const std::string kept = contentOf(name);
    EXPECT_EQ(kept.substr(0, 5000), (textOf(pattern(4096, 1)) + textOf(pattern(4096, 2))).substr(0, 5000));
}

TEST_F(OutputFileTest, ARestThatCouldNotBeHadIsToldOnStandardError)
{
    const std::string name = scratch.path("x");
    EXPECT_TRUE(output.open(name.c_str()));
    EXPECT_EQ(warning(), (Outcome{0, ""}));  // an empty file claims nothing
    EXPECT_TRUE(output.write(pattern(1)));
    EXPECT_EQ(warning(), (Outcome{0, "", "", "tell: '" + name + "' is incomplete\n"}));
}

}  // namespace
