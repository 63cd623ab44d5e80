// The search of the command tables, on tables of all the names that there are to be.
#include <gtest/gtest.h>

#include <array>
#include <span>
#include <string>
#include <vector>

#include "tests/unit/cli/run.h"

namespace {

using qrx::test::command;
using qrx::test::Outcome;
using qrx::test::outcomeOf;
using qrx::test::Words;

PCommand_Info called = nullptr;
std::vector<std::string> calledWith;

int record(int argc, char** argv, PCommand_Info row)
{
    called = row;
    calledWith.assign(argv, argv + argc);
    return 42;
}

std::vector<Command_Info> rows(std::span<const char* const> names)
{
    std::vector<Command_Info> table;
    for (const char* name : names) {
        table.push_back({name, static_cast<int>(std::string(name).size()) + 1, record, "\n", ":", 1});
    }
    return table;
}

constexpr std::array kGeneral{"?",        "help",    "adapter",  "version",  "smart",   "flash",   "log", "info",
                              "event",    "import",  "init",     "mp",       "rebuild", "debuglv", "get", "set",
                              "vpdwrite", "oemdata", "passthru", "spi",      "vd",      "reset",   "led", "vpd",
                              "dumphba",  "gpio",    "ns",       "identify", "inverse", "vpdread"};
constexpr std::array kHidden{"--debug",         "gen",    "reg",        "qxf",
                             "protect",         "i2c",    "pcie",       "eom",
                             "sriov",           "hotkey", "getoemdata", "mi_passthruread",
                             "mi_passthruwrite"};

class Dispatch : public testing::Test {
protected:
    // The name of the row that was called, or "" where none was.
    std::string rowOf(const std::string& word)
    {
        called = nullptr;
        Words words{word, "Arg", "-X"};
        last = outcomeOf([&] { return qrx::dispatch(words.argc(), words.argv(), general, hidden); });
        if (called == nullptr) {
            return "";
        }
        EXPECT_EQ(last, (Outcome{42, ""}));
        EXPECT_EQ(calledWith.back(), "-X");
        return called->cmd;
    }
    std::vector<Command_Info> general = rows(kGeneral);
    std::vector<Command_Info> hidden = rows(kHidden);
    Outcome last;
};

TEST_F(Dispatch, EveryNameReachesItsOwnRow)
{
    for (const auto* table : {&general, &hidden}) {
        for (const Command_Info& row : *table) {
            EXPECT_EQ(rowOf(row.cmd), row.cmd);
            EXPECT_EQ(called, &row);
        }
    }
}

TEST_F(Dispatch, TheWordIsLoweredAndNothingElse)
{
    for (const char* word : {"HELP", "Help", "he"}) {
        EXPECT_EQ(rowOf(word), "help") << word;
    }
    rowOf("HELP");
    EXPECT_EQ(calledWith, (std::vector<std::string>{"help", "Arg", "-X"}));
}

TEST_F(Dispatch, AbbreviationsThatStandForOneRowOfEitherTable)
{
    EXPECT_EQ(rowOf("geto"), "getoemdata");
    EXPECT_EQ(rowOf("-"), "--debug");
    EXPECT_EQ(rowOf("--"), "--debug");
    EXPECT_EQ(rowOf("mi_passthruw"), "mi_passthruwrite");
    EXPECT_EQ(rowOf("a"), "adapter");
}

TEST_F(Dispatch, AnExactNameWinsOverAbbreviations)
{
    EXPECT_EQ(rowOf("vpd"), "vpd");
    EXPECT_EQ(rowOf("get"), "get");
    EXPECT_EQ(rowOf("reg"), "reg");
}

TEST_F(Dispatch, AbbreviationsCountAcrossBothTables)
{
    for (const char* word : {"h", "ge", "re", "mi", ""}) {
        EXPECT_EQ(rowOf(word), "") << word;
        EXPECT_EQ(last, (Outcome{1, "Ambiguous command '" + std::string(word) + "'!\n"}));
    }
}

TEST_F(Dispatch, UnknownWordsAreInvalid)
{
    EXPECT_EQ(rowOf("exi"), "");
    EXPECT_EQ(last, (Outcome{1, "Invalid command 'exi'!\n"}));
    EXPECT_EQ(rowOf("HELPME"), "");
    EXPECT_EQ(last, (Outcome{1, "Invalid command 'helpme'!\n"}));
}

TEST_F(Dispatch, ExitAndQuitEndTheShellInAnyCase)
{
    for (const char* word : {"exit", "quit", "EXIT", "Quit"}) {
        EXPECT_EQ(rowOf(word), "");
        EXPECT_EQ(last, (Outcome{-1, ""})) << word;
    }
}

TEST_F(Dispatch, AVendorIdWordDoesNothing)
{
    for (const char* word : {"--vid=0x1234", "--VID=0x1234", "x--vid=0x"}) {
        EXPECT_EQ(rowOf(word), "");
        EXPECT_EQ(last, (Outcome{0, ""})) << word;
    }
}

TEST_F(Dispatch, AnExactHiddenNameThatBeginsAGeneralOneSelectsTheGeneralRowOfItsNumber)
{
    hidden = rows(std::array{"--debug", "gen", "vers"});
    EXPECT_EQ(rowOf("vers"), "adapter");
    EXPECT_EQ(called, &general[2]);
}

TEST_F(Dispatch, ASingleHiddenMatchBesideNoGeneralOneIsHidden)
{
    EXPECT_EQ(rowOf("qx"), "qxf");
    EXPECT_EQ(called, &hidden[3]);
}

TEST_F(Dispatch, NoWordIsTheEmptyWord)
{
    char* none[] = {nullptr};
    EXPECT_EQ(outcomeOf([&] { return qrx::dispatch(0, none, general, hidden); }),
              (Outcome{1, "Ambiguous command ''!\n"}));
}

TEST(CommandTables, HoldTheseRows)
{
    const auto namesOf = [](Command_Info* table, unsigned size) {
        std::vector<std::string> names;
        for (const Command_Info& row : std::span(table, size)) {
            names.emplace_back(row.cmd);
            EXPECT_EQ(row.cmdLen, static_cast<int>(names.back().size()) + 1);
            EXPECT_EQ(row.is_support, 1);
            EXPECT_NE(row.cmdHandler, nullptr);
            EXPECT_EQ(cmdSupportCheck(row.cmd, row.cmdLen), 1);
        }
        return names;
    };
    EXPECT_EQ(
        namesOf(generalCmdTableV1, generalCmdTableV1Size()),
        (std::vector<std::string>{"?",        "help",    "adapter",  "version",  "smart",   "flash",   "log", "info",
                                  "event",    "import",  "init",     "mp",       "rebuild", "debuglv", "get", "set",
                                  "vpdwrite", "oemdata", "passthru", "spi",      "vd",      "reset",   "led", "vpd",
                                  "dumphba",  "gpio",    "ns",       "identify", "inverse", "vpdread"}));
    EXPECT_EQ(namesOf(hiddenCmdTableV1, hiddenCmdTableV1Size()),
              (std::vector<std::string>{"--debug", "gen", "reg", "qxf", "protect", "i2c", "pcie", "eom", "sriov",
                                        "hotkey", "getoemdata", "mi_passthruread", "mi_passthruwrite"}));
}

TEST(CommandTables, DispatchThroughTheRealTables)
{
    EXPECT_EQ(command({"nothing"}), (Outcome{1, "Invalid command 'nothing'!\n"}));
    EXPECT_EQ(command({"EXIT"}), (Outcome{-1, ""}));
}

TEST(CommandTables, NamesThatCouldBeHidden)
{
    EXPECT_EQ(std::size(HIDDEN_CMDS), 23U);
    EXPECT_STREQ(HIDDEN_CMDS[0], "log");
    EXPECT_STREQ(HIDDEN_CMDS[18], "linfo");
    EXPECT_STREQ(HIDDEN_CMDS[22], "new_mi_receive");
}

}  // namespace
