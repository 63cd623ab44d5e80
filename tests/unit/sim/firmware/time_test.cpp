// Simulated time: what moves it, and what it moves.
#include <chrono>

#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

using std::chrono::hours;
using std::chrono::milliseconds;

constexpr std::string_view kText = R"json({
  "controllers": [{
    "drives": [{"id": 0, "activity": {"type": "pd-media-patrol", "duration_ms": 1000}}, {"id": 1}, {"id": 2}, {"id": 3}],
    "virtual_disks": [
      {"id": 0, "raid_mode": "raid0", "members": [0], "status": "initialization",
       "activity": {"type": "initialization", "duration_ms": 10000, "elapsed_ms": 500}},
      {"id": 1, "raid_mode": "raid0", "members": [1], "status": "rebuilding",
       "activity": {"type": "rebuild", "duration_ms": 20000}},
      {"id": 2, "raid_mode": "raid0", "members": [2], "status": "degraded",
       "activity": {"type": "media-patrol", "state": "paused", "duration_ms": 10000, "elapsed_ms": 9999}},
      {"id": 3, "raid_mode": "raid0", "members": [3], "status": "offline",
       "activity": {"type": "sync", "duration_ms": 1}}
    ]
  }]
})json";

int percentage(Rig& rig, QRX_U8 vd)
{
    rig.vendor(0x02E3, vd);
    return rig.page[8 + 1] == 0 ? -1 : rig.page[8 + 3];
}

TEST(SimulatedTime, StandsStillByItself)
{
    Rig rig = Rig::of_text(kText);
    const Machine::Parts before = rig.machine().parts();
    for (QRX_U8 i = 0; i < 100; ++i) {
        rig.vendor(0x00E0);
        EXPECT_EQ(percentage(rig, 0), 5);
    }
    EXPECT_TRUE(rig.machine().parts() == before);
}

TEST(SimulatedTime, MovesActivitiesAndClocks)
{
    Rig rig = Rig::of_text(kText);
    rig.machine().advance(milliseconds(999));
    EXPECT_EQ(percentage(rig, 0), 14);
    EXPECT_EQ(percentage(rig, 1), 4);
    EXPECT_EQ(percentage(rig, 2), 99) << "paused";
    EXPECT_TRUE(rig.controller().drives[0].activity.has_value());
    EXPECT_EQ(rig.controller().clock.milliseconds, Clock::kPowerOn + 999);
    rig.machine().advance(milliseconds(1));
    EXPECT_FALSE(rig.controller().drives[0].activity.has_value());
    EXPECT_EQ(percentage(rig, 0), 15);
}

TEST(SimulatedTime, EndsActivitiesAndHealsWhatTheyWereFor)
{
    Rig rig = Rig::of_text(kText);
    rig.machine().advance(milliseconds(9499));
    EXPECT_EQ(percentage(rig, 0), 99);
    EXPECT_EQ(rig.controller().virtual_disks[0].status, kVdInitialization);
    rig.machine().advance(milliseconds(1));
    EXPECT_EQ(percentage(rig, 0), -1);
    EXPECT_EQ(rig.controller().virtual_disks[0].status, kVdFunctional);
    EXPECT_EQ(rig.controller().virtual_disks[1].status, kVdRebuilding);
    rig.machine().advance(hours(24));
    EXPECT_EQ(rig.controller().virtual_disks[1].status, kVdFunctional);
    EXPECT_EQ(rig.controller().virtual_disks[2].status, kVdDegrade);
    EXPECT_EQ(percentage(rig, 2), 99);
    EXPECT_EQ(rig.controller().virtual_disks[3].status, kVdOffline);
    EXPECT_EQ(percentage(rig, 3), -1);
}

TEST(SimulatedTime, CountsPowerOnHours)
{
    Rig rig = Rig::of_text(kText);
    rig.machine().advance(hours(2));
    rig.log_page(2, 512);
    EXPECT_EQ(rig.at<QRX_U64>(128), 4713U);
}

void set_time(Rig& rig, QRX_U32 seconds)
{
    // The pieces of a time that fits 32 bits: bits 31 to 16 stand high in the first word.
    rig.vendor(0x03E0, seconds & 0xFFFF, seconds & 0xFFFF0000);
}

TEST(SimulatedTime, TheFirstSettingOfTheClockTellsTheTimeOfDayAlone)
{
    Rig rig = Rig::of_text(kText);
    set_time(rig, 0xF0001234);
    EXPECT_EQ(rig.controller().clock, (Clock{0xF0001234ULL * 1000, true}));
    EXPECT_EQ(percentage(rig, 0), 5);
}

TEST(SimulatedTime, SettingsOfTheClockLetNoTimeGoBy)
{
    Rig rig = Rig::of_text(kText);
    set_time(rig, 1000);
    set_time(rig, 1003);
    EXPECT_EQ(rig.controller().clock.milliseconds, 1003000U);
    EXPECT_EQ(percentage(rig, 0), 5);
    set_time(rig, 900);
    EXPECT_EQ(rig.controller().clock.milliseconds, 900000U);
    EXPECT_EQ(percentage(rig, 0), 5);
    EXPECT_EQ(rig.controller().clock.uptime, 0U);
}

TEST(SimulatedTime, LongestActivityDoesNotOverflow)
{
    BackgroundActivity activity;
    activity.duration = QRX_U64{1} << 52;
    activity.elapsed = activity.duration - 1;
    EXPECT_EQ(activity.percentage(), 99);
    activity.advance(Clock::Duration::max());
    EXPECT_EQ(activity.percentage(), 100);
    EXPECT_TRUE(activity.finished());
}

}  // namespace

}  // namespace qrx::sim
