// `getoemdata`, which sends nothing.
#include "cli/Functions/simple/simple_oemdata.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

const std::string kPage =
    "Description:For read OEM data.\n"
    "getoemdata [-i <type> -n <Namespace ID>] [-h]\n"
    "\n"
    "Options:\n"
    "    -i, --type <Controller Type>\n"
    "    -n, --nid <Namespace ID>\n"
    "    -h,  --help\n"
    "Examples:\n"
    "    getoemdata -i 0\n"
    "    Read PF oemdata\n"
    "    getoemdata -i 1 -n 1\n"
    "    Read namespace ID 1 oemdata\n"
    "\n";

class GetoemdataCommand : public StorageTest {};

TEST_F(GetoemdataCommand, Help)
{
    EXPECT_STREQ(simple_getoemdata_help, kPage.c_str() + kPage.find('\n'));
    EXPECT_EQ(command({"getoemdata"}), (Outcome{1, kPage}));
    EXPECT_EQ(command({"getoemdata", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(command({"geto", "-i", "0", "--help"}), (Outcome{0, kPage}));
}

TEST_F(GetoemdataCommand, IsSilent)
{
    for (auto words : {Line{"getoemdata", "-i", "0"}, Line{"getoemdata", "-i", "1", "-n", "1"},
                       Line{"getoemdata", "--type=0x1", "--nid=0x2", "--output", "x"},
                       Line{"getoemdata", "-i", "0", "-i", "1", "-n", "1", "-n", "2"}}) {
        EXPECT_EQ(command(words), (Outcome{0, ""}));
    }
}

TEST_F(GetoemdataCommand, DebugShowsTheReadThatItDescribes)
{
    dbg_enable = 1;
    const std::string head = "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\n";
    EXPECT_EQ(command({"getoemdata", "-i", "0"}), (Outcome{0, head + "CDW[12]: 0x000004e0\nCDW[13]: 0x00000000\n"}));
    EXPECT_EQ(command({"getoemdata", "-i", "0x1a7", "-n", "0x12345678"}),
              (Outcome{0, head + "CDW[12]: 0x00a704e0\nCDW[13]: 0x12345678\n"}));
    EXPECT_EQ(command({"getoemdata", "-n", "17", "-i", "255"}),
              (Outcome{0, head + "CDW[12]: 0x00ff04e0\nCDW[13]: 0x00000011\n"}));
}

TEST_F(GetoemdataCommand, TheTypeIsNeeded)
{
    EXPECT_EQ(command({"getoemdata", "-n", "1"}), (Outcome{0, "getoemdata: option -i is required\n"}));
    EXPECT_EQ(command({"getoemdata", "--output", "x"}), (Outcome{0, "getoemdata: option -i is required\n"}));
}

TEST_F(GetoemdataCommand, RefusesWhatIsNoNumber)
{
    EXPECT_EQ(command({"getoemdata", "-i", "pf"}), (Outcome{0, "-i : invalid id 'pf'\n"}));
    EXPECT_EQ(command({"getoemdata", "-i", "0", "-n", "-1"}), (Outcome{0, "-n : invalid namespace id '-1'\n"}));
    EXPECT_EQ(command({"getoemdata", "-z"}), (Outcome{0, "", "", "getoemdata: illegal option -- z\n"}));
}

}  // namespace
