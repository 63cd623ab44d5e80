// Long names of options. The tests of a command write most options in one of their forms; here the forms are alike.
#include <gtest/gtest.h>

#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

using UnlistedOptionNames = StorageTest;

TEST_F(UnlistedOptionNames, HelpHasALongNameAndOutputIsPassedOver)
{
    for (const Command_Info& row : unlistedRows()) {
        if (std::string(row.cmd) == "sbsms") {
            continue;  // takes no options
        }
        const Outcome page = unlisted({row.cmd, "-h"});
        EXPECT_EQ(page.stream.find("Description"), 0U) << row.cmd;
        EXPECT_EQ(unlisted({row.cmd, "--help"}), page) << row.cmd;
        EXPECT_EQ(unlisted({row.cmd, "--output", "file", "-h"}), page) << row.cmd;
    }
}

TEST_F(UnlistedOptionNames, ALongNameStandsForItsLetter)
{
    runAsJbof();
    const std::string absent = "cannot open '/no/x': No such file or directory\n";
    struct Names {
        const char* command;
        const char* letter;
        const char* name;
        const char* value;
        std::string complaint;
    };
    for (const Names& names : std::initializer_list<Names>{
             {"crash", "-a", "--action", "x", "-a : invalid target 'x'.\n"},
             {"info", "-o", "--object", "x", "-o : invalid object 'x'\n"},
             {"info", "-i", "--id", "x", "-i : id should be a number\ninfo: option -o is required\n"},
             {"iomon_polling", "-a", "--action", "x", "-a : invalid action 'x'.\n"},
             {"iomon_polling", "-i", "--id", "x", "-i : id should be a number\n"},
             {"log_vdm", "-a", "--action", "x", "-a : invalid action 'x'.\n"},
             {"mi_admin_receive", "-f", "--outputfile", "/no/x", "mi_admin_receive: " + absent},
             {"mi_admin_receive", "-s", "--show", "x", "-s : invalid show type 'x'\n"},
             {"mp", "-a", "--action", "x", "-a : invalid action 'x'\n"},
             {"new_mi_receive", "-0", "--msgtype", "x", "--msgtype: Invalid message type\n"},
             {"new_mi_receive", "-1", "--ic", "x", "--ic: Invalid IC\n"},
             {"new_mi_receive", "-2", "--ror", "x", "--ror: Invalid ROR\n"},
             {"new_mi_receive", "-3", "--csi", "x", "--csi: Invalid CSI\n"},
             {"new_mi_receive", "-7", "--req_dw1", "x", "--req_dw1: Invalid Request DW1\n"},
             {"new_mi_receive", "-l", "--datalen", "x", "-l: Invalid data length\n"},
             {"new_mi_send", "-2", "--ror", "x", "--ror: Invalid ROR\n"},
             {"new_vpdwrite", "-o", "--offset", "x", "-o: Invalid offset value\n"},
             {"new_vpdwrite", "-l", "--datalen", "x", "-l: Invalid data length value\n"},
             {"passthru_sata", "-i", "--id", "x", "-i: SSD backend RC/Slot ID should be a number\n"},
             {"passthru_sata", "-r", "--request", "x", "-r : invalid request 'x'\n"},
             {"passthru_sata", "-p", "--psdt", "x", "-p: PSDT should be a decimal or hexadecimal\n"},
             {"passthru_sata", "-f", "--fuse", "x", "-f: FUSE should be a decimal or hexadecimal\n"},
             {"passthru_sata", "-o", "--opcode", "x", "-o: OPCode should be a decimal or hexadecimal\n"},
             {"passthru_sata", "-n", "--nsid", "x", "-n: Backend Namespace ID should be a decimal or hexadecimal\n"},
             {"passthru_sata", "-m", "--metadata-len", "x",
              "-m: Metadata length id should be a decimal or hexadecimal\n"},
             {"rebuild", "-a", "--action", "x", "-a : invalid action 'x'\n"},
             {"vpd", "-o", "--offset", "x", "-o : invalid offset 'x'\n"},
             {"vpd", "-l", "--data_len", "x", "-l : invalid data_len 'x'\n"},
             {"writezero", "-s", "--slba", "x", "-s: Invalid starting LBA\n"},
             {"writezero", "-l", "--nlb", "x", "-l: Invalid number of LBA\n"},
         }) {
        EXPECT_EQ(unlisted({names.command, names.letter, names.value}).stream, names.complaint) << names.command;
        EXPECT_EQ(unlisted({names.command, names.name, names.value}).stream, names.complaint) << names.command;
    }
    for (const char* name : {"-f", "--outputfile"}) {
        EXPECT_EQ(unlisted({"read", "-n", "1", "-s", "0", "-l", "0", name, "/no/x"}).stream, "read: " + absent);
    }
    for (const char* name : {"-f", "--inputfile"}) {
        EXPECT_EQ(unlisted({"compare", "-n", "1", "-s", "0", "-l", "0", name, "/no/x"}).stream, "compare: " + absent);
    }
}

}  // namespace
