// `iomon_polling`.
#include "cli/Functions/simple/simple_iomon_polling.h"

#include <gmock/gmock.h>

#include "api/src/interface/wire/ns.h"
#include "tests/unit/cli/unlisted/monitor/iomon_fixture.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

// Seconds at which the command looked at its clock, and until which it slept.
struct Clock {
    std::vector<long> slept;
    timespec time{100, 250};
};
Clock gClock;

// What a namespace's counters are at one sample.
struct Counters {
    QRX_U32 tick;
    QRX_U64 reads;
    QRX_U64 read_sectors;
    QRX_U64 writes;
    QRX_U64 written_sectors;
    QRX_U64 read_ticks;
    QRX_U64 write_ticks;
};

class IomonPolling : public IomonTest {
protected:
    IomonPolling()
    {
        current().MaxNS = 32;
        gClock = {};
        // A look at the clock takes no time; each command took a tenth of a second.
        qrx::pollingClock = {[] { return gClock.time; },
                             [](const timespec& until) {
                                 gClock.slept.push_back(until.tv_sec);
                                 EXPECT_EQ(until.tv_nsec, gClock.time.tv_nsec);
                                 gClock.time = until;
                             }};
    }
    ~IomonPolling() override { qrx::pollingClock = saved_; }

    static Command readList() { return page(0xE5, 0x1001); }
    // A list in which namespace 5 has sectors of 4096 bytes, and each of its neighbours 512.
    static Bytes list()
    {
        Bytes records;
        for (const QRX_U8 id : {QRX_U8{4}, QRX_U8{5}, QRX_U8{6}}) {
            NVME_NS_Info ns{};
            ns.NSID = id;
            ns.Status = 5;
            ns.SectorSize = id == 5 ? 4096 : 512;
            const Bytes bytes = bytesOf(ns);
            records.insert(records.end(), bytes.begin(), bytes.end());
        }
        return envelope(records);
    }
    static Command sample(const Counters& now, unsigned id = 5)
    {
        Bytes bytes = counters();
        const std::size_t i = id - 1;
        put(bytes, 16 * i, now.reads, 8);
        put(bytes, 16 * i + 8, now.read_sectors, 8);
        put(bytes, 512 + 16 * i, now.writes, 8);
        put(bytes, 512 + 16 * i + 8, now.written_sectors, 8);
        put(bytes, 1664 + 8 * i, now.read_ticks, 8);
        put(bytes, 1920 + 8 * i, now.write_ticks, 8);
        put(bytes, 2496, now.tick, 4);
        return readCounters().data(bytes);
    }

    const std::string kPage = std::string("Description:For polling IO monitor statistics") + simple_iomon_polling_help;

private:
    qrx::PollingClock saved_ = qrx::pollingClock;
};

constexpr QRX_U32 kSecond = 250000000;  // of the controller's clock

TEST_F(IomonPolling, Help)
{
    const std::string text = simple_iomon_polling_help;
    EXPECT_TRUE(text.starts_with("\niomon [-a <show> | -i <NS id> |-h ]\n")) << "the other command's line";
    EXPECT_THAT(text, testing::HasSubstr("-t, --time <polling time(seconds)>"));
    EXPECT_THAT(text, testing::HasSubstr("iomon_polling -i 1 -t 10"));
    EXPECT_EQ(unlisted({"iomon_polling"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"iomon_polling", "-h"}), (Outcome{0, kPage}));
}

TEST_F(IomonPolling, ChecksInTheirOrder)
{
    EXPECT_EQ(unlisted({"iomon_polling", "-i", "33", "-t", "x"}),
              (Outcome{0, "-i : invalid id range, it should from 1 to 32.\n"}));
    EXPECT_EQ(unlisted({"iomon_polling", "-a", "x"}), (Outcome{0, "-a : invalid action 'x'.\n"}));
    EXPECT_EQ(unlisted({"iomon_polling", "-i", "x"}), (Outcome{0, "-i : id should be a number\n"}));
    EXPECT_EQ(unlisted({"iomon_polling", "-t", "1", "-t", "1"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(unlisted({"iomon_polling", "-i", "1", "-i", "1"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(unlisted({"iomon_polling", "-a", "show", "-a", "show"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(unlisted({"iomon_polling", "-t", "x"}), (Outcome{0, "iomon_polling: option -i is required\n"}));
    EXPECT_EQ(unlisted({"iomon_polling", "-a", "show"}), (Outcome{0, "iomon_polling: option -i is required\n"}));
    EXPECT_EQ(unlisted({"iomon_polling", "-i", "1", "-a", "show"}),
              (Outcome{0, "iomon_polling: option -t is required\n"}));
    EXPECT_EQ(unlisted({"iomon_polling", "-i", "1", "-t", "x", "--outputfile=/nowhere/out"}),
              (Outcome{0, "File is not exist.\n"}));
    EXPECT_EQ(unlisted({"iomon_polling", "-i", "1", "-t", "x"}), (Outcome{0, "-t : time should be a number\n"}));
    EXPECT_EQ(unlisted({"iomon_polling", "-i", "1", "-t", "-1"}), (Outcome{0, "-t : time should be a number\n"}));
    EXPECT_EQ(unlisted({"iomon_polling", "-z"}), (Outcome{0, "", "", "iomon_polling: illegal option -- z\n"}));
}

TEST_F(IomonPolling, ThePageOfTheOtherCommand)
{
    expectBoth();
    EXPECT_EQ(unlisted({"iomon_polling", "-a", "show", "-i", "1", "-t", "5"}), (Outcome{0, pageOfAll()}));
    EXPECT_TRUE(gClock.slept.empty());
    current().MaxNS = 0;
    expectBoth();
    EXPECT_EQ(unlisted({"iomon_polling", "-a", "show", "-i", "1", "-t", "5"}), (Outcome{0, pageOfAll()}));
}

TEST_F(IomonPolling, AControllerWithoutNamespacesIsRefused)
{
    current().MaxNS = 0;
    EXPECT_EQ(unlisted({"iomon_polling", "-i", "1", "-t", "1"}), (Outcome{0, "Get MaxNS from adapter info fail.\n"}));
}

TEST_F(IomonPolling, ABlockForEachSecondAndTheirAverages)
{
    const Scratch scratch;
    machine.expect(readList().data(list()));
    machine.expect(sample({4294967290U, 100, 1000, 50, 500, 11, 12}));
    machine.expect(sample({kSecond - 6, 2100, 1000 + 5120, 50 + 500, 500 + 2560, 13, QRX_U64{5} << 32}));  // it wrapped
    machine.expect(sample({kSecond * 3 / 2 - 6, 2100, 6120, 551, 3060, 14, 15}));  // half a second
    machine.expect(sample({kSecond * 5 / 2 - 6, 2100, 6120, 551, 3060, 14, 15}));
    EXPECT_EQ(unlisted({"iomon_polling", "-i", "5", "-t", "3", "--outputfile=" + scratch.path("out")}),
              (Outcome{0, "Bandwith I/O count AVG R:6.666667M/W:3.333333M, IOPS R:0.666667k/W:0.167333k\n",
                       "Spend time(microseconds):1000000.000000, R IO cnt=2000, W IO cnt=500, total R(2100)/W(550), "
                       "tick R(13)/W(21474836480)\n"
                       "Bandwith : R: 20.000000M, W: 10.000000 M\n"
                       "IOPS R: 2.000000k, W: 0.500000k\n\n"
                       "Spend time(microseconds):500000.000000, R IO cnt=0, W IO cnt=1, total R(2100)/W(551), "
                       "tick R(14)/W(15)\n"
                       "Bandwith : R: 0.000000M, W: 0.000000 M\n"
                       "IOPS R: 0.000000k, W: 0.002000k\n\n"
                       "Spend time(microseconds):1000000.000000, R IO cnt=0, W IO cnt=0, total R(2100)/W(551), "
                       "tick R(14)/W(15)\n"
                       "Bandwith : R: 0.000000M, W: 0.000000 M\n"
                       "IOPS R: 0.000000k, W: 0.000000k\n\n"}));
    EXPECT_EQ(gClock.slept, (std::vector<long>{101, 102, 103})) << "between the samples, and not behind the last";
}

TEST_F(IomonPolling, BandwidthNeedsCommandsAndIsCutTo32Bits)
{
    machine.expect(readList().data(list()));
    machine.expect(sample({0, 0, 0, 0, 0, 0, 0}));
    // Sectors without a command count for nothing; a million sectors and more of 4096 bytes overflow.
    machine.expect(sample({kSecond, 0, 99999, 1, (1 << 20) + 256, 0, 0}));
    EXPECT_EQ(unlisted({"iomon_polling", "-i", "5", "-t", "1"}),
              (Outcome{0, "Bandwith I/O count AVG R:0.000000M/W:1.000000M, IOPS R:0.000000k/W:0.001000k\n",
                       "Spend time(microseconds):1000000.000000, R IO cnt=0, W IO cnt=1, total R(0)/W(1), "
                       "tick R(0)/W(0)\nBandwith : R: 0.000000M, W: 1.000000 M\nIOPS R: 0.000000k, W: 0.001000k\n\n"}));
}

TEST_F(IomonPolling, AnUnknownSectorSizeLeavesTheBandwidthZero)
{
    const auto bandwidth = [&](const Bytes& answer, unsigned id) {
        machine.expect(readList().data(answer));
        machine.expect(sample({0, 0, 0, 0, 0, 0, 0}, id));
        machine.expect(sample({kSecond, 1, 1 << 19, 1, 1 << 18, 0, 0}, id));
        const Outcome outcome = unlisted({"iomon_polling", "-i", std::to_string(id), "-t", "1"});
        const std::size_t at = outcome.out.find("Bandwith");
        return outcome.out.substr(at, outcome.out.find('\n', at) - at);
    };
    EXPECT_EQ(bandwidth(list(), 5), "Bandwith : R: 2048.000000M, W: 1024.000000 M");
    EXPECT_EQ(bandwidth(list(), 4), "Bandwith : R: 256.000000M, W: 128.000000 M");
    EXPECT_EQ(bandwidth(list(), 7), "Bandwith : R: 0.000000M, W: 0.000000 M");
    Bytes refused = list();
    refused[4] = 1;
    EXPECT_EQ(bandwidth(refused, 5), "Bandwith : R: 0.000000M, W: 0.000000 M");
    Bytes foreign = list();
    foreign[0] = 'X';
    EXPECT_EQ(bandwidth(foreign, 5), "Bandwith : R: 0.000000M, W: 0.000000 M");
    current().MaxNS = 1;
    EXPECT_EQ(bandwidth(list(), 5), "Bandwith : R: 0.000000M, W: 0.000000 M") << "beyond the records that there are";
}

TEST_F(IomonPolling, IdsOfTheListThatHaveNoPlaceAreCut)
{
    Bytes listed;
    for (unsigned i = 0; i < 42; ++i) {
        NVME_NS_Info ns{};
        ns.NSID = static_cast<QRX_U8>(i < 10 ? 0 : i + 200);
        ns.Status = 1;
        ns.SectorSize = 4096;
        const Bytes bytes = bytesOf(ns);
        listed.insert(listed.end(), bytes.begin(), bytes.end());
    }
    current().MaxNS = 255;
    machine.expect(readList().data(envelope(listed)));
    machine.expect(sample({0, 0, 0, 0, 0, 0, 0}, 32));
    machine.expect(sample({kSecond, 1, 1 << 19, 0, 0, 0, 0}, 32));
    EXPECT_THAT(unlisted({"iomon_polling", "-i", "32", "-t", "1"}).out,
                testing::HasSubstr("Bandwith : R: 0.000000M, W: 0.000000 M\n"));
}

TEST_F(IomonPolling, AFailedSampleIsToldAndCountsForNothing)
{
    const std::string failed = "iomon command, get NS raw failed.(error code: 0x06)\n";
    machine.expect(readList().data(list()));
    machine.expect(readCounters().status(6));
    machine.expect(sample({0, 0, 0, 0, 0, 0, 0}));
    machine.expect(readCounters().status(6));
    machine.expect(sample({2 * kSecond, 4000, 5120, 0, 0, 0, 0}));
    const std::string told = "Internal Error (Status Code: 0x6)\n";
    EXPECT_EQ(
        unlisted({"iomon_polling", "-i", "5", "-t", "3"}),
        (Outcome{0, failed + failed + "Bandwith I/O count AVG R:6.666667M/W:0.000000M, IOPS R:0.666667k/W:0.000000k\n",
                 told + told +
                     "Spend time(microseconds):2000000.000000, R IO cnt=4000, W IO cnt=0, total R(4000)/W(0), "
                     "tick R(0)/W(0)\nBandwith : R: 20.000000M, W: 0.000000 M\n"
                     "IOPS R: 2.000000k, W: 0.000000k\n\n"}));
    EXPECT_EQ(gClock.slept.size(), 3U);
}

TEST_F(IomonPolling, NoTimeIsNotDividedBy)
{
    machine.expect(readList().data(list()));
    machine.expect(sample({7, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(unlisted({"iomon_polling", "-i", "5", "-t", "0"}),
              (Outcome{0, "Bandwith I/O count AVG R:0.000000M/W:0.000000M, IOPS R:0.000000k/W:0.000000k\n"}));
    EXPECT_TRUE(gClock.slept.empty());
}

TEST_F(IomonPolling, AClockThatStandsStillMeasuresNothing)
{
    machine.expect(readList().data(list()));
    machine.expect(sample({7, 0, 0, 0, 0, 0, 0}));
    machine.expect(sample({7 + 249, 100, 2560, 0, 0, 0, 0}));  // less than a microsecond
    EXPECT_EQ(unlisted({"iomon_polling", "-i", "5", "-t", "1"}).stream,
              "Bandwith I/O count AVG R:10.000000M/W:0.000000M, IOPS R:0.000000k/W:0.000000k\n");
}

TEST_F(IomonPolling, DebugLines)
{
    dbg_enable = 1;
    Bytes foreign = list();
    foreign[0] = 'A';
    foreign[1] = 'B';
    foreign[2] = 'C';
    machine.expect(readList().data(foreign));
    machine.expect(sample({7, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(unlisted({"iomon_polling", "-i", "5", "-t", "0"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000000e5\nreceive sign get 0x41 0x42 0x43 expect 0x51 0x52 0x58\n"
              "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x00001fe0\n"
              "Bandwith I/O count AVG R:0.000000M/W:0.000000M, IOPS R:0.000000k/W:0.000000k\n");
}

TEST(PollingClock, SleepsToAnAbsoluteTime)
{
    const timespec start = qrx::pollingClock.now();
    timespec until = start;
    until.tv_nsec += 20000000;
    if (until.tv_nsec >= 1000000000) {
        until.tv_nsec -= 1000000000;
        ++until.tv_sec;
    }
    timespec used{};
    timespec before{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &before);
    qrx::pollingClock.sleepUntil(until);
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    const auto nanoseconds = [](const timespec& time) { return time.tv_sec * 1000000000LL + time.tv_nsec; };
    EXPECT_GE(nanoseconds(qrx::pollingClock.now()), nanoseconds(until));
    EXPECT_LT(nanoseconds(used) - nanoseconds(before), 10000000) << "it slept";
    qrx::pollingClock.sleepUntil(start);  // has gone by
}

}  // namespace
