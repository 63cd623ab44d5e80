// `info`: options, messages, and which operation each leads to.
#include "tests/unit/cli/info_fixture.h"
#include "tests/unit/cli/texts.h"

namespace {

using namespace qrx::test;

const std::string kPage = std::string(
                              "Description:For display NVMe Controller(hba), virtual disk(vd), physical disk(pd) "
                              "or Namespace(ns) information.") +
                          expected::kInfoHelp;

class InfoOptions : public InfoTest {};

TEST_F(InfoOptions, Help)
{
    EXPECT_EQ(command({"info"}), (Outcome{1, kPage}));
    for (auto words : {std::initializer_list<std::string>{"info", "-h"},
                       {"info", "--help"},
                       {"info", "-u", "x"},
                       {"info", "-o", "hba", "-h"}}) {
        EXPECT_EQ(command(words), (Outcome{0, kPage}));
    }
}

TEST_F(InfoOptions, BadValues)
{
    EXPECT_EQ(command({"info", "-o", "disk"}), (Outcome{1, "-o : invalid object 'disk'\n"}));
    EXPECT_EQ(command({"info", "-o", "pd", "-i", "1x"}), (Outcome{1, "-i : id should be a number\n"}));
    EXPECT_EQ(command({"info", "-o", "ns", "-t", "pd"}), (Outcome{1, "-t : invalid type 'pd'\n"}));
    EXPECT_EQ(command({"info", "-o", "ns", "-v", "-1"}), (Outcome{1, "-v : VD id should be a number\n"}));
}

TEST_F(InfoOptions, TheFirstBadValueEndsTheScan)
{
    EXPECT_EQ(command({"info", "-o", "pd", "-i", "x", "-t", "y", "-h"}), (Outcome{1, "-i : id should be a number\n"}));
}

TEST_F(InfoOptions, ABadValueWithoutAnObjectTellsBoth)
{
    EXPECT_EQ(command({"info", "-i", "x"}), (Outcome{1, "-i : id should be a number\ninfo: option -o is required\n"}));
}

TEST_F(InfoOptions, AnUnknownOptionEndsTheScan)
{
    EXPECT_EQ(command({"info", "-o", "hba", "-z"}), (Outcome{1, "", "", "info: illegal option -- z\n"}));
    EXPECT_EQ(command({"info", "-z", "-h"}),
              (Outcome{1, "info: option -o is required\n", "", "info: illegal option -- z\n"}));
}

TEST_F(InfoOptions, TheObjectIsRequired)
{
    EXPECT_EQ(command({"info", "-i", "0"}), (Outcome{1, "info: option -o is required\n"}));
    EXPECT_EQ(command({"inf", "stray"}), (Outcome{1, "info: option -o is required\n"}));
    EXPECT_EQ(command({"info", "--output", "x"}), (Outcome{1, "info: option -o is required\n"}));
}

TEST_F(InfoOptions, DuplicatesAreRefusedBeforeAnyCommand)
{
    for (auto words : {std::initializer_list<std::string>{"info", "-o", "pd", "-o", "pd"},
                       {"info", "-o", "pd", "-i", "1", "-i", "1"},
                       {"info", "-o", "ns", "-t", "vd", "-t", "vd"},
                       {"info", "-o", "ns", "-v", "1", "-v", "1"},
                       {"info", "-o", "hba", "--all", "--all"}}) {
        EXPECT_EQ(command(words), (Outcome{1, "Duplicated option specified.\n"}));
    }
    EXPECT_EQ(command({"info", "-i", "1", "-i", "x"}),
              (Outcome{1, "-i : id should be a number\nDuplicated option specified.\n"}));
}

TEST_F(InfoOptions, AnHbaTakesNoId)
{
    EXPECT_EQ(command({"info", "-o", "hba", "-i", "0"}),
              (Outcome{1, "\n'info -o hba' does not support '-i' action\n"}));
}

TEST_F(InfoOptions, ObjectsGoByTwoNamesInAnyCase)
{
    for (const char* word : {"pd", "hd", "PD", "Hd"}) {
        machine.expect(pdFetch(7));
        EXPECT_EQ(command({"info", "-o", word, "-i", "7"}), (Outcome{0, "\nUnable to get info of PD\n"})) << word;
    }
    for (const char* word : {"vd", "ld", "LD"}) {
        machine.expect(vdFetch(7));
        EXPECT_EQ(command({"info", "--object", word, "--id=7"}), (Outcome{0, "\nUnable to get info of VD\n"})) << word;
    }
    machine.expect(nsFetch());
    EXPECT_EQ(command({"info", "-o", "NS"}), (Outcome{0, "\nUnable to get info of NS\n"}));
}

TEST_F(InfoOptions, IdsAreReadInThirtyTwoBitsAndCutToSixteen)
{
    machine.expect(pdFetch(99999 & 0xFFFF));
    command({"info", "-o", "pd", "-i", "99999"});
    machine.expect(vdFetch(0xFFFF));
    command({"info", "-o", "vd", "-i", "99999999999"});
    machine.expect(pdFetch(0));
    command({"info", "-o", "pd", "-i", ""});
    machine.expect(pdFetch(256));
    command({"info", "-o", "pd", "-i", "256"});
}

TEST_F(InfoOptions, AnIdOf255MeansAllInstances)
{
    records[0].PortCount = 0;
    EXPECT_EQ(command({"info", "-o", "pd", "-i", "255"}).stream, "\nNo physical disk is found.\n");
    EXPECT_EQ(command({"info", "-o", "pd", "-i", "65791"}).stream, "\nNo physical disk is found.\n");
    EXPECT_EQ(command({"info", "-o", "vd", "-i", "255"}).stream, "\nNo virtual disk is found.\n");
    machine.expect(nsFetch().data(envelope(Bytes{})));
    EXPECT_EQ(command({"info", "-o", "ns", "-i", "255"}).stream, "No Namespace Info Exist.\n");
}

TEST_F(InfoOptions, OneBasedIdsAreShiftedAndAZeroIsTriedAllTheSame)
{
    g_oneBaseMode = 1;
    machine.expect(vdFetch(65535));
    EXPECT_EQ(command({"info", "-o", "vd", "-i", "0"}),
              (Outcome{0, "-i : id should be a number\n\nUnable to get info of VD\n"}));
    machine.expect(pdFetch(65535));
    EXPECT_EQ(command({"info", "-o", "pd", "-i", "0"}),
              (Outcome{0, "-i : id should be a number\n\nUnable to get info of PD\n"}));
    machine.expect(pdFetch(4));
    command({"info", "-o", "pd", "-i", "5"});
    records[0].PortCount = 0;
    EXPECT_EQ(command({"info", "-o", "pd"}).stream, "\nNo physical disk is found.\n");
    EXPECT_EQ(command({"info", "-o", "pd", "-i", "256"}).stream, "\nNo physical disk is found.\n");
}

TEST_F(InfoOptions, NamespacesOfAVd)
{
    for (const char* word : {"vd", "LD"}) {
        machine.expect(nsOfVdFetch(4));
        EXPECT_EQ(command({"info", "-o", "ns", "-t", word, "-v", "4"}), (Outcome{0, "\nUnable to get info of VD\n"}));
    }
    machine.expect(nsOfVdFetch(255));
    command({"info", "-o", "ns", "--type=vd"});
    machine.expect(nsOfVdFetch(0x01));
    command({"info", "-o", "ns", "-t", "vd", "--vdid", "257"});
    machine.expect(nsOfVdFetch(0));
    g_oneBaseMode = 1;  // the VD id is not shifted
    command({"info", "-o", "ns", "-t", "vd", "-v", "0"});
}

TEST_F(InfoOptions, OfTheHostIgnoresTheVd)
{
    machine.expect(nsFetch());
    EXPECT_EQ(command({"info", "-o", "ns", "-t", "Host", "-v", "0"}), (Outcome{0, "\nUnable to get info of NS\n"}));
}

}  // namespace
