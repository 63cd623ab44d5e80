// Long names of options. The tests of a command write most options in one of their forms; here the forms are alike.
#include <gtest/gtest.h>

#include <algorithm>
#include <span>

#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

using OptionNames = StorageTest;
using Run = Outcome(std::initializer_list<std::string> words);  // command or unlisted

// In every command: the names of help, and `--output`, which is passed over. `apart`: the commands without.
void expectHelp(Run& run, std::span<const Command_Info> rows, std::initializer_list<std::string> apart)
{
    for (const Command_Info& row : rows) {
        if (std::find(apart.begin(), apart.end(), row.cmd) != apart.end()) {
            continue;
        }
        const Outcome page = run({row.cmd, "-h"});
        EXPECT_EQ(page.stream.find("Description"), 0U) << row.cmd;
        EXPECT_EQ(run({row.cmd, "--help"}), page) << row.cmd;
        EXPECT_EQ(run({row.cmd, "--output", "file", "-h"}), page) << row.cmd;
    }
}

// An option, a value that it does not take, and what is said of that.
struct Names {
    const char* command;
    const char* letter;
    const char* name;
    std::string complaint;
    const char* value = "x";
};

void expectAlike(Run& run, std::initializer_list<Names> options)
{
    for (const Names& option : options) {
        EXPECT_EQ(run({option.command, option.letter, option.value}).stream, option.complaint) << option.command;
        EXPECT_EQ(run({option.command, option.name, option.value}).stream, option.complaint) << option.command;
    }
}

TEST_F(OptionNames, HelpHasALongNameAndOutputIsPassedOver)
{
    expectHelp(command, {generalCmdTableV1, generalCmdTableV1Size()}, {"?", "help"});  // theirs comes for any option
    expectHelp(unlisted, unlistedRows(), {"sbsms"});                                   // takes no options
}

TEST_F(OptionNames, ALongNameStandsForItsLetter)
{
    expectAlike(command,
                {
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
                });
}

TEST_F(OptionNames, ALongNameStandsForItsLetterWithoutARowToo)
{
    runAsJbof();
    const std::string absent = "cannot open '/no/x': No such file or directory\n";
    expectAlike(
        unlisted,
        {
            {"crash", "-a", "--action", "-a : invalid target 'x'.\n"},
            {"info", "-o", "--object", "-o : invalid object 'x'\n"},
            {"info", "-i", "--id", "-i : id should be a number\ninfo: option -o is required\n"},
            {"iomon_polling", "-a", "--action", "-a : invalid action 'x'.\n"},
            {"iomon_polling", "-i", "--id", "-i : id should be a number\n"},
            {"log_vdm", "-a", "--action", "-a : invalid action 'x'.\n"},
            {"mi_admin_receive", "-f", "--outputfile", "mi_admin_receive: " + absent, "/no/x"},
            {"mi_admin_receive", "-s", "--show", "-s : invalid show type 'x'\n"},
            {"mp", "-a", "--action", "-a : invalid action 'x'\n"},
            {"new_mi_receive", "-0", "--msgtype", "--msgtype: Invalid message type\n"},
            {"new_mi_receive", "-1", "--ic", "--ic: Invalid IC\n"},
            {"new_mi_receive", "-2", "--ror", "--ror: Invalid ROR\n"},
            {"new_mi_receive", "-3", "--csi", "--csi: Invalid CSI\n"},
            {"new_mi_receive", "-7", "--req_dw1", "--req_dw1: Invalid Request DW1\n"},
            {"new_mi_receive", "-l", "--datalen", "-l: Invalid data length\n"},
            {"new_mi_send", "-2", "--ror", "--ror: Invalid ROR\n"},
            {"new_vpdwrite", "-o", "--offset", "-o: Invalid offset value\n"},
            {"new_vpdwrite", "-l", "--datalen", "-l: Invalid data length value\n"},
            {"passthru_sata", "-i", "--id", "-i: SSD backend RC/Slot ID should be a number\n"},
            {"passthru_sata", "-r", "--request", "-r : invalid request 'x'\n"},
            {"passthru_sata", "-p", "--psdt", "-p: PSDT should be a decimal or hexadecimal\n"},
            {"passthru_sata", "-f", "--fuse", "-f: FUSE should be a decimal or hexadecimal\n"},
            {"passthru_sata", "-o", "--opcode", "-o: OPCode should be a decimal or hexadecimal\n"},
            {"passthru_sata", "-n", "--nsid", "-n: Backend Namespace ID should be a decimal or hexadecimal\n"},
            {"passthru_sata", "-m", "--metadata-len", "-m: Metadata length id should be a decimal or hexadecimal\n"},
            {"rebuild", "-a", "--action", "-a : invalid action 'x'\n"},
            {"vpd", "-o", "--offset", "-o : invalid offset 'x'\n"},
            {"vpd", "-l", "--data_len", "-l : invalid data_len 'x'\n"},
            {"writezero", "-s", "--slba", "-s: Invalid starting LBA\n"},
            {"writezero", "-l", "--nlb", "-l: Invalid number of LBA\n"},
        });
    for (const char* name : {"-f", "--outputfile"}) {
        EXPECT_EQ(unlisted({"read", "-n", "1", "-s", "0", "-l", "0", name, "/no/x"}).stream, "read: " + absent);
    }
    for (const char* name : {"-f", "--inputfile"}) {
        EXPECT_EQ(unlisted({"compare", "-n", "1", "-s", "0", "-l", "0", name, "/no/x"}).stream, "compare: " + absent);
    }
}

}  // namespace
