// Virtual disks and what becomes of them: each command, and each of the firmware's refusals.
#include <gmock/gmock.h>

#include "api/src/interface/wire/ns.h"
#include "tests/unit/sim/firmware/storage_rig.h"

namespace qrx::sim {

namespace {

using std::chrono::minutes;
using testing::ElementsAre;

QRX_U32 deleted(Rig& rig, QRX_U32 id)
{
    return rig.vendor(0x04E2 | id << 16).status;
}

struct Mode {
    QRX_U8 code;
    std::vector<QRX_U32> good;  // bitmaps of members
    std::vector<QRX_U32> bad;
    QRX_U64 shares;  // of the first good one
    QRX_U8 parity;
};

TEST(CreateVd, EveryModeTakesItsNumbersOfMembersAndHasItsSize)
{
    const Mode modes[] = {
        {0, {0x3, 0x1, 0x7, 0xFF}, {0x0, 0x1FF}, 2, 0},
        {1, {0x3}, {0x0, 0x1, 0x7}, 1, 0},
        {15, {0x1}, {0x0, 0x3}, 1, 0},
        {0x10, {0xF, 0x3F, 0xFF}, {0x3, 0x7, 0x1F}, 2, 0},
        {5, {0x7, 0xF}, {0x3}, 2, 0},
        {0x50, {0x3F, 0xFF}, {0x1F, 0x7F}, 4, 0},
        {6, {0x7, 0x1F}, {0x3}, 1, 2},
        {0x60, {0x3F, 0xFF}, {0xF, 0x1F, 0x7F}, 2, 2},
    };
    for (const Mode& mode : modes) {
        for (const QRX_U32 members : mode.bad) {
            Rig rig("lab");
            EXPECT_EQ(created(rig, mode.code, members), 0x73DU) << int{mode.code} << " " << members;
            EXPECT_TRUE(rig.controller().virtual_disks.empty());
        }
        for (const QRX_U32 members : mode.good) {
            Rig rig("lab");
            EXPECT_EQ(created(rig, mode.code, members), kGood) << int{mode.code} << " " << members;
        }
        Rig rig("lab");
        EXPECT_EQ(created(rig, mode.code, mode.good.front(), 0, 2), kGood);
        EXPECT_EQ(vd(rig).raid_mode, mode.code);
        EXPECT_EQ(vd(rig).sectors, mode.shares * kSectors) << int{mode.code};
        EXPECT_EQ(vd(rig).parity_disks, mode.parity);
        EXPECT_EQ(vd(rig).stripe, 1024);
        EXPECT_EQ(vd(rig).status, kVdFunctional);
        EXPECT_FALSE(vd(rig).initialized);
    }
}

TEST(CreateVd, TheSmallestMemberGivesTheSize)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 0, 0x201), kGood);
    EXPECT_EQ(vd(rig).sectors, 2 * 937703088U);
}

TEST(CreateVd, AnswersShowTheNewDiskItsMembersAndItsNamespace)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 1, 0x6, 0, 1), kGood);
    rig.vendor(0x00E2, 0);
    const auto record = rig.at<NVME_VD_Info>(8);
    EXPECT_EQ(record.ID, 0);
    EXPECT_EQ(record.RaidMode, 1);
    EXPECT_EQ(record.MemberCount, 2);
    EXPECT_EQ(record.PDIDs[0], 1);
    EXPECT_EQ(record.PDIDs[1], 2);
    EXPECT_EQ(record.StripBlockSize, 512);
    EXPECT_EQ(record.NSIDs[0], 1);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(record.Name), 5), std::string("VD_0\0", 5));
    rig.vendor(0x00E1, 2);
    EXPECT_EQ(rig.page[8 + 2], 1) << "assigned";
    rig.vendor(0x00E5);
    const auto ns = rig.at<NVME_NS_Info>(8);
    EXPECT_EQ(ns.NSID, 1);
    EXPECT_EQ(ns.device_type, 1);
    EXPECT_EQ(ns.Status, kNsValid | kNsWaitsForAttach);
    EXPECT_EQ(ns.LBA, QRX_U64{kSectors});
    EXPECT_TRUE(rig.machine().controllers()[0].namespaces.empty()) << "not attached yet";
    EXPECT_THAT(events(rig),
                ElementsAre("VD 0 created as RAID1 over PD 1, 2", "NS 1 created on VD 0 with 1875385008 sectors"));
}

TEST(CreateVd, NamespacesAreEqualPartsWithIdentifiersOfTheirOwn)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 15, 0x1, 3), kGood);
    const auto& made = rig.controller().namespaces;
    ASSERT_EQ(made.size(), 3U);
    EXPECT_EQ(made[2].sectors, kSectors / 3);
    EXPECT_TRUE(made[0].shared);
    const auto first = made[0].eui64;
    EXPECT_NE(first, made[1].eui64);
    EXPECT_EQ(deleted(rig, 0), kGood);
    EXPECT_EQ(created(rig, 15, 0x1, 3), kGood);
    EXPECT_NE(rig.controller().namespaces[0].eui64, first) << "a new namespace is not the old one";
}

TEST(CreateVd, RefusesWhatTheDrivesDoNotAllow)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 0, 0x8001), 0x706U) << "no PD 15";
    EXPECT_EQ(created(rig, 0, 0x801), 0x701U) << "PD 11 has failed";
    EXPECT_EQ(created(rig, 0, 0x401), 0x740U) << "PD 10 has other sectors";
    EXPECT_EQ(created(rig, 0, 0x3), kGood);
    EXPECT_EQ(created(rig, 0, 0x6), 0x73BU) << "PD 1 is taken";
    EXPECT_EQ(rig.controller().virtual_disks.size(), 1U);
}

TEST(CreateVd, RefusesModesAndStripesThatTheControllerDoesNotHave)
{
    Rig lab("lab");
    EXPECT_EQ(created(lab, 2, 0x3), 0x73CU);
    EXPECT_EQ(created(lab, 255, 0x3), 0x73CU);
    EXPECT_EQ(created(lab, 0, 0x3, 0, 3), 0x73EU);
    EXPECT_EQ(created(lab, 0, 0x3, 0, 15), 0x73EU);
    Rig raid("raid");
    EXPECT_EQ(created(raid, 5, 0x7), 0x73CU) << "RAID5 is not in its mask";
    Rig plain = Rig::of_text(R"({"controllers": [{"adapter": {"stripes": ["256KB"]}, "drives": [{"id": 0}]}]})");
    EXPECT_EQ(created(plain, 0, 0x1, 0, 0), 0x73EU);
    EXPECT_EQ(created(plain, 0, 0x1, 0, 1), kGood);
}

TEST(CreateVd, RefusesWhatIsBeyondTheLimits)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 15, 0x1, 9), 0x74AU) << "MaxNSPerVD is 8";
    EXPECT_EQ(created(rig, 15, 0x1, 0xFFFFFFFF), 0x74AU);
    for (QRX_U32 pd = 0; pd < 4; ++pd) {
        EXPECT_EQ(created(rig, 15, 1U << pd), kGood);
    }
    EXPECT_EQ(created(rig, 15, 0x10), 0x73FU) << "MaxVD is 4";
    Rig few = Rig::of_text(
        R"({"controllers": [{"adapter": {"max_ns": 3, "max_pd_per_vd": 2}, "drives": [{"id": 0}, {"id": 1}, {"id": 2}]}]})");
    EXPECT_EQ(created(few, 0, 0x7), 0x73DU) << "MaxPDPerVD is 2";
    EXPECT_EQ(created(few, 15, 0x1, 2), kGood);
    EXPECT_EQ(created(few, 15, 0x2, 2), 0x70BU) << "one namespace id is left";
    EXPECT_EQ(created(few, 15, 0x2, 1), kGood);
}

TEST(DeleteVd, FreesDrivesAndNamespacesAndTheLowestIdComesNext)
{
    Rig rig("raid");
    EXPECT_EQ(deleted(rig, 0), kGood);
    EXPECT_EQ(rig.controller().virtual_disks.size(), 1U);
    EXPECT_EQ(rig.controller().namespaces.size(), 1U);
    EXPECT_EQ(rig.machine().controllers()[0].namespaces.size(), 1U);
    EXPECT_EQ(created(rig, 1, 0x3), kGood);
    EXPECT_EQ(vd(rig, 0).id, 0);
    EXPECT_EQ(deleted(rig, 7), 0x707U);
}

TEST(DeleteVd, IsRefusedWhileAnActivityRuns)
{
    Rig rig("raid");
    EXPECT_EQ(initialize(rig, 0), kGood);
    EXPECT_EQ(deleted(rig, 0), 0x742U);
    EXPECT_EQ(control(rig, 0), kGood);
    EXPECT_EQ(deleted(rig, 0), kGood);
}

TEST(DebugLevel, IsKeptInTheSettings)
{
    Rig rig("raid");
    EXPECT_EQ(rig.vendor(0x000112E0).status, kGood);
    EXPECT_TRUE(rig.controller().settings.errors_only);
    EXPECT_EQ(rig.vendor(0x000012E0).status, kGood);
    EXPECT_FALSE(rig.controller().settings.errors_only);
    EXPECT_EQ(rig.vendor(0x000212E0).status, 0x704U);
}

TEST(ImportVd, MakesAForeignDiskAndItsNamespaceOurs)
{
    Rig rig("importable");
    EXPECT_EQ(rig.vendor(0x06E2, 1).status, kGood);
    EXPECT_EQ(vd(rig, 1).status, kVdFunctional);
    EXPECT_FALSE(vd(rig, 1).importable);
    EXPECT_FALSE(rig.controller().drives[2].importable);
    rig.vendor(0x00E5);
    EXPECT_EQ(rig.at<NVME_NS_Info>(8 + 96).Status, kNsValid | kNsWaitsForAttach);
    EXPECT_EQ(rig.vendor(0x06E2, 1).status, 0x739U) << "ours already";
    EXPECT_EQ(rig.vendor(0x06E2, 2).status, 0x73AU) << "foreign, and not importable";
    EXPECT_EQ(rig.vendor(0x06E2, 3).status, 0x707U);
}

TEST(ImportVd, FindsOutWhatItsMembersAreWorth)
{
    Rig rig("importable");
    fail_drive(rig, 3);
    EXPECT_EQ(vd(rig, 1).status, kVdImportable);
    EXPECT_EQ(rig.vendor(0x06E2, 1).status, kGood);
    EXPECT_EQ(vd(rig, 1).status, kVdDegrade);
}

TEST(ImportTable, MakesAForeignTableOurs)
{
    Rig rig("importable");
    const Node node{1, 0};
    EXPECT_EQ(rig.vendor(0x09E1, 0x00010001, 0, node).status, kGood);
    EXPECT_EQ(rig.controller(1).namespaces.size(), 2U);
    EXPECT_EQ(rig.controller(1).namespaces[1].sectors, 468846252U);
    EXPECT_TRUE(rig.controller(1).drives[1].importable) << "table 0 is left";
    EXPECT_EQ(rig.vendor(0x09E1, 0x00FF0001, 0, node).status, kGood) << "all that is left";
    EXPECT_EQ(rig.controller(1).namespaces.size(), 4U);
    EXPECT_FALSE(rig.controller(1).drives[1].importable);
    EXPECT_EQ(rig.vendor(0x09E1, 0x00010001, 0, node).status, 0x739U) << "ours already";
    EXPECT_EQ(rig.vendor(0x09E1, 2, 0, node).status, 0x73AU) << "foreign, and not importable";
    EXPECT_EQ(rig.vendor(0x09E1, 3, 0, node).status, 0x738U) << "no table";
    EXPECT_EQ(rig.vendor(0x09E1, 9, 0, node).status, 0x706U);
}

TEST(RaidAndJbof, RefuseEachOthersCommands)
{
    Rig jbof("jbof");
    for (const QRX_U32 command : {0x03E2U, 0x04E2U, 0x06E2U, 0x04E3U, 0x06E3U, 0x07E3U, 0x0AE3U, 0x02E0U}) {
        EXPECT_EQ(jbof.vendor(command).status, 0x705U) << command;
    }
    Rig raid("raid");
    for (const QRX_U32 command : {0x02E5U, 0x09E1U}) {
        EXPECT_EQ(raid.vendor(command, 1).status, 0x705U) << command;
    }
}

TEST(Drives, ArePulledAndReplaced)
{
    Rig rig("raid");
    Controller& controller = *rig.machine().controller(0);
    EXPECT_FALSE(controller.remove_drive(0));
    EXPECT_EQ(controller.remove_drive(0)->text, "there is no drive 0; there are 1, 2, 3");
    EXPECT_THAT(vd(rig).members, ElementsAre(3, 1)) << "auto rebuild has taken PD 3";
    EXPECT_FALSE(controller.replace_drive(0));
    EXPECT_EQ(controller.drives[0].serial, "QRXSIM0000D0-2");
    EXPECT_EQ(controller.replace_drive(4)->text, "the controller has no place for a drive 4; its ids are 0 to 3");
    fail_drive(rig, 0);
    EXPECT_EQ(controller.fail_drive(0)->text, "drive 0 has failed already");
    EXPECT_EQ(controller.fail_drive(9)->text, "there is no drive 9; there are 0, 1, 2, 3");
    EXPECT_FALSE(controller.replace_drive(0));
    EXPECT_EQ(controller.drives[0].serial, "QRXSIM0000D0-3");
    EXPECT_FALSE(controller.drives[0].failed);
}

TEST(Drives, TakeTheirNamespacesWithThem)
{
    Rig rig("jbof");
    EXPECT_FALSE(rig.machine().controller(0)->replace_drive(1));
    EXPECT_EQ(rig.controller().namespaces.size(), 2U);
}

TEST(Events, KeepTheLatestAndCountAll)
{
    Rig rig("raid");
    for (int i = 0; i < 300; ++i) {
        rig.vendor(0x000112E0);
    }
    EXPECT_EQ(rig.controller().events.count, 300U);
    ASSERT_EQ(rig.controller().events.entries.size(), EventList::kEntries);
    EXPECT_EQ(rig.controller().events.entries.back().number, 300U);
    EXPECT_EQ(rig.controller().events.entries.back().sentence(), "controller has its debug level set to error only");
}

TEST(StateText, KeepsAllThatTheCommandsLeaveBehind)
{
    Rig rig("importable");
    rig.machine().advance(minutes(3));
    EXPECT_EQ(rig.vendor(0x000003E5 | 1U << 16, 1).status, kGood);
    EXPECT_EQ(attach(rig, 1, 0, {7, 9}).status, kGood);
    fail_drive(rig, 1);  // auto rebuild finds no drive
    EXPECT_FALSE(rig.machine().controller(0)->replace_drive(5));
    EXPECT_EQ(vd(rig).rebuild_target, 5);
    EXPECT_EQ(vd(rig).status, kVdRebuilding);
    const std::string saved = save_machine(rig.machine());
    const auto loaded = load_machine(saved, "state.json");
    ASSERT_TRUE(loaded) << loaded.error();
    EXPECT_TRUE((*loaded)->parts() == rig.machine().parts());
    EXPECT_EQ((*loaded)->parts().controllers[0].clock.uptime, 180000U);
    EXPECT_EQ((*loaded)->parts().controllers[0].namespaces[0].elsewhere, (std::vector<QRX_U16>{7, 9}));
}

TEST(StateText, RefusesWhatCannotBe)
{
    const auto error = [](const std::string& inner) {
        return load_machine("{\"controllers\": [{\"drives\": [{\"id\": 0}], " + inner + "}]}", "lab.json").error();
    };
    EXPECT_EQ(error(R"("virtual_disks": [{"id": 0, "members": [0], "rebuild_target": 0}])"),
              "lab.json:1: 'rebuild_target' names a drive that is no member of a virtual disk in rebuild; 65535 stands "
              "for none");
    EXPECT_EQ(
        error(R"("virtual_disks": [{"id": 0, "members": [0]}], "namespaces": [{"nsid": 1, "elsewhere": [3, 3]}])"),
        "lab.json:1: 'elsewhere' must name other host functions than this, in order and each once");
    EXPECT_EQ(error(R"("events": {"count": 1, "entries": [{"number": 2}]})"),
              "lab.json:1: 'entries' must have rising numbers up to 'count'");
}

}  // namespace

}  // namespace qrx::sim
