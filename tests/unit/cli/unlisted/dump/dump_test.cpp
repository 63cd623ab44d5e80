// `dump`: the switch of the debug console, its pages, and the file that takes them.
#include "cli/Functions/dump/dump.h"

#include <algorithm>
#include <string>

#include "cli/Public/utility.h"
#include "tests/unit/api/pair_script.h"
#include "tests/unit/cli/file_texts.h"
#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

const std::string kPage = std::string("Description:For get/set/show debug dump of NVMe Controller.") + dump_help;
const Outcome kDuplicate{0, "Duplicated option specified.\n"};

class DumpCommand : public StorageTest {
protected:
    void config(QRX_U8 on, QRX_U8 verdict = 0)
    {
        pair.expect({254, 2}, {}, {on, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}, verdict);
    }
    void size(QRX_U32 bytes, QRX_U8 verdict = 0)
    {
        pair.expect({254, 1}, {}, padded(bytesOf(bytes), 8, 0xEE), verdict);
    }
    // A page of the console that claims `length` bytes of text.
    void text(const std::string& bytes, QRX_U32 length)
    {
        Bytes answer(8 + bytes.size(), 0xEE);
        for (unsigned i = 0; i < 4; ++i) {
            answer[i] = static_cast<QRX_U8>(length >> 8 * i);
        }
        std::copy(bytes.begin(), bytes.end(), answer.begin() + 8);
        pair.expect({254, 0}, {}, answer);
    }
    void text(const std::string& bytes) { text(bytes, static_cast<QRX_U32>(bytes.size())); }
    // A console that is on.
    void console(QRX_U32 bytes = 0x10000)
    {
        config(1);
        size(bytes);
    }

    PairScript pair{machine, 1};
    Scratch scratch;
};

TEST_F(DumpCommand, Help)
{
    EXPECT_EQ(unlisted({"dump"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"dump", "-h"}), (Outcome{0, kPage}));
    const std::string synopsis = "\ndump -a <get|set -d <on|off> |show [--outputfile=halix_log.txt] > [-h] \n";
    EXPECT_EQ(std::string(dump_help).substr(0, synopsis.size()), synopsis);
    EXPECT_EQ(unlisted({"dump", "-z"}), (Outcome{0, "", "", "dump: illegal option -- z\n"}));
}

TEST_F(DumpCommand, OptionsAreCheckedBeforeAnythingIsSent)
{
    EXPECT_EQ(unlisted({"dump", "-a", "list"}), (Outcome{1, "-a : invalid action 'list'\n"}));
    EXPECT_EQ(unlisted({"dump", "-d", "1"}), (Outcome{1, "-d: invalid value for on/off\n"}));
    EXPECT_EQ(unlisted({"dump", "-a", "get", "-a", "set"}), kDuplicate);
    EXPECT_EQ(unlisted({"dump", "-a", "set", "-d", "on", "--dump_control=off"}), kDuplicate);
    EXPECT_EQ(unlisted({"dump", "-d", "on", "-d", "on"}), kDuplicate);
    EXPECT_EQ(unlisted({"dump", "-a", "SET"}), (Outcome{0, "dump: option -d is required\n"}));
    EXPECT_EQ(unlisted({"dump", "--output", "x"}), (Outcome{1, "Unknown error for dump\n"}));
    EXPECT_EQ(unlisted({"dump", "-d", "ON"}), (Outcome{1, "Unknown error for dump\n"}));
}

TEST_F(DumpCommand, GetTellsWhetherItIsOn)
{
    config(1);
    EXPECT_EQ(unlisted({"dump", "-a", "get"}), (Outcome{0, "\nDump:                    on\n\n"}));
    for (const QRX_U8 value : Bytes{0, 2, 255}) {
        config(value);
        EXPECT_EQ(unlisted({"dump", "--action=Get"}), (Outcome{0, "\nDump:                    off\n\n"}));
    }
    config(1, 9);
    EXPECT_EQ(unlisted({"dump", "-a", "get"}),
              (Outcome{9, "\nUnable to get dump configuration from NVMe Controller 1\n"}));
}

TEST_F(DumpCommand, SetSwitches)
{
    const Outcome done{0, "\nSet dump configuration successfully.\n\n"};
    pair.expect({254, 3}, {1, 0, 0, 0, 0, 0, 0, 0}, {});
    EXPECT_EQ(unlisted({"dump", "-a", "set", "-d", "On"}), done);
    pair.expect({254, 3}, {0, 0, 0, 0, 0, 0, 0, 0}, {});
    EXPECT_EQ(unlisted({"dump", "--dump_control=off", "--action=set"}), done);
    pair.expect({254, 3}, {1, 0, 0, 0, 0, 0, 0, 0}, {}, 9);
    EXPECT_EQ(unlisted({"dump", "-a", "set", "-d", "on"}),
              (Outcome{9, "\nUnable to set dump configuration from NVMe Controller 1\n"}));
}

TEST_F(DumpCommand, ShowReadsUntilNothingIsLeft)
{
    console();
    text("one\n");
    text(std::string("two\0\x1b", 5));
    text("");
    EXPECT_EQ(unlisted({"dump", "-a", "Show"}), (Outcome{0, "one\n" + std::string("two\0\x1b", 5) + "\n"}));
    console();
    text("");
    EXPECT_EQ(unlisted({"dump", "-a", "show"}), (Outcome{0, "\n"}));
}

TEST_F(DumpCommand, TwentyPagesEndTheDump)
{
    console();
    std::string expected;
    for (char letter = 'a'; letter < 'a' + 20; ++letter) {
        text(std::string(1, letter));
        expected += letter;
    }
    EXPECT_EQ(unlisted({"dump", "-a", "show"}), (Outcome{0, expected + "\n"}));
}

TEST_F(DumpCommand, TheSizeOfTheConsoleIsNotWhatAPageIs)
{
    const std::string whole(4080, 'w');
    for (const QRX_U32 bytes : {0U, 1U, 0xFFFFFFFFU}) {
        console(bytes);
        text(whole);
        text("");
        EXPECT_EQ(unlisted({"dump", "-a", "show"}), (Outcome{0, whole + "\n"}));
    }
}

TEST_F(DumpCommand, ALengthBeyondThePageIsRefused)
{
    for (const QRX_U32 length : {4081U, 0xFFFFU}) {
        console();
        text("text", length);
        EXPECT_EQ(unlisted({"dump", "-a", "show"}),
                  (Outcome{1, "Error dump data length: " + std::to_string(length) + "\n"}));
    }
}

TEST_F(DumpCommand, OfTheLengthSixteenBitsCount)
{
    console();
    text("text", 0xABCD0004);
    text("text", 0x10000);
    EXPECT_EQ(unlisted({"dump", "-a", "show"}), (Outcome{0, "text\n"}));
}

TEST_F(DumpCommand, WhatFailsEndsTheDump)
{
    config(1, 9);
    EXPECT_EQ(unlisted({"dump", "-a", "show"}),
              (Outcome{9, "\nUnable to get dump configuration from NVMe Controller 1\n"}));
    for (const QRX_U8 off : Bytes{0, 2}) {
        config(off);
        EXPECT_EQ(unlisted({"dump", "-a", "show"}),
                  (Outcome{1, "\nUnable to get dump status from NVMe Controller 1\n"}));
    }
    config(1);
    size(0x10000, 9);
    EXPECT_EQ(unlisted({"dump", "-a", "show"}), (Outcome{9, "\nUnable to get dump status from NVMe Controller 1\n"}));
    console();
    text("one\n");
    pair.expect({254, 0}, {}, Bytes(8), 9);
    EXPECT_EQ(unlisted({"dump", "-a", "show"}),
              (Outcome{9, "one\n\nUnable to get dump console from NVMe Controller 1\n"}));
}

TEST_F(DumpCommand, TheFileGetsTheTextAlone)
{
    const std::string name = scratch.file("log.txt", "before");
    console();
    text("one\n");
    text("two");
    text("");
    EXPECT_EQ(unlisted({"dump", "-a", "show", "--outputfile=" + name}), (Outcome{0, "one\ntwo\n"}));
    EXPECT_EQ(contentOf(name), "one\ntwo");
    EXPECT_EQ(file, nullptr);
}

TEST_F(DumpCommand, TheFileIsMadeByTheOptionAlone)
{
    const std::string name = scratch.file("log.txt", "before");
    EXPECT_EQ(unlisted({"dump", "--outputfile=" + name}), (Outcome{1, "Unknown error for dump\n"}));
    EXPECT_EQ(contentOf(name), "");
    EXPECT_EQ(file, nullptr);
}

TEST_F(DumpCommand, AFileThatCannotBeOpenedStopsTheRead)
{
    const std::string name = scratch.path("no/such");
    EXPECT_EQ(unlisted({"dump", "-a", "show", "--outputfile=" + name}),
              (Outcome{1, "dump: cannot open '" + name + "': No such file or directory\n"}));
}

TEST_F(DumpCommand, AFullDiskIsTold)
{
    console();
    text("one\n");
    text("");
    EXPECT_EQ(unlisted({"dump", "-a", "show", "--outputfile=/dev/full"}),
              (Outcome{1, "one\n\ndump: cannot write '/dev/full': No space left on device; the file is incomplete\n"}));
}

TEST_F(DumpCommand, AFileThatEndsTooEarlyIsToldOnStandardError)
{
    const std::string name = scratch.path("log.txt");
    console();
    text("one\n");
    text("x", 4081);
    EXPECT_EQ(unlisted({"dump", "-a", "show", "--outputfile=" + name}),
              (Outcome{1, "one\nError dump data length: 4081\n", "", "dump: '" + name + "' is incomplete\n"}));
    EXPECT_EQ(contentOf(name), "one\n");
}

}  // namespace
