// `iomon`.
#include "cli/Functions/simple/simple_iomon.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "tests/unit/cli/file_texts.h"
#include "tests/unit/cli/unlisted/monitor/iomon_fixture.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

class Iomon : public IomonTest {
protected:
    const std::string kPage = std::string("Description:For get IO monitor statistics") + simple_iomon_help;
};

TEST_F(Iomon, Help)
{
    EXPECT_TRUE(std::string(simple_iomon_help).starts_with("\niomon [-a <show> | -i <NS id> |-h ]\n"));
    EXPECT_EQ(unlisted({"iomon"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"iomon", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(unlisted({"iomon", "-i", "1", "--help"}), (Outcome{0, kPage}));
}

TEST_F(Iomon, BadValuesEndThePass)
{
    EXPECT_EQ(unlisted({"iomon", "-a", "hide"}), (Outcome{0, "-a : invalid action 'hide'.\n"}));
    EXPECT_EQ(unlisted({"iomon", "-i", "x", "-a", "hide"}), (Outcome{0, "-i : id should be a number\n"}));
    EXPECT_EQ(unlisted({"iomon", "-i", "-1"}), (Outcome{0, "-i : id should be a number\n"}));
    EXPECT_EQ(unlisted({"iomon", "-i", "0x1"}), (Outcome{0, "-i : id should be a number\n"}));
    for (const char* const id : {"0", "33", "", "4294967297", "99999999999999999999"}) {
        EXPECT_EQ(unlisted({"iomon", "-i", id}), (Outcome{0, "-i : invalid id range, it should from 1 to 32.\n"}))
            << id;
    }
    EXPECT_EQ(unlisted({"iomon", "-x"}), (Outcome{0, "", "", "iomon: illegal option -- x\n"}));
}

TEST_F(Iomon, Checks)
{
    EXPECT_EQ(unlisted({"iomon", "-i", "1", "-i", "2"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(unlisted({"iomon", "-a", "show", "-a", "SHOW"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(unlisted({"iomon", "stray"}), (Outcome{0, "iomon: option -a is required\n"}));
}

TEST_F(Iomon, AllNamespaces)
{
    expectBoth();
    EXPECT_EQ(unlisted({"iomon", "-a", "show"}), (Outcome{0, pageOfAll()}));
    expectBoth();
    EXPECT_EQ(unlisted({"iomon", "-i", "7", "--action=SHOW"}), (Outcome{0, pageOfAll()})) << "goes before -i";
}

TEST_F(Iomon, OneNamespace)
{
    expectBoth();
    EXPECT_EQ(unlisted({"iomon", "-i", "1"}), (Outcome{0, pageOf(1)}));
    expectBoth();
    EXPECT_EQ(unlisted({"iomon", "--id=32"}), (Outcome{0, pageOf(32)}));
}

TEST_F(Iomon, TheWindowBehindTheCursorIsBeingFilled)
{
    for (unsigned cursor = 0; cursor < 12; ++cursor) {
        const unsigned calculating = cursor == 9 ? 1 : cursor < 9 ? cursor + 2 : 0;
        machine.expect(readCounters().data(counters()));
        machine.expect(readWindows().data(windows(static_cast<QRX_U8>(cursor), 255)));
        EXPECT_EQ(unlisted({"iomon", "-i", "2"}).stream, "  NS 2 Raw Data:\n" + countersText(2) +
                                                             "  NS Statistics Data:\n" + windowsText(2, calculating) +
                                                             ringText(cursor, 255));
    }
}

TEST_F(Iomon, BusyIsWhatIsNotIdle)
{
    Bytes table = windows(8, 0);
    put(table, 0, 1000000, 4);
    put(table, 4, 0, 4);
    put(table, 8, 333333, 4);
    put(table, 12, 1500000, 4);
    machine.expect(readCounters().data(counters()));
    machine.expect(readWindows().data(table));
    EXPECT_THAT(unlisted({"iomon", "-i", "1"}).stream,
                testing::HasSubstr("window  #1:0.00%\n        Busy time slide window  #2:100.00%\n"
                                   "        Busy time slide window  #3:66.67%\n"
                                   "        Busy time slide window  #4:-50.00%\n"));
}

TEST_F(Iomon, WithoutCountersTheWindowsAreShownAllTheSame)
{
    machine.expect(readCounters().data(counters()).status(0x706));
    machine.expect(readWindows().data(windows(3, 77)));
    EXPECT_EQ(unlisted({"iomon", "-i", "4"}),
              (Outcome{0x706,
                       "iomon command, get NS raw failed.(error code: 0x706)\n  NS Statistics Data:\n" +
                           windowsText(4, 5) + ringText(3, 77),
                       "Invalid HD ID (Status Code: 0x706)\n"}));
    machine.expect(readCounters().status(2));
    machine.expect(readWindows().data(windows(3, 77)));
    const Outcome all = unlisted({"iomon", "-a", "show"});
    EXPECT_EQ(all.result, 2);
    EXPECT_THAT(all.stream, testing::StartsWith("iomon command, get NS raw failed.(error code: 0x02)\n"
                                                "  NS Statistics Data:\n      NS 1:\n"));
}

TEST_F(Iomon, WithoutWindowsItEnds)
{
    machine.expect(readCounters().data(counters()));
    machine.expect(readWindows().status(5));
    EXPECT_EQ(unlisted({"iomon", "-i", "4"}),
              (Outcome{5, "  NS 4 Raw Data:\n" + countersText(4) + "iomon command failed.(error code: 0x05)\n",
                       "Commands Aborted due to Power Loss Notification (Status Code: 0x5)\n"}));
    machine.expect(readCounters().error(EIO));
    machine.expect(readWindows().error(EIO));
    EXPECT_EQ(unlisted({"iomon", "-a", "show"}),
              (Outcome{-1,
                       "iomon command, get NS raw failed.(error code: 0xffffffff)\n"
                       "iomon command failed.(error code: 0xffffffff)\n",
                       "Unknown error (Status Code: 0xffffffff)\nUnknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(Iomon, TheLinesOfOneNamespaceGoToTheFileToo)
{
    const Scratch scratch;
    const std::string file = scratch.file("out", "old");
    expectBoth();
    EXPECT_EQ(unlisted({"iomon", "-i", "3", "--outputfile", "\"" + file + "\""}), (Outcome{0, pageOf(3)}));
    EXPECT_EQ(contentOf(file), pageOf(3));
    expectBoth();
    EXPECT_EQ(unlisted({"iomon", "-a", "show", "--outputfile=" + file}), (Outcome{0, pageOfAll()}));
    EXPECT_EQ(contentOf(file), "") << "all of them go to no file";
}

TEST_F(Iomon, AFileThatCannotBeOpenedIsToldWhenAllElseIsRight)
{
    EXPECT_EQ(unlisted({"iomon", "--outputfile=/nowhere/out", "-i", "1"}), (Outcome{0, "File is not exist.\n"}));
    EXPECT_EQ(unlisted({"iomon", "--outputfile=/nowhere/out", "-a", "show"}), (Outcome{0, "File is not exist.\n"}));
    EXPECT_EQ(unlisted({"iomon", "--outputfile=/nowhere/out"}), (Outcome{0, "iomon: option -a is required\n"}));
    const Scratch scratch;
    expectBoth();
    EXPECT_EQ(unlisted({"iomon", "--outputfile=/nowhere/out", "--outputfile=" + scratch.path("out"), "-i", "1"}),
              (Outcome{0, pageOf(1)}))
        << "the last one counts";
}

TEST_F(Iomon, AnIncompleteFileIsTold)
{
    expectBoth();
    EXPECT_EQ(unlisted({"iomon", "-i", "3", "--outputfile=/dev/full"}),
              (Outcome{1, pageOf(3) + "iomon: cannot write '/dev/full': No space left on device; the file is "
                                      "incomplete\n"}));
    const Scratch scratch;
    const std::string file = scratch.path("out");
    machine.expect(readCounters().data(counters()));
    machine.expect(readWindows().status(5));
    EXPECT_EQ(unlisted({"iomon", "-i", "4", "--outputfile=" + file}).err, "iomon: '" + file + "' is incomplete\n");
    EXPECT_EQ(contentOf(file), "  NS 4 Raw Data:\n" + countersText(4));
}

TEST_F(Iomon, DebugLines)
{
    dbg_enable = 1;
    expectBoth();
    EXPECT_EQ(unlisted({"iomon", "-i", "1"}).stream,
              "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x00001fe0\n  NS 1 Raw Data:\n" + countersText(1) +
                  "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x000020e0\n  NS Statistics Data:\n" +
                  windowsText(1, 5) + ringText(3, 77));
}

}  // namespace
