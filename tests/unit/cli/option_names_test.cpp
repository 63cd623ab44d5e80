// Long names of options. The tests of a command write most options in one of their forms; here the forms are alike.
#include <gtest/gtest.h>

#include <span>

#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

using OptionNames = StorageTest;

TEST_F(OptionNames, HelpHasALongNameAndOutputIsPassedOver)
{
    for (const Command_Info& row : std::span(generalCmdTableV1, generalCmdTableV1Size())) {
        if (std::string(row.cmd) == "?" || std::string(row.cmd) == "help") {
            continue;  // their page comes for any option
        }
        const Outcome page = command({row.cmd, "-h"});
        EXPECT_EQ(page.stream.find("Description"), 0U) << row.cmd;
        EXPECT_EQ(command({row.cmd, "--help"}), page) << row.cmd;
        EXPECT_EQ(command({row.cmd, "--output", "file", "-h"}), page) << row.cmd;
    }
}

TEST_F(OptionNames, ALongNameStandsForItsLetter)
{
    struct Names {
        const char* command;
        const char* letter;
        const char* name;
        const char* complaint;
    };
    for (const Names& names : std::initializer_list<Names>{
             {"debuglv", "-t", "--target", "-t : invalid target 'x'.\n"},
             {"flash", "-t", "--type", "-t : invalid type 'x'\n"},
             {"flash", "-i", "--id", "-i : invalid id 'x'.\n"},
             {"init", "-a", "--action", "-a : invalid action 'x'.\n"},
             {"init", "-i", "--vd_id", "-i : invalid vd id 'x'.\n"},
             {"rebuild", "-a", "--action", "-a : invalid action 'x'.\n"},
             {"rebuild", "-i", "--vd_id", "-i : invalid vd id 'x'.\n"},
             {"vpdwrite", "-o", "--offset", "-o: Invalid offset value\n"},
             {"vpdwrite", "-l", "--datalen", "-l: Invalid data length value\n"},
             {"passthru", "-m", "--metadata-len", "-m: Metadata length id should be a decimal or hexadecimal\n"},
         }) {
        EXPECT_EQ(command({names.command, names.letter, "x"}).stream, names.complaint) << names.command;
        EXPECT_EQ(command({names.command, names.name, "x"}).stream, names.complaint) << names.command;
    }
}

}  // namespace
