// The storage commands: what each does, and each of the firmware's refusals.
#include <gmock/gmock.h>

#include <cstring>

#include "api/src/interface/wire/ns.h"
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::minutes;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr QRX_U32 kSectors = 1875385008;

QRX_U32 create(QRX_U8 mode, QRX_U32 stripe_code = 0)
{
    return 0x03E2 | stripe_code << 16 | QRX_U32{mode} << 24;
}

QRX_U32 created(Rig& rig, QRX_U8 mode, QRX_U32 members, QRX_U32 namespaces = 0, QRX_U32 stripe_code = 0)
{
    return rig.vendor(create(mode, stripe_code), namespaces, members).status;
}

const VirtualDisk& vd(Rig& rig, std::size_t index = 0)
{
    return rig.controller().virtual_disks.at(index);
}

QRX_U32 deleted(Rig& rig, QRX_U32 id)
{
    return rig.vendor(0x04E2 | id << 16).status;
}

QRX_U32 initialize(Rig& rig, QRX_U32 id, QRX_U32 type = 2)
{
    return rig.vendor(0x06E3, type << 16 | id).status;
}

QRX_U32 rebuild(Rig& rig, QRX_U32 id, QRX_U32 pd)
{
    return rig.vendor(0x07E3, pd << 16 | id).status;
}

QRX_U32 patrol(Rig& rig, QRX_U32 id)
{
    return rig.vendor(0x0AE3, id).status;
}

QRX_U32 control(Rig& rig, QRX_U32 id, QRX_U32 operation = 3)
{
    return rig.vendor(0x04E3, operation << 16 | id).status;
}

void fail_drive(Rig& rig, QRX_U32 id)
{
    EXPECT_FALSE(rig.machine().controller(0)->fail_drive(id));
}

std::vector<std::string> events(Rig& rig)
{
    std::vector<std::string> all;
    for (const Event& event : rig.controller().events.entries) {
        all.push_back(event.sentence());
    }
    return all;
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
        {6, {0xF, 0x1F}, {0x7}, 2, 2},
        {0x60, {0xFF}, {0x3F, 0x7F}, 4, 2},
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

TEST(Initialization, ProgressesOverSimulatedTimeAndEnds)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 1, 0x3), kGood);
    EXPECT_EQ(initialize(rig, 0), kGood);
    EXPECT_EQ(vd(rig).status, kVdInitialization);
    EXPECT_EQ(vd(rig).activity->duration, 960197U) << "a millisecond for each megabyte of a member at the rate high";
    rig.machine().advance(milliseconds(480100));
    rig.vendor(0x02E3, 0);
    const auto half = rig.at<NVME_BGA_STATUS>(8);
    EXPECT_EQ(half.BgaType, 2);
    EXPECT_EQ(half.Percentage, 50);
    EXPECT_EQ(half.BgaStatus, 1);
    rig.machine().advance(minutes(9));
    EXPECT_EQ(vd(rig).status, kVdFunctional);
    EXPECT_TRUE(vd(rig).initialized);
    EXPECT_FALSE(vd(rig).activity);
    EXPECT_EQ(rig.controller().events.entries.back().uptime, 960197U) << "told when it was done, not when it was seen";
}

TEST(Initialization, QuickOneTakesTheHundredthPartAndLeavesRedundancyUnwritten)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 1, 0x3), kGood);
    EXPECT_EQ(initialize(rig, 0, 1), kGood);
    EXPECT_EQ(vd(rig).activity->duration, 9601U);
    rig.machine().advance(minutes(1));
    EXPECT_EQ(vd(rig).status, kVdFunctional);
    EXPECT_FALSE(vd(rig).initialized);
}

TEST(Initialization, IsRefused)
{
    Rig rig("degraded");
    EXPECT_EQ(initialize(rig, 9), 0x707U);
    EXPECT_EQ(initialize(rig, 0), 0x735U) << "degraded";
    EXPECT_EQ(initialize(rig, 2), 0x745U) << "a rebuild runs";
    Rig raid("raid");
    EXPECT_EQ(initialize(raid, 0, 3), 0x744U) << "no kind of initialization";
    EXPECT_EQ(initialize(raid, 0), kGood);
    EXPECT_EQ(initialize(raid, 0), 0x745U);
    EXPECT_EQ(patrol(raid, 0), 0x745U);
    EXPECT_EQ(rebuild(raid, 0, 3), 0x745U);
}

TEST(MediaPatrol, RunsOverRedundantInitializedDisksAlone)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 1, 0x3), kGood);
    EXPECT_EQ(created(rig, 0, 0xC), kGood);
    EXPECT_EQ(patrol(rig, 0), 0x734U) << "not fully initialized";
    EXPECT_EQ(patrol(rig, 1), 0x733U) << "RAID0";
    EXPECT_EQ(patrol(rig, 5), 0x707U);
    EXPECT_EQ(initialize(rig, 0), kGood);
    rig.machine().advance(hours(1));
    EXPECT_EQ(patrol(rig, 0), kGood);
    rig.vendor(0x00E1, 0);
    EXPECT_EQ(rig.page[8 + 2], kPdAssigned | kPdMediaPatrol);
    rig.machine().advance(hours(1));
    EXPECT_FALSE(vd(rig).activity);
    fail_drive(rig, 0);
    EXPECT_EQ(patrol(rig, 0), 0x735U) << "degraded";
}

TEST(StopActivity, IsRefusedWithoutOneAndWithAnUnknownOperation)
{
    Rig rig("raid");
    EXPECT_EQ(control(rig, 0), 0x746U);
    EXPECT_EQ(control(rig, 0, 0), 0x744U);
    EXPECT_EQ(control(rig, 0, 4), 0x744U);
    EXPECT_EQ(control(rig, 8), 0x707U);
}

TEST(StopActivity, PausesResumesAndAborts)
{
    Rig rig("raid");
    EXPECT_EQ(initialize(rig, 0), kGood);
    EXPECT_EQ(control(rig, 0, 2), 0x745U) << "it runs";
    EXPECT_EQ(control(rig, 0, 1), kGood);
    EXPECT_EQ(control(rig, 0, 1), 0x746U) << "paused already";
    rig.machine().advance(hours(9));
    EXPECT_EQ(vd(rig).activity->elapsed, 0U);
    EXPECT_EQ(control(rig, 0, 2), kGood);
    rig.machine().advance(minutes(1));
    EXPECT_EQ(vd(rig).activity->elapsed, 60000U);
    EXPECT_EQ(control(rig, 0), kGood);
    EXPECT_EQ(vd(rig).status, kVdFunctional);
    EXPECT_FALSE(vd(rig).initialized) << "what was begun is not whole";
}

TEST(Rebuild, ReplacesTheLostMemberAndHealsTheDisk)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 1, 0x3), kGood);
    fail_drive(rig, 1);
    EXPECT_EQ(vd(rig).status, kVdDegrade);
    EXPECT_EQ(rig.controller().health.critical_warning, 4);
    rig.vendor(0x00E5);
    EXPECT_EQ(rig.at<NVME_NS_Info>(8).VDStatus, kVdDegrade);
    EXPECT_EQ(rebuild(rig, 0, 2), kGood);
    EXPECT_EQ(vd(rig).status, kVdRebuilding);
    EXPECT_THAT(vd(rig).members, ElementsAre(0, 2));
    EXPECT_EQ(created(rig, 0, 0x4), 0x73BU) << "the target is busy";
    rig.machine().advance(minutes(17));
    EXPECT_EQ(vd(rig).status, kVdFunctional);
    EXPECT_EQ(vd(rig).rebuild_target, kMissingMember);
    EXPECT_EQ(rig.controller().health.critical_warning, 0);
    rig.vendor(0x00E5);
    EXPECT_EQ(rig.at<NVME_NS_Info>(8).VDStatus, kVdFunctional);
}

TEST(Rebuild, IsRefused)
{
    Rig rig("lab");
    EXPECT_EQ(rebuild(rig, 0, 2), 0x707U);
    EXPECT_EQ(created(rig, 1, 0x3), kGood);
    EXPECT_EQ(rebuild(rig, 0, 2), 0x736U) << "functional";
    EXPECT_EQ(created(rig, 0, 0x10), kGood);
    EXPECT_EQ(rebuild(rig, 1, 2), 0x733U) << "RAID0 has nothing to rebuild from";
    fail_drive(rig, 0);
    EXPECT_EQ(rebuild(rig, 0, 40), 0x706U);
    EXPECT_EQ(rebuild(rig, 0, 1), 0x73BU) << "a member of its own";
    EXPECT_EQ(rebuild(rig, 0, 4), 0x73BU) << "a member of another";
    EXPECT_EQ(rebuild(rig, 0, 11), 0x701U) << "failed";
    EXPECT_EQ(rebuild(rig, 0, 9), 0x748U) << "too small";
    EXPECT_EQ(rebuild(rig, 0, 10), 0x740U) << "other sectors";
    EXPECT_EQ(rebuild(rig, 0, 2), kGood);
    EXPECT_EQ(rebuild(rig, 0, 3), 0x745U) << "it runs";
    fail_drive(rig, 1);
    EXPECT_EQ(vd(rig).status, kVdOffline);
    EXPECT_EQ(rebuild(rig, 0, 3), 0x747U) << "no source is left";
}

TEST(Rebuild, StoppedLeavesTheSlotEmptyAndTheTargetFree)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 1, 0x3), kGood);
    fail_drive(rig, 1);
    EXPECT_EQ(rebuild(rig, 0, 2), kGood);
    EXPECT_EQ(control(rig, 0), kGood);
    EXPECT_EQ(vd(rig).status, kVdDegrade);
    EXPECT_THAT(vd(rig).members, ElementsAre(0, kMissingMember));
    EXPECT_EQ(created(rig, 0, 0x4), kGood);
}

TEST(Rebuild, LosingTheTargetLeavesTheDiskDegraded)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 1, 0x3), kGood);
    fail_drive(rig, 1);
    EXPECT_EQ(rebuild(rig, 0, 2), kGood);
    fail_drive(rig, 2);
    EXPECT_EQ(vd(rig).status, kVdDegrade);
    EXPECT_FALSE(vd(rig).activity);
    EXPECT_EQ(rebuild(rig, 0, 3), kGood);
}

struct Loss {
    QRX_U8 mode;
    QRX_U32 members;
    std::vector<QRX_U32> held;  // losses that it outlives, one after the other
    QRX_U32 last;               // and the one that it does not
};

TEST(LostMembers, DegradeARedundantDiskAndTakeItOfflineBeyondItsRedundancy)
{
    const Loss losses[] = {
        {0, 0x3, {}, 1},  {15, 0x1, {}, 0},        {1, 0x3, {0}, 1},    {0x10, 0xF, {0, 3}, 1},
        {5, 0x7, {2}, 0}, {0x50, 0x3F, {0, 3}, 4}, {6, 0xF, {1, 2}, 3}, {0x60, 0xFF, {0, 1, 4, 5}, 6},
    };
    for (const Loss& loss : losses) {
        Rig rig("lab");
        EXPECT_EQ(created(rig, loss.mode, loss.members), kGood);
        for (const QRX_U32 pd : loss.held) {
            fail_drive(rig, pd);
            EXPECT_EQ(vd(rig).status, kVdDegrade) << int{loss.mode} << " without PD " << pd;
        }
        fail_drive(rig, loss.last);
        EXPECT_EQ(vd(rig).status, kVdOffline) << int{loss.mode};
    }
}

TEST(LostMembers, EndInitializationAndStopInputAndOutputWhenOffline)
{
    Rig rig("raid");
    EXPECT_EQ(initialize(rig, 1), kGood);
    fail_drive(rig, 2);
    EXPECT_EQ(vd(rig, 1).status, kVdOffline);
    EXPECT_FALSE(vd(rig, 1).activity);
    nvme_admin_cmd read{};
    read.opcode = 2;
    read.nsid = 2;
    std::array<QRX_U8, 512> sector{};
    EXPECT_EQ(rig.machine().io({0, 2}, read, sector).status, 0x082U);
    read.nsid = 1;
    EXPECT_EQ(rig.machine().io({0, 1}, read, sector).status, kGood);
}

TEST(AutoRebuild, TakesAFreeHealthyDriveThatIsBigEnough)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 1, 0x180), kGood);
    EXPECT_EQ(created(rig, 0, 0x7F), kGood);  // what is left: 9 too small, 10 of other sectors, 11 failed
    EXPECT_EQ(rig.vendor(0x02E0, 1).status, kGood);
    fail_drive(rig, 7);
    EXPECT_EQ(vd(rig).status, kVdDegrade) << "nothing fits";
    EXPECT_FALSE(rig.machine().controller(0)->replace_drive(7));
    EXPECT_EQ(vd(rig).status, kVdRebuilding);
    EXPECT_THAT(vd(rig).members, ElementsAre(7, 8));
}

TEST(AutoRebuild, StartsWhenItIsSwitchedOnOrADriveComesFree)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 1, 0x3), kGood);
    fail_drive(rig, 0);
    EXPECT_EQ(vd(rig).status, kVdDegrade);
    EXPECT_EQ(rig.vendor(0x02E0, 1).status, kGood);
    EXPECT_EQ(vd(rig).status, kVdRebuilding);
    EXPECT_THAT(vd(rig).members, ElementsAre(2, 1));
    rig.machine().advance(hours(1));
    EXPECT_EQ(vd(rig).status, kVdFunctional);
}

TEST(BackgroundRate, StretchesWhatRuns)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 1, 0x3), kGood);
    EXPECT_EQ(initialize(rig, 0), kGood);
    rig.machine().advance(milliseconds(480098));
    EXPECT_EQ(rig.vendor(0x02E0, 32 << 8).status, kGood);
    EXPECT_EQ(vd(rig).activity->duration, 4 * 960197U);
    EXPECT_EQ(vd(rig).activity->elapsed, 4 * 480098U);
    EXPECT_EQ(rig.vendor(0x02E0, 0).status, kGood);
    EXPECT_EQ(vd(rig).activity->duration, 960197U);
    EXPECT_EQ(vd(rig).activity->elapsed, 480098U);
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

TEST(InitializeNs, DividesADriveIntoEqualParts)
{
    Rig rig("jbof");
    EXPECT_EQ(rig.vendor(0x000302E5, 4).status, kGood);
    ASSERT_EQ(rig.controller().namespaces.size(), 8U);
    const Namespace& last = rig.controller().namespaces[7];
    EXPECT_EQ(last.nsid, 8);
    EXPECT_EQ(last.parent, 3);
    EXPECT_EQ(last.sectors, kSectors / 4);
    EXPECT_TRUE(last.waiting);
    EXPECT_FALSE(last.shared);
}

TEST(InitializeNs, IsRefused)
{
    Rig rig("jbof");
    EXPECT_EQ(rig.vendor(0x000902E5, 1).status, 0x706U);
    EXPECT_EQ(rig.vendor(0x000302E5, 0).status, 0x74AU);
    EXPECT_EQ(rig.vendor(0x000302E5, 9).status, 0x74AU) << "MaxNSPerVD is 8";
    EXPECT_EQ(rig.vendor(0x000002E5, 2).status, 0x70CU) << "its namespace is attached";
    fail_drive(rig, 3);
    EXPECT_EQ(rig.vendor(0x000302E5, 1).status, 0x701U);
    Rig few = Rig::of_text(
        R"({"controllers": [{"adapter": {"features": ["namespace"], "max_ns": 3}, "drives": [{"id": 0}, {"id": 1}]}]})");
    EXPECT_EQ(few.vendor(0x000002E5, 3).status, kGood);
    EXPECT_EQ(few.vendor(0x000102E5, 1).status, 0x70BU) << "no namespace id is left";
    EXPECT_EQ(few.vendor(0x000002E5, 2).status, kGood) << "divided anew";
    EXPECT_EQ(few.controller().namespaces.size(), 2U);
}

QRX_U32 create_ns(Rig& rig, QRX_U32 parent_plus_one, QRX_U64 sectors, QRX_U32 owner = 0)
{
    return rig
        .vendor(owner << 24 | parent_plus_one << 16 | 0x04E5, static_cast<QRX_U32>(sectors >> 32),
                static_cast<QRX_U32>(sectors))
        .status;
}

TEST(CreateNs, TakesTheRoomThatIsLeft)
{
    Rig rig("jbof");
    EXPECT_EQ(create_ns(rig, 4, 2097152, 1), kGood);
    EXPECT_EQ(rig.controller().namespaces[4].sectors, 2097152U);
    EXPECT_EQ(rig.controller().namespaces[4].owner, 1);
    EXPECT_EQ(create_ns(rig, 4, kSectors - 2097152 + 1), 0x741U);
    EXPECT_EQ(create_ns(rig, 4, kSectors - 2097152), kGood);
    EXPECT_EQ(create_ns(rig, 4, 1), 0x741U) << "full";
    EXPECT_EQ(create_ns(rig, 4, 0), 0x741U);
    EXPECT_EQ(create_ns(rig, 4, QRX_U64{1} << 32), 0x741U) << "the high word counts";
}

TEST(CreateNs, IsRefused)
{
    Rig rig("jbof");
    EXPECT_EQ(create_ns(rig, 0, 1), 0x706U);
    EXPECT_EQ(create_ns(rig, 9, 1), 0x706U);
    EXPECT_EQ(create_ns(rig, 4, 1, 34), 0x704U) << "host functions are 0 to 33";
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(create_ns(rig, 4, 1), kGood);
    }
    EXPECT_EQ(create_ns(rig, 4, 1), 0x74AU) << "MaxNSPerVD is 8";
    fail_drive(rig, 3);
    EXPECT_EQ(create_ns(rig, 4, 1), 0x701U);
    Rig raid("raid");
    EXPECT_EQ(create_ns(raid, 1, 1), 0x741U) << "its namespace takes all of it";
    EXPECT_EQ(create_ns(raid, 9, 1), 0x707U);
    fail_drive(raid, 2);
    EXPECT_EQ(create_ns(raid, 2, 1), 0x735U) << "offline";
}

Completion attach(Rig& rig, QRX_U32 nsid, QRX_U32 operation, std::vector<QRX_U16> ids,
                  std::optional<QRX_U16> count = {})
{
    nvme_admin_cmd command{};
    command.opcode = 0x15;
    command.nsid = nsid;
    command.cdw10 = operation;
    _controller_list_format list{};
    list.num_of_id = count.value_or(static_cast<QRX_U16>(ids.size()));
    std::copy(ids.begin(), ids.end(), std::begin(list.id));
    std::array<QRX_U8, 4096> page{};
    std::memcpy(page.data(), &list, sizeof(list));
    return rig.machine().admin({}, command, page);
}

std::vector<QRX_U16> attached(Rig& rig, QRX_U32 nsid)
{
    rig.identify(0x12, nsid);
    const auto list = rig.at<_controller_list_format>(0);
    return {std::begin(list.id), std::begin(list.id) + list.num_of_id};
}

TEST(NamespaceAttachment, ShowsAndHidesTheNamespace)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 1, 0x3), kGood);
    rig.identify(0, 1);
    EXPECT_TRUE(rig.all_from(0, 0)) << "not attached: a page of zeros";
    EXPECT_EQ(attach(rig, 1, 0, {0}).status, kGood);
    rig.identify(0, 1);
    EXPECT_EQ(rig.at<QRX_U64>(0), QRX_U64{kSectors});
    rig.identify(2);
    EXPECT_EQ(rig.at<QRX_U32>(0), 1U);
    ASSERT_EQ(rig.machine().controllers()[0].namespaces.size(), 1U);
    rig.vendor(0x00E5);
    EXPECT_EQ(rig.at<NVME_NS_Info>(8).Status, kNsValid | kNsActive);
    EXPECT_EQ(attach(rig, 1, 1, {0}).status, kGood);
    EXPECT_TRUE(rig.machine().controllers()[0].namespaces.empty());
    rig.vendor(0x00E5);
    EXPECT_EQ(rig.at<NVME_NS_Info>(8).Status, kNsValid);
    rig.identify(1);
    EXPECT_EQ(rig.at<QRX_U16>(256) & 8, 8) << "OACS says that it can";
}

TEST(NamespaceAttachment, ReachesAllHostFunctionsAtOnce)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 1, 0x3), kGood);
    std::vector<QRX_U16> all;
    for (QRX_U16 id = 0; id < 34; ++id) {
        all.push_back(id);
    }
    EXPECT_EQ(attach(rig, 1, 0, all).status, kGood);
    EXPECT_EQ(attached(rig, 1), all);
    EXPECT_EQ(attach(rig, 1, 1, {0, 33}).status, kGood);
    EXPECT_EQ(attached(rig, 1).size(), 32U);
    EXPECT_TRUE(rig.machine().controllers()[0].namespaces.empty());
}

TEST(NamespaceAttachment, IsDoneWholeOrNotAtAll)
{
    Rig rig("jbof");
    EXPECT_EQ(attach(rig, 4, 0, {0}).status, 0x118U) << "attached already";
    EXPECT_EQ(attach(rig, 4, 0, {0, 1}).status, 0x118U);
    EXPECT_THAT(attached(rig, 4), ElementsAre(0));
    EXPECT_EQ(attach(rig, 1, 0, {1}).status, 0x119U) << "private to 0";
    EXPECT_EQ(attach(rig, 4, 1, {0, 1}).status, 0x11AU) << "not attached to 1";
    EXPECT_THAT(attached(rig, 4), ElementsAre(0));
    EXPECT_EQ(attach(rig, 4, 0, {1}).status, kGood);
    EXPECT_THAT(attached(rig, 4), ElementsAre(0, 1));
    EXPECT_EQ(attach(rig, 4, 1, {0, 1}).status, kGood);
    EXPECT_THAT(attached(rig, 4), IsEmpty());
}

TEST(NamespaceAttachment, IsRefused)
{
    Rig rig("jbof");
    EXPECT_EQ(attach(rig, 4, 0, {34}).status, 0x11FU);
    EXPECT_EQ(attach(rig, 4, 0, {}).status, 0x11CU) << "empty";
    EXPECT_EQ(attach(rig, 4, 0, {1, 1}).status, 0x11CU) << "twice";
    EXPECT_EQ(attach(rig, 4, 0, {2, 1}).status, 0x11CU) << "out of order";
    EXPECT_EQ(attach(rig, 4, 0, {1}, QRX_U16{2048}).status, 0x11CU) << "more than a list holds";
    EXPECT_EQ(attach(rig, 4, 2, {1}).status, 0x002U);
    EXPECT_EQ(attach(rig, 30, 0, {0}).status, 0x00BU);
    nvme_admin_cmd command{};
    command.opcode = 0x15;
    command.nsid = 4;
    EXPECT_EQ(rig.machine().admin({}, command, {}).status, 0x002U) << "no list";
    Rig plain = Rig::of_text(R"({"controllers": [{"adapter": {"features": ["raid"]}}]})");
    EXPECT_EQ(attach(plain, 1, 0, {0}).status, 0x001U);
    plain.identify(1);
    EXPECT_EQ(plain.at<QRX_U16>(256) & 8, 0);
    Rig virtual_function = Rig::of_text(
        R"({"controllers": [{"controller_id": 2, "adapter": {"features": ["namespace"]}, "drives": [{"id": 0}],
            "namespaces": [{"nsid": 1}]}]})");
    EXPECT_EQ(attach(virtual_function, 1, 1, {2}).status, 0x015U);
}

TEST(Sharing, IsSetAndTakenBack)
{
    Rig rig("jbof");
    EXPECT_EQ(rig.vendor(0x000103E5, 1).status, kGood);
    rig.vendor(0x000105E5);
    EXPECT_EQ(rig.page[8], 1);
    EXPECT_EQ(attach(rig, 1, 0, {5}).status, kGood);
    EXPECT_EQ(rig.vendor(0x000103E5, 0x0500).status, 0x70CU) << "still attached to 0 as well";
    EXPECT_EQ(attach(rig, 1, 1, {0}).status, kGood);
    EXPECT_EQ(rig.vendor(0x000103E5, 0x0500).status, kGood);
    rig.vendor(0x000105E5);
    EXPECT_EQ(rig.page[8], 0);
    EXPECT_EQ(rig.page[9], 5);
    EXPECT_EQ(attach(rig, 1, 0, {0}).status, 0x119U);
}

TEST(Sharing, IsRefused)
{
    Rig rig("jbof");
    EXPECT_EQ(rig.vendor(0x001E03E5, 1).status, 0x704U) << "no such namespace";
    EXPECT_EQ(rig.vendor(0x000103E5, 2).status, 0x704U) << "neither shared nor private";
    EXPECT_EQ(rig.vendor(0x000103E5, 0x2200).status, 0x704U) << "host functions are 0 to 33";
    Rig plain = Rig::of_text(R"({"controllers": [{"adapter": {"features": ["raid"]}, "drives": [{"id": 0}],
        "virtual_disks": [{"id": 0, "raid_mode": "jbod", "members": [0]}], "namespaces": [{"nsid": 1}]}]})");
    EXPECT_EQ(plain.vendor(0x000103E5, 1).status, 0x705U);
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
