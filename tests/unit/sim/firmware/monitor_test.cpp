// What the controller counts of its I/O, its rate limits, the opcodes it closes, and the error registers of its drives.
#include <gmock/gmock.h>

#include <chrono>

#include "api/src/interface/wire/aer.h"
#include "api/src/interface/wire/cse.h"
#include "api/src/interface/wire/iomon.h"
#include "api/src/interface/wire/nvme.h"
#include "api/src/interface/wire/qos.h"
#include "sim/firmware/key_value.h"
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::string_view kText = R"json({
  "controllers": [{
    "adapter": {"max_ns": 40},
    "drives": [{"id": 0}, {"id": 1}],
    "virtual_disks": [{"id": 0, "raid_mode": "raid0", "members": [0]}, {"id": 1, "raid_mode": "raid0", "members": [1]}],
    "namespaces": [{"nsid": 1, "sectors": 1000}, {"nsid": 2, "sectors": 100, "sector_size": 4096},
                   {"nsid": 32, "sectors": 1000}, {"nsid": 33, "parent_id": 1, "sectors": 1000}]
  }]
})json";

class Monitor : public testing::Test {
protected:
    Controller& controller() { return *rig_.machine().controller(0); }
    NVME_IOmon_NS_Stat_Table counters()
    {
        EXPECT_EQ(rig_.vendor(0x1FE0).status, kGood);
        EXPECT_TRUE(rig_.all_from(sizeof(NVME_IOmon_NS_Stat_Table), 0));
        return rig_.at<NVME_IOmon_NS_Stat_Table>(0);
    }
    NVME_IOmon_Statistics_Table windows()
    {
        EXPECT_EQ(rig_.vendor(0x20E0).status, kGood);
        EXPECT_TRUE(rig_.all_from(sizeof(NVME_IOmon_Statistics_Table), 0));
        return rig_.at<NVME_IOmon_Statistics_Table>(0);
    }
    // The time that a namespace was busy in each window.
    std::vector<QRX_U32> busy(unsigned nsid)
    {
        const NVME_IOmon_Statistics_Table table = windows();
        std::vector<QRX_U32> all;
        for (unsigned window = 0; window < 10; ++window) {
            all.push_back(1000000 - rig_.at<QRX_U32>(40 * (nsid - 1) + 4 * window));
        }
        (void)table;
        return all;
    }
    // Commands, sectors, successes, failures and microseconds of one direction.
    using Numbers = std::vector<QRX_U64>;
    Numbers reads(unsigned nsid)
    {
        const NVME_IOmon_NS_Stat_Table t = counters();
        const unsigned i = nsid - 1;
        return {t.read[i].io_count, t.read[i].sector_count, t.success_count_read[i], t.fail_count_read[i],
                t.io_tick_r[i]};
    }
    Numbers writes(unsigned nsid)
    {
        const NVME_IOmon_NS_Stat_Table t = counters();
        const unsigned i = nsid - 1;
        return {t.write[i].io_count, t.write[i].sector_count, t.success_count_write[i], t.fail_count_write[i],
                t.io_tick_w[i]};
    }
    Completion io(QRX_U8 opcode, QRX_U32 nsid, QRX_U32 lba, QRX_U32 sectors, std::size_t bytes)
    {
        std::vector<QRX_U8> data(bytes, 0x55);
        nvme_admin_cmd command{};
        command.opcode = opcode;
        command.nsid = nsid;
        command.cdw10 = lba;
        command.cdw12 = sectors - 1;
        return rig_.machine().io({}, command, data);
    }
    // Opens or closes opcodes. `count` is told in place of their number where it is given.
    Completion permit(QRX_U32 cdw14, const std::vector<QRX_U16>& opcodes, std::optional<QRX_U16> count = {})
    {
        NVME_SetCmd_Support request{};
        request.total_cnt = count.value_or(static_cast<QRX_U16>(opcodes.size()));
        std::copy_n(opcodes.begin(), std::min<std::size_t>(opcodes.size(), 1023), request.opcode);
        std::array<QRX_U8, 4096> data{};
        EXPECT_TRUE(wire::write(data, 0, request));
        nvme_admin_cmd command{};
        command.opcode = 0xC7;
        command.cdw10 = 1023;
        command.cdw12 = 0x16E0;
        command.cdw14 = cdw14;
        return rig_.machine().admin({}, command, data);
    }
    bool in_log(QRX_U8 opcode)
    {
        EXPECT_EQ(rig_.log_page(5, 4096).status, kGood);
        return (rig_.at<nvme_effects_log>(0).acs[opcode] & 1) != 0;
    }
    // Whether all of the machine is the same after it was saved and loaded.
    void expect_survival()
    {
        const std::string saved = save_machine(rig_.machine());
        const auto loaded = load_machine(saved, "state");
        ASSERT_TRUE(loaded) << loaded.error();
        EXPECT_TRUE((*loaded)->parts() == rig_.machine().parts());
        EXPECT_EQ(save_machine(**loaded), saved);
    }
    AER_Data aer(QRX_U32 id)
    {
        EXPECT_EQ(rig_.vendor(0x0CE1, id).status, kGood);
        EXPECT_EQ(rig_.bytes(0, 8), envelope(0));
        EXPECT_TRUE(rig_.all_from(8 + sizeof(AER_Data), 0));
        return rig_.at<AER_Data>(8);
    }

    Rig rig_ = Rig::of_text(kText);
};

TEST_F(Monitor, ReadsAndWritesOfHostsAreCounted)
{
    EXPECT_EQ(io(2, 1, 0, 8, 4096).status, kGood);
    EXPECT_EQ(io(2, 1, 990, 1, 512).status, kGood);
    EXPECT_EQ(io(1, 1, 0, 16, 8192).status, kGood);
    EXPECT_EQ(io(1, 2, 0, 2, 8192).status, kGood);
    EXPECT_EQ(io(2, 33, 0, 1, 512).status, kGood);  // has no place in the table
    EXPECT_EQ(io(0, 1, 0, 1, 0).status, kGood);     // a flush moves nothing
    EXPECT_EQ(reads(1), (Numbers{2, 9, 2, 0, 91 + 90}));
    EXPECT_EQ(writes(1), (Numbers{1, 16, 1, 0, 34}));
    EXPECT_EQ(reads(2), (Numbers{0, 0, 0, 0, 0}));
    EXPECT_EQ(writes(2), (Numbers{1, 2, 1, 0, 34}));
    EXPECT_EQ(reads(32), (Numbers{0, 0, 0, 0, 0}));
    EXPECT_EQ(counters().time_in_queue[0], 91U + 90 + 34);
    EXPECT_EQ(counters().inflight[0], 0);
    EXPECT_EQ(busy(1)[0], 91U + 90 + 34);
    expect_survival();
}

TEST_F(Monitor, ComparesAreReadsAndWriteZeroesAreWrites)
{
    EXPECT_EQ(io(1, 1, 0, 1, 512).status, kGood);
    EXPECT_EQ(io(5, 1, 0, 1, 512).status, kGood);
    EXPECT_EQ(io(5, 1, 1, 1, 512).status, 0x285U);
    EXPECT_EQ(io(8, 1, 0, 100, 0).status, kGood);
    EXPECT_EQ(io(4, 1, 50, 100, 0).status, kGood);  // uncorrectable from now on
    EXPECT_EQ(io(2, 1, 50, 1, 512).status, 0x281U);
    EXPECT_EQ(reads(1), (Numbers{3, 1, 1, 2, 90}));
    EXPECT_EQ(writes(1), (Numbers{3, 1, 3, 0, 30 + 30 + 30}));
}

TEST_F(Monitor, FailuresAreCountedAndMoveNothing)
{
    EXPECT_EQ(io(2, 1, 1000, 1, 512).status, 0x080U);
    EXPECT_EQ(io(1, 1, 0, 2, 512).status, 0x004U);
    EXPECT_EQ(io(1, 1, 0, 2, 512).status, 0x004U);
    EXPECT_EQ(io(2, 7, 0, 1, 512).status, 0x002U);  // there is no such namespace
    EXPECT_EQ(reads(1), (Numbers{1, 0, 0, 1, 0}));
    EXPECT_EQ(writes(1), (Numbers{2, 0, 0, 2, 0}));
    controller().fail_drive(0);
    EXPECT_EQ(io(2, 1, 0, 1, 512).status, 0x082U);
    EXPECT_EQ(reads(1), (Numbers{2, 0, 0, 2, 0}));
}

TEST_F(Monitor, TheTickFollowsTheClockAndWraps)
{
    EXPECT_EQ(counters().cpu_tick, 0U);
    rig_.machine().advance(milliseconds(1));
    EXPECT_EQ(counters().cpu_tick, 250000U);
    rig_.machine().advance(milliseconds(17179));
    EXPECT_EQ(counters().cpu_tick, static_cast<QRX_U32>(17180 * 250000ULL));
    EXPECT_LT(counters().cpu_tick, 250000U) << "2^32 ticks are 17179.87 ms";
}

TEST_F(Monitor, TheWindowsAreARingThatTheClockDrives)
{
    EXPECT_EQ(windows().cursor, 9) << "the first window is being filled";
    EXPECT_EQ(windows().tag, 0);
    rig_.machine().advance(milliseconds(999));
    EXPECT_EQ(windows().cursor, 9);
    for (unsigned second = 1; second <= 25; ++second) {
        rig_.machine().advance(milliseconds(second == 1 ? 1 : 1000));
        EXPECT_EQ(windows().cursor, (second - 1) % 10) << second;
        EXPECT_EQ(windows().tag, second / 10) << second;
    }
    rig_.machine().advance(seconds(2560 - 25));
    EXPECT_EQ(windows().tag, 0) << "it wraps";
}

TEST_F(Monitor, AWindowThatComesRoundBeginsAnew)
{
    io(2, 1, 0, 1, 512);  // second 0
    rig_.machine().advance(milliseconds(1500));
    io(2, 1, 0, 1, 512);
    io(2, 1, 0, 1, 512);  // second 1
    EXPECT_EQ(busy(1), (std::vector<QRX_U32>{90, 180, 0, 0, 0, 0, 0, 0, 0, 0}));
    rig_.machine().advance(milliseconds(8500));
    EXPECT_EQ(busy(1), (std::vector<QRX_U32>{0, 180, 0, 0, 0, 0, 0, 0, 0, 0})) << "second 10 has begun";
    rig_.machine().advance(milliseconds(999));
    EXPECT_EQ(busy(1)[1], 180U);
    rig_.machine().advance(milliseconds(1));
    EXPECT_EQ(busy(1), std::vector<QRX_U32>(10, 0));
    io(2, 1, 0, 1, 512);
    rig_.machine().advance(hours(24000));
    EXPECT_EQ(busy(1), std::vector<QRX_U32>(10, 0));
    EXPECT_EQ(busy(20), std::vector<QRX_U32>(10, 0)) << "where there is no namespace";
}

TEST_F(Monitor, NothingIsBusyForMoreThanTheSecondHas)
{
    controller().namespaces[0].io.busy[0] = 999950;
    io(2, 1, 0, 1, 512);
    EXPECT_EQ(busy(1)[0], 1000000U);
}

TEST_F(Monitor, AWorkloadComesEvenly)
{
    const QRX_U64 written_before = controller().health.host_writes;
    EXPECT_FALSE(controller().start_workload(1, {.reads = 9000, .writes = 500, .blocks = 8, .duration = 4000}));
    EXPECT_EQ(reads(1), (Numbers{0, 0, 0, 0, 0}));
    EXPECT_EQ(counters().inflight[0], 1);
    rig_.machine().advance(milliseconds(1500));
    // 91 us for each read, 32 us for each write.
    EXPECT_EQ(reads(1), (Numbers{3375, 27000, 3375, 0, 307125}));
    EXPECT_EQ(writes(1), (Numbers{187, 1496, 187, 0, 5984}));
    EXPECT_EQ(busy(1)[0], 2250U * 91 + 125 * 32);
    expect_survival();
    rig_.machine().advance(seconds(10));
    EXPECT_EQ(reads(1), (Numbers{9000, 72000, 9000, 0, 819000}));
    EXPECT_EQ(writes(1), (Numbers{500, 4000, 500, 0, 16000}));
    EXPECT_EQ(counters().inflight[0], 0);
    EXPECT_FALSE(controller().namespaces[0].io.workload);
    EXPECT_EQ(controller().namespaces[0].host_reads, 9000U) << "the health log counts it, too";
    EXPECT_EQ(controller().namespaces[0].sectors_written, 4000U);
    EXPECT_EQ(controller().health.host_writes - written_before, 500U);
    EXPECT_EQ(reads(2), (Numbers{0, 0, 0, 0, 0}));
}

TEST_F(Monitor, AHeavyWorkloadKeepsTheNamespaceBusyWithSeveralCommandsAtATime)
{
    EXPECT_FALSE(controller().start_workload(2, {.reads = 100000, .writes = 0, .blocks = 10, .duration = 1000}));
    EXPECT_EQ(counters().inflight[1], 10) << "100,000 times 100 us in a second";
    rig_.machine().advance(seconds(1));
    EXPECT_EQ(busy(2)[0], 1000000U);
    EXPECT_EQ(counters().time_in_queue[1], 10000000U);
}

TEST_F(Monitor, AWorkloadFailsWhereThereIsNoService)
{
    EXPECT_FALSE(controller().start_workload(1, {.reads = 100, .writes = 80000, .blocks = 1, .duration = 1000}));
    controller().fail_drive(0);
    rig_.machine().advance(seconds(1));
    EXPECT_EQ(reads(1), (Numbers{100, 0, 0, 100, 0}));
    EXPECT_EQ(writes(1), (Numbers{80000, 0, 0, 65535, 0})) << "the counter of failures stays at its highest";
    EXPECT_EQ(counters().inflight[0], 0);
    EXPECT_EQ(busy(1)[0], 0U);
}

TEST_F(Monitor, AWorkloadTakesThePlaceOfAnother)
{
    EXPECT_FALSE(controller().start_workload(1, {.reads = 1000, .writes = 0, .blocks = 1, .duration = 1000}));
    rig_.machine().advance(milliseconds(100));
    EXPECT_FALSE(controller().start_workload(1, {.reads = 0, .writes = 10, .blocks = 1, .duration = 1000}));
    rig_.machine().advance(seconds(5));
    EXPECT_EQ(reads(1)[0], 100U);
    EXPECT_EQ(writes(1)[0], 10U);
    EXPECT_EQ(controller().start_workload(5, {})->text, "no namespace 5 is attached");
    controller().namespaces[1].active = false;
    EXPECT_EQ(controller().start_workload(2, {})->text, "no namespace 2 is attached");
    EXPECT_EQ(controller().start_workload(1, {.reads = 1, .blocks = 1001})->text, "namespace 1 has but 1000 blocks");
}

TEST_F(Monitor, APowerCycleForgetsCountersAndClosedOpcodesAndKeepsLimits)
{
    io(2, 1, 0, 1, 512);
    EXPECT_FALSE(controller().start_workload(1, {.reads = 1000}));
    EXPECT_EQ(permit(0, {0xC2}).status, kGood);
    EXPECT_EQ(rig_.vendor(0x0117E0, 0, 0x0007).status, kGood);
    EXPECT_EQ(rig_.vendor(0x0217E0, 0, 0x0007).status, kGood);
    rig_.machine().advance(seconds(3));
    expect_survival();
    controller().reset();
    EXPECT_EQ(reads(1), (Numbers{0, 0, 0, 0, 0}));
    EXPECT_EQ(busy(1), std::vector<QRX_U32>(10, 0));
    EXPECT_EQ(windows().cursor, 9);
    EXPECT_FALSE(controller().namespaces[0].io.workload);
    EXPECT_TRUE(in_log(0xC2));
    EXPECT_EQ(controller().rate_limits[2].iops_read, 7);
}

TEST_F(Monitor, LimitsOfEachHostFunction)
{
    EXPECT_EQ(rig_.vendor(0x2117E0, 0xFFFF0032, 0x00060005).status, kGood);
    EXPECT_EQ(rig_.vendor(0x0017E0, 0, 0x00000008).status, kGood);
    EXPECT_EQ(rig_.vendor(0x2118E0).status, kGood);
    EXPECT_EQ(raw(rig_.at<QoSTable>(0)), raw(QoSTable{5, 6, 50, 0xFFFF, 1, {}}));
    EXPECT_TRUE(rig_.all_from(sizeof(QoSTable), 0));
    EXPECT_EQ(rig_.vendor(0x0018E0).status, kGood);
    EXPECT_EQ(raw(rig_.at<QoSTable>(0)), raw(QoSTable{8, 0, 0, 0, 1, {}}));
    EXPECT_EQ(rig_.vendor(0x0118E0).status, kGood);
    EXPECT_EQ(raw(rig_.at<QoSTable>(0)), raw(QoSTable{}));
    expect_survival();
    EXPECT_EQ(controller().events.entries.back().sentence(), "controller has the rate limits of host function 0 set");
    EXPECT_EQ(rig_.vendor(0x0017E0).status, kGood);
    EXPECT_EQ(controller().events.entries.back().sentence(),
              "controller has the rate limits of host function 0 lifted");
}

TEST_F(Monitor, LimitsThatAreRefused)
{
    EXPECT_EQ(rig_.vendor(0x2218E0).status, 0x704U);
    EXPECT_EQ(rig_.vendor(0x2217E0).status, 0x704U);
    for (const QRX_U32 word : {1U, 4U, 4U << 16}) {
        EXPECT_EQ(rig_.vendor(0x17E0, 0, word).status, 0x704U) << word;
    }
    for (const QRX_U32 word : {1U, 49U, 49U << 16}) {
        EXPECT_EQ(rig_.vendor(0x17E0, word, 0).status, 0x704U) << word;
    }
    EXPECT_TRUE(controller().rate_limits[0].none());
}

TEST_F(Monitor, AClosedOpcodeIsRefusedAndNotInTheLog)
{
    EXPECT_TRUE(in_log(0xE2));
    EXPECT_EQ(permit(0, {0xE2, 0xC3, 0xC3}).status, kGood);
    EXPECT_EQ(controller().events.entries.back().sentence(), "controller has opcodes closed for physical functions");
    EXPECT_FALSE(in_log(0xE2));
    EXPECT_FALSE(in_log(0xC3));
    EXPECT_TRUE(in_log(0xC2));
    EXPECT_EQ(rig_.vendor(0x00E0).status, 0x001U);
    expect_survival();
    EXPECT_EQ(permit(0x100, {0xE2}).status, kGood);
    EXPECT_EQ(controller().events.entries.back().sentence(), "controller has opcodes opened for physical functions");
    EXPECT_TRUE(in_log(0xE2));
    EXPECT_FALSE(in_log(0xC3));
    EXPECT_EQ(rig_.vendor(0x00E0).status, kGood);
}

TEST_F(Monitor, TheCommandThatOpensIsNeverClosed)
{
    EXPECT_EQ(permit(0, {0xC7}).status, kGood);
    nvme_admin_cmd command{};
    command.opcode = 0xC7;
    command.cdw10 = 1024;
    command.cdw12 = 0x08E0;
    EXPECT_EQ(rig_.admin(command).status, 0x001U);
    EXPECT_EQ(permit(0x100, {0xC7}).status, kGood);
    EXPECT_EQ(rig_.admin(command).status, kGood);
}

TEST_F(Monitor, PhysicalAndVirtualFunctionsHaveOpcodesOfTheirOwn)
{
    EXPECT_EQ(permit(1, {0xE2}).status, kGood);
    EXPECT_EQ(rig_.vendor(0x00E0).status, kGood) << "of a physical function";
    controller().controller_id = 2;
    EXPECT_EQ(rig_.vendor(0x00E0).status, 0x001U);
    EXPECT_FALSE(in_log(0xE2));
    EXPECT_EQ(permit(0x101, {0xE2}).status, 0x015U) << "a virtual function opens nothing";
    controller().controller_id = 1;
    EXPECT_EQ(permit(0x101, {0xE2}).status, kGood);
    controller().controller_id = 33;
    EXPECT_EQ(rig_.vendor(0x00E0).status, kGood);
}

TEST_F(Monitor, OpcodeListsThatAreRefused)
{
    EXPECT_EQ(permit(0, {}).status, 0x704U);
    EXPECT_EQ(permit(0, {0xC2, 6}).status, 0x704U) << "a standard opcode";
    EXPECT_EQ(permit(0, {0xC2, 0x1C2}).status, 0x704U);
    EXPECT_EQ(permit(0, std::vector<QRX_U16>(1023, 0xC2), 1024).status, 0x704U);
    EXPECT_EQ(permit(0, std::vector<QRX_U16>(1023, 0xC2), 0xFFFF).status, 0x704U);
    EXPECT_EQ(permit(2, {0xC2}).status, 0x704U);
    EXPECT_TRUE(in_log(0xC2)) << "all or nothing";
    EXPECT_EQ(permit(0, std::vector<QRX_U16>(1023, 0xC2)).status, kGood);
    nvme_admin_cmd command{};
    command.opcode = 0xC7;
    command.cdw12 = 0x16E0;
    std::array<QRX_U8, 4> little{};
    EXPECT_EQ(rig_.machine().admin({}, command, little).status, 0x002U);
    command.cdw10 = 1022;
    EXPECT_EQ(rig_.admin(command).status, 0x002U) << "not the length that it tells";
}

TEST_F(Monitor, TheErrorRegistersOfADrive)
{
    AER_Data fresh{};
    fresh.AERID = 0x19020001;
    fresh.AERUCESEV = 0x00462030;
    fresh.AERCEM = 0x2000;
    fresh.AERCC = 0xA0;
    EXPECT_EQ(raw(aer(1)), raw(fresh));
    EXPECT_FALSE(controller().put_pcie_error(1, "replay-timeout"));
    EXPECT_FALSE(controller().put_pcie_error(1, "unsupported-request"));
    EXPECT_FALSE(controller().put_pcie_error(1, "completion-timeout"));
    AER_Data seen = fresh;
    seen.AERCS = 1U << 12;
    seen.AERUCES = 1U << 20 | 1U << 14;
    seen.AERCC = 0xA0 | 20;
    const AER_Data now = aer(1);
    EXPECT_NE(now.AERHL[3], 0);
    std::copy(std::begin(now.AERHL), std::end(now.AERHL), seen.AERHL);
    EXPECT_EQ(raw(now), raw(seen)) << "the first error is pointed to";
    EXPECT_EQ(raw(aer(0)), raw(fresh)) << "the other drive";
    expect_survival();
    EXPECT_FALSE(controller().put_pcie_error(1, "none"));
    EXPECT_EQ(raw(aer(1)), raw(fresh));
}

TEST_F(Monitor, EachErrorHasItsBit)
{
    const std::vector<std::pair<const char*, unsigned>> correctable{{"receiver", 0},
                                                                    {"bad-tlp", 6},
                                                                    {"bad-dllp", 7},
                                                                    {"replay-rollover", 8},
                                                                    {"replay-timeout", 12},
                                                                    {"advisory", 13},
                                                                    {"corrected-internal", 14},
                                                                    {"header-log-overflow", 15}};
    for (const auto& [word, bit] : correctable) {
        controller().put_pcie_error(0, "none");
        EXPECT_FALSE(controller().put_pcie_error(0, word));
        EXPECT_EQ(aer(0).AERCS, 1U << bit) << word;
        EXPECT_EQ(aer(0).AERUCES, 0U) << word;
    }
    const std::vector<std::pair<const char*, unsigned>> uncorrectable{
        {"data-link-protocol", 4},   {"poisoned-tlp", 12},    {"flow-control", 13},
        {"completion-timeout", 14},  {"completer-abort", 15}, {"unexpected-completion", 16},
        {"receiver-overflow", 17},   {"malformed-tlp", 18},   {"ecrc", 19},
        {"unsupported-request", 20}, {"acs-violation", 21},   {"uncorrectable-internal", 22},
        {"blocked-multicast", 23},   {"blocked-atomic", 24},  {"blocked-prefix", 25}};
    for (const auto& [word, bit] : uncorrectable) {
        controller().put_pcie_error(0, "none");
        EXPECT_FALSE(controller().put_pcie_error(0, word));
        EXPECT_EQ(aer(0).AERUCES, 1U << bit) << word;
        EXPECT_EQ(aer(0).AERCC & 0x1F, bit) << word;
        EXPECT_EQ((aer(0).AERCC & 1U << 11) != 0, bit == 25) << word;
        EXPECT_EQ(aer(0).AERTLP[0] != 0, bit == 25) << word;
    }
    EXPECT_THAT(controller().put_pcie_error(0, "x")->text,
                testing::StartsWith("'x' is no error; errors are receiver, bad-tlp, "));
    EXPECT_EQ(controller().put_pcie_error(2, "ecrc")->text, "there is no PD 2");
}

TEST_F(Monitor, ErrorRegistersThatCannotBeRead)
{
    const auto verdict = [&](QRX_U32 id) {
        EXPECT_EQ(rig_.vendor(0x0CE1, id).status, kGood);
        EXPECT_TRUE(rig_.all_from(8, 0));
        return rig_.page[4];
    };
    EXPECT_EQ(verdict(2), 6);
    EXPECT_EQ(verdict(0xFFFFFFFF), 6);
    controller().drives[0].config_space.aer = false;
    EXPECT_EQ(verdict(0), 5);
    controller().drives[0].config_space = {};
    controller().drives[0].config_space.answer = ConfigSpace::kTimeout;
    EXPECT_EQ(verdict(0), 1);
    controller().fail_drive(1);
    EXPECT_EQ(verdict(1), 1);
}

TEST_F(Monitor, TheConfigurationSpaceHasTheSameRegisters)
{
    controller().put_pcie_error(0, "blocked-prefix");
    const AER_Data record = aer(0);
    const std::string bytes = raw(record);
    const ConfigSpace& space = controller().drives[0].config_space;
    std::string read;
    for (const QRX_U32 offset :
         {0x00U, 0x04U, 0x08U, 0x0CU, 0x10U, 0x14U, 0x18U, 0x1CU, 0x20U, 0x24U, 0x28U, 0x38U, 0x3CU, 0x40U, 0x44U}) {
        read += raw(space.dword(0x148 + offset));
    }
    EXPECT_EQ(read, bytes);
}

TEST(MonitorText, WhatIsWrongIsTold)
{
    const auto error = [](const std::string& controller) {
        return load_machine(R"({"controllers": [{"drives": [{"id": 0}],
            "virtual_disks": [{"id": 0, "raid_mode": "raid0", "members": [0]}], )" +
                                controller + "}]}",
                            "lab")
            .error();
    };
    const auto of_namespace = [&](const std::string& io) {
        return error(R"("namespaces": [{"nsid": 1, "io": {)" + io + "}}]");
    };
    EXPECT_EQ(of_namespace(R"("workload": {"reads": 5, "elapsed_ms": 4}, "busy_us": [1, 2])"), "");
    EXPECT_THAT(of_namespace(R"("workload": {"elapsed_ms": 1000})"), testing::HasSubstr("is not below 'duration_ms'"));
    EXPECT_THAT(of_namespace(R"("workload": {"duration_ms": 0})"), testing::HasSubstr("'duration_ms' is 0"));
    EXPECT_THAT(of_namespace(R"("busy_us": [1000001])"), testing::HasSubstr("'busy_us'"));
    EXPECT_THAT(of_namespace(R"("busy_us": [0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0])"), testing::HasSubstr("'busy_us'"));
    EXPECT_EQ(error(R"("rate_limits": [{"host": 33, "iops_read": 5}])"), "");
    EXPECT_THAT(error(R"("rate_limits": [{"host": 34}])"), testing::HasSubstr("'host' is 34"));
    EXPECT_THAT(error(R"("rate_limits": [{"host": 1, "bandwidth_write": 49}])"),
                testing::HasSubstr("has limits that are too low"));
    EXPECT_EQ(error(R"("closed_opcodes": {"physical": [194, 226], "virtual": [199]})"), "");
    EXPECT_THAT(error(R"("closed_opcodes": {"virtual": [199, 199]})"), testing::HasSubstr("in order and each once"));
}

TEST(KeyValues, AreSplitAtCommasAndEquals)
{
    const auto pieces = split_key_values("a=1,b,=c,d=e=f,");
    ASSERT_EQ(pieces.size(), 5U);
    EXPECT_EQ(pieces[0].key, "a");
    EXPECT_EQ(pieces[0].value, "1");
    EXPECT_EQ(pieces[1].key, "b");
    EXPECT_FALSE(pieces[1].has_value);
    EXPECT_EQ(pieces[2].key, "");
    EXPECT_EQ(pieces[2].value, "c");
    EXPECT_EQ(pieces[3].value, "e=f");
    EXPECT_EQ(pieces[4].key, "");
    EXPECT_EQ(split_key_values("").size(), 1U);
}

TEST(KeyValues, NumbersAreDecimalOrHexadecimal)
{
    EXPECT_EQ(parse_number("18446744073709551615"), ~0ULL);
    EXPECT_EQ(parse_number("0x1F"), 31U);
    EXPECT_EQ(parse_number("0XfF"), 255U);
    for (const char* const text : {"", "0x", "x", "1x", "-1", "+1", " 1", "18446744073709551616"}) {
        EXPECT_FALSE(parse_number(text)) << text;
    }
}

}  // namespace

}  // namespace qrx::sim
