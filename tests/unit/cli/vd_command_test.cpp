// `vd`.
#include "api/src/interface/wire/ns.h"
#include "cli/Functions/simple/simple_vd.h"
#include "tests/unit/cli/storage_fixture.h"
#include "tests/unit/cli/system_disk.h"

namespace {

using namespace qrx::test;

const Outcome kDone{0, "cmd success\n"};

class VdCommand : public StorageTest {
protected:
    static Command create(QRX_U32 unit, QRX_U32 members)
    {
        return plain(0x03E2 | unit << 16, 0x7001).word(13, members);
    }
    static Command erase(QRX_U32 id) { return plain(0x04E2 | id << 16, 0x7001); }
    // What the guard reads: one namespace on VD `vd`.
    void expectGuard(QRX_U16 vd)
    {
        NVME_NS_Info ns{};
        ns.NSID = 0x37;
        ns.device_type = kNsParentVd;
        ns.ID = vd;
        ns.Status = kNsValid;
        machine.expect(page(0x00E5, 0x1001).data(envelope(ns)));
        machine.expect(page(0x00E0, 0x5001).data(envelope(current())));
    }
};

TEST_F(VdCommand, Help)
{
    EXPECT_EQ(command({"vd"}), (Outcome{1, expected::kVdPage}));
    EXPECT_EQ(command({"vd", "-h"}), (Outcome{0, expected::kVdPage}));
    EXPECT_EQ(command({"vd", "-a", "create", "--help"}), (Outcome{0, expected::kVdPage}));
}

TEST_F(VdCommand, CreateSendsModeStripeAndMembers)
{
    machine.expect(create(0x0000, 0x3));
    EXPECT_EQ(command({"vd", "-a", "create", "-r", "0", "-d", "0,1"}), kDone);
    machine.expect(create(0x0102, 0x3));
    EXPECT_EQ(command({"vd", "-a", "create", "-r", "1", "-d", "0,1", "-b", "512"}), kDone);
    machine.expect(create(0x0501, 0x1));
    EXPECT_EQ(command({"vd", "--action", "CREATE", "--raidmode=5", "--pdid", "0", "--sbs=256"}), kDone);
    machine.expect(create(0x0F00, 0x80000000));
    EXPECT_EQ(command({"vd", "-a", "Create", "-r", "JBOD", "-d", "31", "-b128"}), kDone);
}

TEST_F(VdCommand, EveryRaidMode)
{
    constexpr std::pair<const char*, QRX_U32> kModes[] = {{"0", 0},   {"1", 1}, {"10", 16}, {"5", 5},
                                                          {"50", 80}, {"6", 6}, {"60", 96}, {"JBOD", 15}};
    for (const auto& [word, code] : kModes) {
        machine.expect(create(code << 8, 0x6));
        EXPECT_EQ(command({"vd", "-a", "create", "-r", word, "-d", "1,2"}), kDone) << word;
    }
}

TEST_F(VdCommand, TheMembersAreASetOfIds)
{
    constexpr std::pair<const char*, QRX_U32> kLists[] = {
        {"1,1,2", 0x6},
        {"255", 0x1},
        {"0,255", 0x1},
        {"1x,2", 0x6},
        {"3 ,4", 0x18},
        {"007", 0x80},
        {"31,0", 1U << 31 | 1},
        {"0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31,255,0,1", 0xFFFFFFFF}};
    for (const auto& [list, members] : kLists) {
        machine.expect(create(0, members));
        EXPECT_EQ(command({"vd", "-a", "create", "-r", "0", "-d", list}), kDone) << list;
    }
}

TEST_F(VdCommand, IdsThatAreNoneOfAPdAreRefused)
{
    for (const char* list : {"32", "0,254", "256", "99999999999", "", ",1", "1,", "1,,2", "-1", "x", " 1", "1,y"}) {
        EXPECT_EQ(command({"vd", "-a", "create", "-r", "0", "-d", list}),
                  (Outcome{0, std::string("-d : invalid PD ID '") + list + "'\n"}));
    }
}

TEST_F(VdCommand, OneBasedIds)
{
    g_oneBaseMode = 1;
    EXPECT_EQ(command({"vd", "-a", "create", "-r", "0", "-d", "0"}), (Outcome{0, "-d : invalid PD ID '0'\n"}));
    EXPECT_EQ(command({"vd", "-a", "create", "-r", "0", "-d", "33"}), (Outcome{0, "-d : invalid PD ID '33'\n"}));
    machine.expect(create(0, 1));
    EXPECT_EQ(command({"vd", "-a", "create", "-r", "0", "-d", "1"}), kDone);
    machine.expect(create(0, 0x80000001));
    EXPECT_EQ(command({"vd", "-a", "create", "-r", "0", "-d", "32,256"}), kDone);
    EXPECT_EQ(command({"vd", "-a", "delete", "-i", "0"}), (Outcome{0, "-i : invalid id '0'\n"}));
    EXPECT_EQ(command({"vd", "-a", "delete", "-i", "x"}), (Outcome{0, "-i : invalid vd id 'x'.\n"}));
    expectGuard(5);
    machine.expect(erase(4));
    EXPECT_EQ(command({"vd", "-a", "delete", "-i", "5"}), kDone);
}

TEST_F(VdCommand, BadValues)
{
    EXPECT_EQ(command({"vd", "-b", "64"}), (Outcome{0, "-b : invalid stripe block size '64'.\n"}));
    EXPECT_EQ(command({"vd", "--sbs", "512"}), (Outcome{0, "-b : invalid stripe block size ''.\n"}));
    EXPECT_EQ(command({"vd", "-i", "1x"}), (Outcome{0, "-i : invalid vd id '1x'.\n"}));
    EXPECT_EQ(command({"vd", "-i", "-1"}), (Outcome{0, "-i : invalid vd id '-1'.\n"}));
    EXPECT_EQ(command({"vd", "-r", "jbod"}), (Outcome{0, "-r : invalid raid mode jbod\n"}));
    EXPECT_EQ(command({"vd", "-r", "255"}), (Outcome{0, "-r : invalid raid mode 255\n"}));
    EXPECT_EQ(command({"vd", "-a", "make"}), (Outcome{0, "-a : invalid action 'make'.\n"}));
    EXPECT_EQ(command({"vd", "-z"}), (Outcome{0, "", "", "vd: illegal option -- z\n"}));
}

TEST_F(VdCommand, ABadValueEndsTheScan)
{
    EXPECT_EQ(command({"vd", "-a", "x", "-h"}), (Outcome{0, "-a : invalid action 'x'.\n"}));
}

TEST_F(VdCommand, Duplicates)
{
    for (auto words : {Line{"vd", "-i", "0", "-i", "0"}, Line{"vd", "-a", "create", "-a", "create"},
                       Line{"vd", "-d", "0", "-d", "0"}, Line{"vd", "-b", "128", "-b", "128"}}) {
        EXPECT_EQ(command(words), (Outcome{1, "Duplicated option specified.\n"}));
    }
}

TEST_F(VdCommand, OfARepeatedModeTheLastOneStands)
{
    machine.expect(create(0x0100, 2));
    EXPECT_EQ(command({"vd", "-a", "create", "-r", "0", "-r", "1", "-d", "1"}), kDone);
}

TEST_F(VdCommand, RequiredOptions)
{
    EXPECT_EQ(command({"vd", "-a", "create"}), (Outcome{0, "vd: option -r is required\n"}));
    EXPECT_EQ(command({"vd", "-a", "create", "-d", "1"}), (Outcome{0, "vd: option -r is required\n"}));
    EXPECT_EQ(command({"vd", "-a", "create", "-r", "1"}), (Outcome{0, "vd: option -d is required\n"}));
    EXPECT_EQ(command({"vd", "-a", "delete"}), (Outcome{0, "vd: option -i is required\n"}));
}

TEST_F(VdCommand, WithNoActionTheResultIsTheNumberOfModes)
{
    EXPECT_EQ(command({"vd", "-i", "0"}), (Outcome{0, "Error action!\n"}));
    EXPECT_EQ(command({"vd", "-r", "0"}), (Outcome{1, "Error action!\n"}));
    EXPECT_EQ(command({"vd", "-r", "0", "-r", "1", "-r", "5"}), (Outcome{3, "Error action!\n"}));
    EXPECT_EQ(command({"vd", "--output", "x"}), (Outcome{0, "Error action!\n"}));
}

TEST_F(VdCommand, ARefusalPrintsItsTextAndIsReturned)
{
    machine.expect(create(0x0500, 1).status(0x73D));
    EXPECT_EQ(command({"vd", "-a", "create", "-r", "5", "-d", "0"}),
              (Outcome{0x73D, "cmd failed.\n", "Invalid HD count (Status Code: 0x73d)\n"}));
    expectGuard(5);
    machine.expect(erase(4).error(5));
    EXPECT_EQ(command({"vd", "-a", "delete", "-i", "4"}),
              (Outcome{-1, "cmd failed.\n", "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(VdCommand, DeleteSendsAllSixteenBitsOfTheId)
{
    current().MaxNS = 3;
    expectGuard(5);
    machine.expect(erase(0xABCD));
    EXPECT_EQ(command({"vd", "-a", "delete", "-i", "43981"}), kDone);
    expectGuard(5);
    machine.expect(erase(0xFFFF));
    EXPECT_EQ(command({"vd", "-a", "DELETE", "--vd_id", "99999999999"}), kDone);
}

TEST_F(VdCommand, AVdWithTheOsIsNotDeleted)
{
    const SystemDisk os(machine);
    current().MaxNS = 1;
    expectGuard(0);
    EXPECT_EQ(command({"vd", "-a", "delete", "-i", "0"}),
              (Outcome{0, "\nUnable to delete VD 0. Because it contains a OS volume.\n"}));
    g_oneBaseMode = 1;
    expectGuard(6);
    EXPECT_EQ(command({"vd", "-a", "delete", "-i", "7"}),
              (Outcome{0, "\nUnable to delete VD 7. Because it contains a OS volume.\n"}));
}

TEST_F(VdCommand, TheGuardAsksForAsManyNamespacesAsWereKnownAtStart)
{
    const SystemDisk os(machine);
    current().MaxNS = 0;
    NVME_Adapter_Info now = current();
    now.MaxNS = 1;
    machine.expect(
        page(0x00E5, 0x1001).data(envelope(NVME_NS_Info{.NSID = 0x37, .device_type = 1, .ID = 0, .Status = 1})));
    machine.expect(page(0x00E0, 0x5001).data(envelope(now)));
    machine.expect(erase(0));
    EXPECT_EQ(command({"vd", "-a", "delete", "-i", "0"}), kDone);
}

TEST_F(VdCommand, AnotherVdOfTheSameControllerMayBeDeleted)
{
    const SystemDisk os(machine);
    current().MaxNS = 1;
    expectGuard(0);
    machine.expect(erase(1));
    EXPECT_EQ(command({"vd", "-a", "delete", "-i", "1"}), kDone);
}

TEST_F(VdCommand, WhereTheGuardCannotReadTheDeletionGoesOn)
{
    const SystemDisk os(machine);
    current().MaxNS = 1;
    machine.expect(page(0x00E5, 0x1001).status(0x701));
    machine.expect(erase(0));
    EXPECT_EQ(command({"vd", "-a", "delete", "-i", "0"}),
              (Outcome{0, "cmd success\n", "Failed (Status Code: 0x701)\n"}));
}

TEST_F(VdCommand, DebugLines)
{
    dbg_enable = 1;
    machine.expect(create(0x0102, 3));
    EXPECT_EQ(command({"vd", "-a", "create", "-r", "1", "-d", "0,1", "-b", "512"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x010203e2\nCDW[13]: 0x00000003\nCDW[14]: 0x00000000\ncmd success\n");
    expectGuard(5);
    machine.expect(erase(4));
    EXPECT_EQ(command({"vd", "-a", "delete", "-i", "4"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000404e2\nCDW[13]: 0x00000000\nCDW[14]: 0x00000000\ncmd success\n");
}

}  // namespace
