// The commands that diagnose the controller, and what becomes of it.
#include <gmock/gmock.h>

#include "api/src/interface/wire/io_queues.h"
#include "api/src/interface/wire/nvme.h"
#include "api/src/interface/wire/spi_log.h"
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

using testing::HasSubstr;

constexpr QRX_U32 kCheckAlive = 0x1EE0;
constexpr QRX_U32 kSwitchPorts = 0x21E0;
constexpr QRX_U32 kReadIoQueues = 0x24E0;
constexpr QRX_U32 kReadErrorStatus = 0x26E0;
constexpr QRX_U32 kClearErrorStatus = 0x27E0;
constexpr QRX_U32 kCrash = 0x28E0;
constexpr QRX_U32 kDelay = 0xFCE0;
constexpr QRX_U32 kTakeOffline = 0x0BE1;
constexpr QRX_U32 kReadVdmLog = 0x06FE;
constexpr QRX_U32 kSwitchVdmLog = 0x07FE;
constexpr QRX_U32 kReadVdmLogStatus = 0x08FE;

std::string last_event(const Rig& rig)
{
    return rig.controller().events.entries.back().sentence();
}

TEST(Diagnostics, ACrashLeavesALogUntilItIsCleared)
{
    Rig rig("raid");
    EXPECT_EQ(rig.vendor(kReadErrorStatus).result, 0U);
    EXPECT_EQ(rig.vendor(kCrash).status, kGood);
    EXPECT_THAT(last_event(rig), HasSubstr("has crashed as it was told to"));
    const Completion read = rig.vendor(kReadErrorStatus);
    EXPECT_EQ(read.status, kGood);
    EXPECT_EQ(read.result, 1U);
    rig.machine().controller(0)->reset();
    EXPECT_EQ(rig.vendor(kReadErrorStatus).result, 1U);
    EXPECT_EQ(rig.vendor(kClearErrorStatus).status, kGood);
    EXPECT_EQ(rig.vendor(kReadErrorStatus).result, 0U);
}

TEST(Diagnostics, ACrashStartsTheFirmwareAgain)
{
    Rig rig("raid");
    nvme_admin_cmd set{};
    set.opcode = 0x09;
    set.cdw10 = 0x06;
    EXPECT_EQ(rig.admin(set).status, kGood);
    EXPECT_NE(rig.controller().features, Features());
    rig.machine().advance(std::chrono::seconds(5));
    EXPECT_EQ(rig.vendor(kCrash).status, kGood);
    EXPECT_EQ(rig.controller().features, Features());
    EXPECT_EQ(rig.controller().clock.uptime, 5000U);  // the power stays
}

TEST(Diagnostics, AControllerThatIsThereIsAlive)
{
    Rig rig("empty");
    EXPECT_EQ(rig.vendor(kCheckAlive).status, kGood);
}

TEST(Diagnostics, OnlyTheHostThatAsksHasQueues)
{
    Rig rig("raid");
    EXPECT_EQ(rig.vendor(kReadIoQueues).status, kGood);
    EXPECT_EQ(rig.bytes(0, 8), envelope(0));
    const auto queues = rig.at<IOQNData>(8);
    EXPECT_EQ(queues.maxCtrl, 2U);
    EXPECT_EQ(queues.ioqnh[0].NIOQ, 16U);
    EXPECT_EQ(queues.ioqnh[1].NIOQ, 0U);

    Rig virtual_function = Rig::of_text(R"({"controllers": [{"controller_id": 1, "settings": {"sriov": true},
        "adapter": {"visible_vf_host0": 3, "visible_vf_host1": 2}}]})");
    EXPECT_EQ(virtual_function.vendor(kReadIoQueues).status, kGood);
    EXPECT_EQ(virtual_function.at<IOQNData>(8).maxCtrl, 7U);
    EXPECT_EQ(virtual_function.at<IOQNData>(8).ioqnh[1].NIOQ, 16U);
    EXPECT_EQ(virtual_function.at<IOQNData>(8).ioqnh[0].NIOQ, 0U);
}

TEST(Diagnostics, ACommandToAControllerThatStallsIsAnsweredLate)
{
    Rig rig("pair");
    EXPECT_EQ(rig.vendor(kDelay | 30U << 16, 0, 0, {1}).status, kGood);
    EXPECT_EQ(rig.controller(0).diagnostics.stall, 30000U);
    EXPECT_EQ(rig.controller(0).clock.uptime, 0U);
    EXPECT_EQ(rig.vendor(kCheckAlive, 0, 0, {3}).status, kGood);  // another controller
    EXPECT_EQ(rig.controller(0).clock.uptime, 0U);
    rig.machine().advance(std::chrono::seconds(10));
    EXPECT_EQ(rig.controller(0).diagnostics.stall, 20000U);
    EXPECT_EQ(rig.vendor(kCheckAlive, 0, 0, {1}).status, kGood);
    EXPECT_EQ(rig.controller(0).diagnostics.stall, 0U);
    EXPECT_EQ(rig.controller(0).clock.uptime, 30000U);
    EXPECT_EQ(rig.controller(1).clock.uptime, 30000U);
    EXPECT_EQ(rig.vendor(kCheckAlive, 0, 0, {1}).status, kGood);
    EXPECT_EQ(rig.controller(0).clock.uptime, 30000U);
}

TEST(Diagnostics, OnAMachineThatWaitsTheTimeIsLeftToTheClock)
{
    Rig rig("raid");
    Clock::Duration waited{};
    rig.machine().wait_with([&](Clock::Duration time) { waited += time; });
    EXPECT_EQ(rig.vendor(kDelay | 0x0102U << 16).status, kGood);  // of the argument 8 bits count
    EXPECT_EQ(waited, Clock::Duration::zero());
    nvme_admin_cmd flush{};
    EXPECT_EQ(rig.machine().io({0, 0}, flush, {}).error, 0);
    EXPECT_EQ(waited, std::chrono::seconds(2));
    EXPECT_EQ(rig.vendor(kCheckAlive).status, kGood);
    EXPECT_EQ(waited, std::chrono::seconds(2));
    EXPECT_EQ(rig.controller().clock.uptime, 0U);
}

TEST(Diagnostics, AStallWaitsForTheOneBeforeAndAPowerCycleEndsIt)
{
    Rig rig("raid");
    EXPECT_EQ(rig.vendor(kDelay | 9U << 16).status, kGood);
    EXPECT_EQ(rig.vendor(kDelay | 255U << 16).status, kGood);
    EXPECT_EQ(rig.controller().clock.uptime, 9000U);
    EXPECT_EQ(rig.controller().diagnostics.stall, 255000U);
    rig.machine().controller(0)->reset();
    EXPECT_EQ(rig.controller().diagnostics.stall, 0U);
}

TEST(Diagnostics, TwoPortsShowInIdentify)
{
    Rig rig("raid");
    const auto cmic = [&] {
        EXPECT_EQ(rig.identify(1).status, kGood);
        return rig.at<nvme_id_ctrl>(0).cmic;
    };
    EXPECT_EQ(cmic(), 0);
    EXPECT_EQ(rig.vendor(kSwitchPorts | 1U << 16).status, kGood);
    EXPECT_EQ(cmic(), 1);
    EXPECT_EQ(last_event(rig), "controller has two ports");
    EXPECT_EQ(rig.vendor(kSwitchPorts | 2U << 16).status, 0x704U);
    EXPECT_EQ(cmic(), 1);
    EXPECT_EQ(rig.vendor(kSwitchPorts).status, kGood);
    EXPECT_EQ(cmic(), 0);
    EXPECT_EQ(last_event(rig), "controller has a single port");
}

TEST(Diagnostics, ADriveTakenOfflineDegradesItsVirtualDisk)
{
    Rig rig("raid");
    EXPECT_EQ(rig.vendor(0x02E0 | 0U, 0x0200).status, kGood);  // auto rebuild off
    EXPECT_EQ(rig.vendor(kTakeOffline | 1U << 16).status, kGood);
    EXPECT_TRUE(rig.controller().find_drive(1)->failed);
    EXPECT_EQ(rig.controller().find_drive(1)->health.critical_warning, 0);
    EXPECT_EQ(rig.controller().virtual_disks.at(0).status, kVdDegrade);
    std::string ring;
    for (const EventPage& page : rig.controller().ring.pages) {
        ring += page.lines;
    }
    EXPECT_THAT(ring, HasSubstr("[MSG]PD1_OFFLINE_WARNING\n"));
    EXPECT_THAT(ring, HasSubstr("[MSG]VD0_DEGRADED_WARNING\n"));
    EXPECT_EQ(rig.vendor(kTakeOffline | 1U << 16).status, 0x701U);
    EXPECT_EQ(rig.vendor(kTakeOffline | 99U << 16).status, 0x706U);
}

TEST(Diagnostics, TheVdmLogTellsOfManagementMessages)
{
    Rig rig("raid");
    const auto on = [&] {
        EXPECT_EQ(rig.vendor(kReadVdmLogStatus).status, kGood);
        return rig.at<NVME_AP_Debug_Dump_Config>(8).on;
    };
    EXPECT_EQ(on(), 0);
    EXPECT_EQ(rig.vendor(kReadVdmLog).status, 0x703U);
    EXPECT_EQ(rig.vendor(kSwitchVdmLog, 2).status, 0x704U);
    EXPECT_EQ(rig.vendor(kSwitchVdmLog, 1).status, kGood);
    EXPECT_EQ(on(), 1);
    EXPECT_FALSE(rig.controller().settings.debug_dump);  // the other log is another one
    nvme_admin_cmd send{};
    send.opcode = 0x1D;
    send.cdw11 = 1023;
    rig.page.fill(0);
    rig.page[0] = 0x84;
    rig.page[1] = 0x08;
    rig.page[4] = 0x99;
    EXPECT_EQ(rig.machine().admin({}, send, rig.page).status, kGood);
    EXPECT_EQ(rig.vendor(kReadVdmLog).status, kGood);
    EXPECT_EQ(rig.bytes(16, rig.at<NVME_AP_Debug_Dump_Request>(8).length),
              "[      0.000] unknown answered with status 3 and 0 bytes\n");
    EXPECT_EQ(rig.vendor(kSwitchVdmLog, 0).status, kGood);
    EXPECT_EQ(last_event(rig), "controller has its VDM log switched off");
}

TEST(Diagnostics, TheVdmLogIsNotThereWithoutTheFeature)
{
    Rig rig = Rig::of_text(R"({"controllers": [{"adapter": {"features": ["raid"]}}]})");
    for (const QRX_U32 command : {kReadVdmLog, kReadVdmLogStatus, kSwitchVdmLog}) {
        EXPECT_EQ(rig.vendor(command, 1).status, 0x705U);
    }
}

TEST(Diagnostics, SurviveInTheState)
{
    Rig rig = Rig::of_text(R"({"controllers": [{"diagnostics": {"error_status": 2779096485, "dual_port": true,
        "stall_ms": 4321, "vdm_on": true, "vdm_log": {"lines": ["one", "two"], "read_until": 4}}}]})");
    EXPECT_EQ(rig.controller().diagnostics.error_status, 0xA5A5A5A5U);
    EXPECT_EQ(rig.controller().diagnostics.vdm_log.lines, "one\ntwo\n");
    const auto again = load_machine(save_machine(rig.machine()), "state.json");
    ASSERT_TRUE(again) << again.error();
    EXPECT_EQ((*again)->parts().controllers.at(0), rig.controller());
    EXPECT_EQ(load_machine(R"({"controllers": [{"diagnostics": {"stall_ms": 255001}}]})", "x").error(),
              "x:1: 'stall_ms' is 255001; allowed are 0 to 255000");
}

}  // namespace

}  // namespace qrx::sim
