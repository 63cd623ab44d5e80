// Virtualization Management.
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {
namespace {

constexpr QRX_U32 kInvalidId = 0x11F;
constexpr QRX_U32 kInvalidState = 0x120;
constexpr QRX_U32 kInvalidCount = 0x121;

enum Action : QRX_U32 { kAllocate = 1, kOffline = 7, kAssign = 8, kOnline = 9 };

class Virtualization : public testing::Test {
protected:
    Completion manage(QRX_U32 action, QRX_U32 id, QRX_U32 count, QRX_U32 kind = 0)
    {
        nvme_admin_cmd command{};
        command.opcode = 0x1C;
        command.cdw10 = action | kind << 8 | id << 16;
        command.cdw11 = count;
        return rig.machine().admin({}, command, {});
    }
    [[nodiscard]] HostFunction function(QRX_U16 id) const { return rig.controller().host_functions.function(id); }

    Rig rig{"jbof"};
};

TEST_F(Virtualization, APrimaryFunctionGetsItsResourcesWithTheNextReset)
{
    const Completion done = manage(kAllocate, 0, 16);
    EXPECT_EQ(done.status, kGood);
    EXPECT_EQ(done.result, 16U);
    EXPECT_EQ(manage(kAllocate, 1, 5, 1).status, kGood);
    EXPECT_EQ(function(0), (HostFunction{0, {0, 0}, {16, 0}, false}));
    EXPECT_EQ(rig.controller().events.entries.back().text,
              "has host function 1 get 0 queues and 5 interrupts at the next reset");
    rig.machine().controller(0)->reset();
    EXPECT_EQ(function(0), (HostFunction{0, {16, 0}, {16, 0}, false}));
    EXPECT_EQ(function(1), (HostFunction{1, {0, 5}, {0, 5}, false}));
}

TEST_F(Virtualization, ASecondaryFunctionIsAssignedWhatItHasWhileItIsOffline)
{
    EXPECT_EQ(manage(kOffline, 2, 0).status, kGood);
    EXPECT_EQ(manage(kAssign, 2, 16).result, 16U);
    EXPECT_EQ(function(2), (HostFunction{2, {16, 0}, {}, false}));
    EXPECT_EQ(manage(kOnline, 2, 16).status, kGood);
    EXPECT_EQ(function(2), (HostFunction{2, {16, 0}, {}, true}));
    EXPECT_EQ(rig.controller().events.entries.back().text,
              "has host function 2 online with 16 queues and 0 interrupts");
    EXPECT_EQ(manage(kAssign, 2, 4).status, kInvalidState);
    EXPECT_EQ(manage(kOffline, 2, 0).status, kGood);
    EXPECT_EQ(function(2), HostFunction{2}) << "what it had is free again";
    EXPECT_TRUE(rig.controller().host_functions.changed.empty());
}

TEST_F(Virtualization, AFunctionNeedsTwoQueuesToGoOnline)
{
    EXPECT_EQ(manage(kOnline, 33, 0).status, kInvalidState);
    EXPECT_EQ(manage(kAssign, 33, 1).status, kGood);
    EXPECT_EQ(manage(kOnline, 33, 1).status, kInvalidState);
    EXPECT_FALSE(function(33).online);
    EXPECT_EQ(manage(kAssign, 33, 2).status, kGood);
    EXPECT_EQ(manage(kOnline, 33, 2).status, kGood);
}

TEST_F(Virtualization, ThePoolIsShared)
{
    EXPECT_EQ(manage(kAssign, 2, 17).status, kInvalidCount);
    for (QRX_U32 id = 2; id < 17; ++id) {
        EXPECT_EQ(manage(kAssign, id, 16).status, kGood);
    }
    EXPECT_EQ(manage(kAllocate, 0, 17).status, kInvalidCount);
    EXPECT_EQ(manage(kAllocate, 0, 16).status, kGood);
    EXPECT_EQ(manage(kAssign, 17, 1).status, kInvalidCount);
    EXPECT_EQ(manage(kAllocate, 1, 1).status, kInvalidCount);
    EXPECT_EQ(manage(kAssign, 17, 1, 1).status, kGood) << "interrupts are another pool";
    EXPECT_EQ(manage(kAllocate, 0, 15).status, kGood) << "its own are no hindrance";
    EXPECT_EQ(manage(kAssign, 17, 1).status, kGood);
    EXPECT_EQ(manage(kAllocate, 0, 0xFFFFFFFF).status, kInvalidCount);
}

TEST_F(Virtualization, Refusals)
{
    EXPECT_EQ(manage(kAllocate, 2, 1).status, kInvalidId);
    EXPECT_EQ(manage(kAssign, 1, 1).status, kInvalidId);
    EXPECT_EQ(manage(kOffline, 34, 0).status, kInvalidId);
    EXPECT_EQ(manage(kOnline, 0xFFFF, 0).status, kInvalidId);
    for (const QRX_U32 action : {0U, 2U, 6U, 10U, 15U}) {
        EXPECT_EQ(manage(action, 2, 0).status, 0x002U) << action;
    }
    EXPECT_EQ(manage(kAssign, 2, 1, 2).status, 0x122U);
    EXPECT_EQ(manage(kAllocate, 0, 1, 7).status, 0x122U);
    EXPECT_TRUE(rig.controller().host_functions.changed.empty());
}

TEST_F(Virtualization, TheControllerTellsThatItHasIt)
{
    ASSERT_EQ(rig.identify(1).status, kGood);
    EXPECT_EQ(rig.at<nvme_id_ctrl>(0).oacs & 1U << 7, 1U << 7);
    ASSERT_EQ(rig.log_page(5, 4096).status, kGood);
    EXPECT_EQ(rig.at<QRX_U32>(std::size_t{4} * 0x1C), 1U);
}

TEST_F(Virtualization, AVirtualFunctionHasNone)
{
    rig = Rig::of_text(R"({"controllers": [{"controller_id": 2}]})");
    EXPECT_EQ(manage(kAllocate, 0, 1).status, 0x001U);
}

TEST_F(Virtualization, TheStateKeepsIt)
{
    manage(kAllocate, 1, 7);
    manage(kAssign, 5, 3);
    manage(kAssign, 5, 2, 1);
    manage(kOnline, 5, 3);
    const std::string text = save_machine(rig.machine());
    rig = Rig::of_text(text);
    EXPECT_EQ(save_machine(rig.machine()), text);
    EXPECT_EQ(function(1), (HostFunction{1, {}, {7, 0}, false}));
    EXPECT_EQ(function(5), (HostFunction{5, {3, 2}, {}, true}));
}

TEST_F(Virtualization, AStateWithAnIdTwiceIsRefused)
{
    const auto made = load_machine(
        R"({"controllers": [{"host_functions": {"changed": [{"id": 3, "online": true}, {"id": 3}]}}]})", "test.json");
    EXPECT_FALSE(made);
}

}  // namespace
}  // namespace qrx::sim
