// `screate`, `sdelete` and `assign`.
#include "tests/unit/cli/free_disks_fixture.h"
#include "tests/unit/cli/unlisted/virtual_disk/fixture.h"

namespace {

using namespace qrx::test;

const Outcome kDone{0, "cmd success\n"};

const std::string kCreatePage =
    "Description:For create VD with all physical disks that are free.\n"
    "screate -r <0|1|10|JBOD> -d <number of physical disks> [-b <128|256|512>] [-n <number of namespaces>] [-h]\n"
    "\n"
    "Options:\n"
    "    -r, --raidmode <0|1|10|JBOD>\n"
    "        RAID level.\n"
    "    -d, --disk <number of physical disks>\n"
    "        The VD is created with all physical disks that are free.\n"
    "    -b, --sbs <128|256|512>\n"
    "        (DEFAULT:128) stripe block size in KB unit.\n"
    "    -n, --namespace <number of namespaces>\n"
    "        (DEFAULT:0) number of namespaces.\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    screate -r 0 -d 2\n"
    "    Create a RAID 0 VD\n"
    "\n"
    "    screate -r 1 -d 2 -b 512 -n 1\n"
    "    Create a RAID 1 VD with 1 namespace and stripe block size is 512 KB\n"
    "\n";

class DirectCreate : public FreeDisksTest {
protected:
    static Command create(QRX_U32 mode, QRX_U32 stripe, QRX_U32 members, QRX_U32 namespaces)
    {
        return plain(0x03E2 | stripe << 16 | mode << 24, 0x7001).word(13, members).word(14, namespaces);
    }
};

TEST_F(DirectCreate, Help)
{
    EXPECT_EQ(unlisted({"screate"}), (Outcome{1, kCreatePage}));
    for (auto words : {Line{"screate", "-h"}, Line{"screate", "--help"}, Line{"screate", "-a", "create"},
                       Line{"screate", "-r", "0", "-d", "2", "-i", "0"}}) {
        EXPECT_EQ(unlisted(words), (Outcome{0, kCreatePage}));
    }
}

TEST_F(DirectCreate, TakesAllFreeDisks)
{
    expectPds(4, {0, 1, 2, 3});
    machine.expect(create(16, 1, 0x7F, 0));
    EXPECT_EQ(unlisted({"screate", "-r", "10", "-d", "1"}), kDone);
    expectPds(2, {0, 1});
    machine.expect(create(1, 2, 0x3, 0x12345678));
    EXPECT_EQ(unlisted({"screate", "--raidmode", "1", "--disk", "99", "--sbs=512", "--namespace=305419896"}), kDone);
    expectPds(3, {});
    machine.expect(create(15, 0, 0, 1));
    EXPECT_EQ(unlisted({"screate", "-rJBOD", "-d0", "-b128", "-n1", "--output", "x"}), kDone);
}

TEST_F(DirectCreate, AnEmptyEntryAmongTheFirstCountsAsDiskZero)
{
    const std::pair<std::vector<QRX_U16>, QRX_U32> kSets[] = {
        {{1, 2}, 0x3 | 0x1},  // entries empty and 1: bits 0, then 0 and 1
        {{5}, 0x1},           // entry empty
        {{0, 2}, 0x1},        // entries 0 and empty
        {{1, 3, 4}, 0x3},     // entries empty, 1, empty
        {{0, 1, 3}, 0x3}};    // entries 0, 1, empty
    for (const auto& [free, bitmap] : kSets) {
        expectPds(6, free);
        machine.expect(create(0, 1, bitmap, 0));
        EXPECT_EQ(unlisted({"screate", "-r", "0", "-d", "2"}), kDone) << bitmap;
    }
}

TEST_F(DirectCreate, ModesAndMembersAreTheFirmwaresToJudge)
{
    expectPds(1, {0});
    machine.expect(create(96, 1, 1, 0).status(0x73D));
    EXPECT_EQ(unlisted({"screate", "-r", "60", "-d", "1"}),
              (Outcome{0x73D, "cmd failed.\n", "Invalid HD count (Status Code: 0x73d)\n"}));
    runAsJbof();
    expectPds(1, {0});
    machine.expect(create(1, 1, 1, 0));
    EXPECT_EQ(unlisted({"screate", "-r", "1", "-d", "1"}), kDone);
}

TEST_F(DirectCreate, DebugLines)
{
    dbg_enable = 1;
    expectPds(0, {});
    machine.expect(create(5, 1, 0, 3));
    EXPECT_EQ(unlisted({"screate", "-r", "5", "-d", "1", "-n", "3"}),
              (Outcome{0,
                       "CDW[0] : 0x000000e2\nCDW[12]: 0x050103e2\nCDW[13]: 0x00000000\nCDW[14]: 0x00000003\n"
                       "cmd success\n"}));
}

TEST_F(DirectCreate, BadValues)
{
    EXPECT_EQ(unlisted({"screate", "-r", "7"}), (Outcome{1, "-r : invalid raid mode 7\n"}));
    EXPECT_EQ(unlisted({"screate", "-d", "0,1"}), (Outcome{1, "-d : invalid vd members '0,1'.\n"}));
    EXPECT_EQ(unlisted({"screate", "-b", "0"}), (Outcome{1, "-b : invalid stripe block size '0'.\n"}));
    EXPECT_EQ(unlisted({"screate", "--sbs"}), (Outcome{1, "-b : invalid stripe block size ''.\n"}));
    EXPECT_EQ(unlisted({"screate", "-n", "x"}), (Outcome{1, "-n : invalid namespaces 'x'.\n"}));
    EXPECT_EQ(unlisted({"screate", "--namespace"}), (Outcome{1, "-n : invalid namespaces ''.\n"}));
    EXPECT_EQ(unlisted({"screate", "-z"}), (Outcome{1, "", "", "screate: illegal option -- z\n"}));
}

TEST_F(DirectCreate, TooManyAndTooFewOptions)
{
    for (auto words : {Line{"screate", "-n", "0", "-n", "0"}, Line{"screate", "-d", "0", "-d", "0"},
                       Line{"screate", "-b", "128", "-b", "128"}}) {
        EXPECT_EQ(unlisted(words), kDuplicate);
    }
    EXPECT_EQ(unlisted({"screate", "-n", "1"}), (Outcome{0, "screate: option -r is required\n"}));
    EXPECT_EQ(unlisted({"screate", "-d", "1"}), (Outcome{0, "screate: option -r is required\n"}));
    EXPECT_EQ(unlisted({"screate", "-r", "1"}), (Outcome{0, "screate: option -d is required\n"}));
}

TEST_F(DirectCreate, OfARepeatedModeTheLastOneStands)
{
    expectPds(1, {});
    machine.expect(create(1, 1, 0, 0));
    EXPECT_EQ(unlisted({"screate", "-r", "0", "-r", "1", "-d", "1"}), kDone);
}

const std::string kDeletePage =
    "Description:For delete VD.\n"
    "sdelete -i <vd id> [-h]\n"
    "\n"
    "Options:\n"
    "    -i, --vd_id <vd id>\n"
    "        VD id.\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    sdelete -i 0\n"
    "    Delete VD id 0.\n"
    "\n";

class DirectDelete : public VirtualDiskTest {
protected:
    static Command erase(QRX_U32 id) { return plain(0x04E2 | id << 16, 0x1001); }
};

TEST_F(DirectDelete, Help)
{
    EXPECT_EQ(unlisted({"sdelete"}), (Outcome{1, kDeletePage}));
    EXPECT_EQ(unlisted({"sdelete", "-h"}), (Outcome{0, kDeletePage}));
}

TEST_F(DirectDelete, SendsTheIdAsItIs)
{
    machine.expect(erase(0));
    EXPECT_EQ(unlisted({"sdelete", "-i", "0"}), kDone);
    machine.expect(erase(0xFFFF));
    EXPECT_EQ(unlisted({"sdelete", "--vd_id=65535", "--output", "x"}), kDone);
    g_oneBaseMode = 1;
    machine.expect(erase(0));
    EXPECT_EQ(unlisted({"sdelete", "-i", "0"}), kDone);
    runAsJbof();
    machine.expect(erase(0x1234));
    EXPECT_EQ(unlisted({"sdelete", "-i", "4660"}), kDone);
}

TEST_F(DirectDelete, ARefusalGivesItsStatus)
{
    dbg_enable = 1;
    machine.expect(erase(3).status(0x707));
    EXPECT_EQ(unlisted({"sdelete", "-i", "3"}),
              (Outcome{0x707, "CDW[0] : 0x000000e2\nCDW[12]: 0x000304e2\ncmd failed.\n",
                       "Invalid LD ID (Status Code: 0x707)\n"}));
}

TEST_F(DirectDelete, BadOptions)
{
    for (const char* id : {"x", "1x", "-1", "65536", "4294967296"}) {
        EXPECT_EQ(unlisted({"sdelete", "-i", id}), (Outcome{1, std::string("-i : invalid vd id '") + id + "'.\n"}));
    }
    EXPECT_EQ(unlisted({"sdelete", "-i", "0", "-i", "0"}), kDuplicate);
    EXPECT_EQ(unlisted({"sdelete", "--output", "x"}), (Outcome{1, "sdelete: option -i is required\n"}));
    EXPECT_EQ(unlisted({"sdelete", "-z"}), (Outcome{1, "", "", "sdelete: illegal option -- z\n"}));
}

const std::string kAssignPage =
    "Description:For assign physical disk.\n"
    "assign -d <physical disk id> [-h]\n"
    "\n"
    "Options:\n"
    "    -d, --pdid <physical disk id>\n"
    "        Physical disk id.\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    assign -d 0\n"
    "    Assign physical disk 0.\n"
    "\n";

using Assign = VirtualDiskTest;

TEST_F(Assign, Help)
{
    EXPECT_EQ(unlisted({"assign"}), (Outcome{1, kAssignPage}));
    EXPECT_EQ(unlisted({"assign", "-h"}), (Outcome{0, kAssignPage}));
}

TEST_F(Assign, AGoodIdSendsNothingAndPrintsNothing)
{
    for (const char* id : {"0", "31", "99999999999"}) {
        EXPECT_EQ(unlisted({"assign", "-d", id}), (Outcome{0, ""}));
    }
    EXPECT_EQ(unlisted({"assign", "--pdid=4", "--output", "x"}), (Outcome{0, ""}));
    runAsJbof();
    EXPECT_EQ(unlisted({"assign", "-d", "0"}), (Outcome{0, ""}));
}

TEST_F(Assign, BadOptions)
{
    EXPECT_EQ(unlisted({"assign", "-d", "x"}), (Outcome{1, "-d : invalid disk id 'x'\n"}));
    EXPECT_EQ(unlisted({"assign", "-d", "-1"}), (Outcome{1, "-d : invalid disk id '-1'\n"}));
    EXPECT_EQ(unlisted({"assign", "-d", "0", "-d", "0"}), kDuplicate);
    EXPECT_EQ(unlisted({"assign", "--output", "x"}), (Outcome{1, "assign: option -d is required\n"}));
    EXPECT_EQ(unlisted({"assign", "-z"}), (Outcome{1, "", "", "assign: illegal option -- z\n"}));
    g_oneBaseMode = 1;
    EXPECT_EQ(unlisted({"assign", "-d", "0"}), (Outcome{1, "-d : invalid disk id '0'\n"}));
}

}  // namespace
