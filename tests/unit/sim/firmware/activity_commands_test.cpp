// Background activities of virtual disks: what starts, stops and ends them, and each refusal.
#include <gmock/gmock.h>

#include "api/src/interface/wire/ns.h"
#include "tests/unit/sim/firmware/storage_rig.h"

namespace qrx::sim {

namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::minutes;
using testing::ElementsAre;

QRX_U32 patrol(Rig& rig, QRX_U32 id)
{
    return rig.vendor(0x0AE3, id).status;
}

struct Loss {
    QRX_U8 mode;
    QRX_U32 members;
    std::vector<QRX_U32> held;  // losses that it outlives, one after the other
    QRX_U32 last;               // and the one that it does not
};

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

TEST(LostMembers, DegradeARedundantDiskAndTakeItOfflineBeyondItsRedundancy)
{
    const Loss losses[] = {
        {0, 0x3, {}, 1},     {15, 0x1, {}, 0},
        {1, 0x3, {0}, 1},    {0x10, 0xF, {0, 3}, 1},
        {5, 0x7, {2}, 0},    {0x50, 0x3F, {0, 3}, 4},
        {6, 0xF, {1, 2}, 3}, {0x60, 0xFF, {0, 1, 4, 5}, 6},
        {6, 0x7, {1, 2}, 0}, {0x60, 0x3F, {0, 1, 4, 5}, 3},
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

TEST(LostMembers, NoNumberOfParityDisksIsWorthAMember)
{
    Rig rig = Rig::of_text(R"({"controllers": [{"drives": [{"id": 0}, {"id": 1}, {"id": 2}], "virtual_disks": [
        {"id": 0, "raid_mode": "raid6", "parity_disks": 9, "members": [0, 1, 2]}]}]})");
    fail_drive(rig, 0);
    fail_drive(rig, 1);
    EXPECT_EQ(vd(rig).status, kVdDegrade);
    fail_drive(rig, 2);
    EXPECT_EQ(vd(rig).status, kVdOffline);
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
}  // namespace

}  // namespace qrx::sim
