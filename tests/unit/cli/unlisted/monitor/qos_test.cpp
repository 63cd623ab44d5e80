// `qos`.
#include "cli/Functions/simple/simple_qos.h"

#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

class Qos : public StorageTest {
protected:
    static Command get(QRX_U32 host)
    {
        return plain(0x18E0 | host << 16, 0x1401).receives(4096).carries(Bytes(4096, 0xFF));
    }
    static Command set(QRX_U32 host, QRX_U32 iops, QRX_U32 bandwidth)
    {
        return plain(0x17E0 | host << 16, 0x7401).word(13, iops).word(14, bandwidth);
    }
    const std::string kPage = std::string("Description") + simple_qos_sh + simple_qos_help;
    const Outcome kDone{0, "Set QoS success.\n"};
    const Outcome kDuplicate{1, "Duplicated option specified.\n"};
};

TEST_F(Qos, Help)
{
    EXPECT_TRUE(std::string(simple_qos_help)
                    .starts_with("\nqos -a [<get -i <PH/VF ID> | set -i <PH/VF ID> --ir <iops read> --iw <iops write> "
                                 "--br <bandwidth read> --bw <bandwidth write> ] [-h]\n"));
    EXPECT_EQ(simple_qos_sh[0], ':');
    EXPECT_EQ(unlisted({"qos"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"qos", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(unlisted({"qos", "-a", "get", "--help"}), (Outcome{0, kPage}));
}

TEST_F(Qos, TheTable)
{
    machine.expect(get(33).data({0x39, 0x30, 0, 0, 0x31, 0xD4, 1, 0, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(unlisted({"qos", "-a", "get", "-i", "33"}), (Outcome{0,
                                                                   "Host ID:                33\n"
                                                                   "IOPS Read:              12345K\n"
                                                                   "IOPS Write:             disable\n"
                                                                   "BandWidth Read:         54321Mib\n"
                                                                   "BandWidth Write:        1Mib\n"
                                                                   "Get QoS success.\n"}));
    machine.expect(get(0).data({0, 0, 7, 0, 0, 0, 0, 0}));
    EXPECT_EQ(unlisted({"qos", "--action=GET", "--id=0x0", "-c", "ON"}), (Outcome{0,
                                                                                  "Host ID:                0\n"
                                                                                  "IOPS Read:              disable\n"
                                                                                  "IOPS Write:             7K\n"
                                                                                  "BandWidth Read:         disable\n"
                                                                                  "BandWidth Write:        disable\n"
                                                                                  "Get QoS success.\n"}));
}

TEST_F(Qos, TheTableIsShownWhateverTheOutcome)
{
    machine.expect(get(16).status(0x704));
    EXPECT_EQ(unlisted({"qos", "-a", "get", "-i", "0x10"}), (Outcome{0x704,
                                                                     "Host ID:                16\n"
                                                                     "IOPS Read:              65535K\n"
                                                                     "IOPS Write:             65535K\n"
                                                                     "BandWidth Read:         65535Mib\n"
                                                                     "BandWidth Write:        65535Mib\n"
                                                                     "Get QoS failed.(error code: 0x704)\n",
                                                                     "Invalid parameter (Status Code: 0x704)\n"}));
    machine.expect(get(1).data({1, 0, 2, 0, 3, 0, 4, 0}).status(6));
    EXPECT_EQ(unlisted({"qos", "-a", "get", "-i", "1"}).stream,
              "Host ID:                1\nIOPS Read:              1K\nIOPS Write:             2K\n"
              "BandWidth Read:         3Mib\nBandWidth Write:        4Mib\nGet QoS failed.(error code: 0x06)\n");
}

TEST_F(Qos, EachLimitHasItsPlace)
{
    machine.expect(set(2, 0x5678'1234, 0xDEF0'9ABC));
    EXPECT_EQ(unlisted({"qos", "-a", "set", "-i", "2", "--ir", "0x1234", "--iw", "0x5678", "--br", "0x9abc", "--bw",
                        "0xDEF0"}),
              kDone);
    machine.expect(set(33, 0xFFFF'0005, 0x0000'0032));
    EXPECT_EQ(
        unlisted({"qos", "-a", "SET", "-i", "33", "-0", "5", "-1", "65535", "-2", "50", "-3", "0", "--control", "off"}),
        kDone);
    machine.expect(set(0, 0, 0));
    EXPECT_EQ(unlisted({"qos", "-a", "set", "-i", "0", "--ir=0", "--iw=0", "--br=0", "--bw=0"}), kDone);
    machine.expect(set(0, 0x00050005, 0x00320032).status(0x701));
    EXPECT_EQ(unlisted({"qos", "-a", "set", "-i", "0", "--ir=5", "--iw=5", "--br=50", "--bw=50"}),
              (Outcome{0x701, "Set QoS failed.(error code: 0x701)\n", "Failed (Status Code: 0x701)\n"}));
}

TEST_F(Qos, WhatIsNoNumber)
{
    EXPECT_EQ(unlisted({"qos", "-i", "x"}), (Outcome{0, "-i : invalid host id 'x'\n"}));
    EXPECT_EQ(unlisted({"qos", "-i", "-1"}), (Outcome{0, "-i : invalid host id '-1'\n"}));
    EXPECT_EQ(unlisted({"qos", "--ir", "5K"}), (Outcome{0, "--ir : invalid IOPS read '5K'\n"}));
    EXPECT_EQ(unlisted({"qos", "--iw", "ff"}), (Outcome{0, "--iw : invalid IOPS write 'ff'\n"}));
    EXPECT_EQ(unlisted({"qos", "--br", "5.0"}), (Outcome{0, "--br : invalid bandwidth read '5.0'\n"}));
    EXPECT_EQ(unlisted({"qos", "--bw", "-50"}), (Outcome{0, "--bw : invalid bandwidth write '-50'\n"}));
    EXPECT_EQ(unlisted({"qos", "-a", "show"}), (Outcome{0, "-a : invalid action 'show'.\n"}));
    EXPECT_EQ(unlisted({"qos", "-c", "maybe"}), (Outcome{0, "-a : invalid action 'maybe'.\n"}));
    EXPECT_EQ(unlisted({"qos", "-z"}), (Outcome{0, "", "", "qos: illegal option -- z\n"}));
}

TEST_F(Qos, HostsOutOfRange)
{
    const Outcome refused{0, "-i : host id out of range , the range is from 0 to 33\n"};
    for (const char* const id : {"34", "0x22", "65536", "0x10000", "99999999999", "0x100000000", "-0x1"}) {
        EXPECT_EQ(unlisted({"qos", "-a", "get", "-i", id}), refused) << id;
    }
}

TEST_F(Qos, LimitsThatAreTooLow)
{
    for (const std::string value : {"1", "4", "0x4"}) {
        EXPECT_EQ(unlisted({"qos", "--ir", value}),
                  (Outcome{0, "--ir : invalid value '" + value + "', it should more than 5.\n"}));
        EXPECT_EQ(unlisted({"qos", "--iw", value}),
                  (Outcome{0, "--iw : invalid value '" + value + "', it should more than 5.\n"}));
    }
    for (const std::string value : {"1", "49", "0x31"}) {
        EXPECT_EQ(unlisted({"qos", "--br", value}),
                  (Outcome{0, "--iw : invalid value '" + value + "', it should more than 50.\n"}))
            << "it bears the other's name";
        EXPECT_EQ(unlisted({"qos", "--bw", value}),
                  (Outcome{0, "--bw : invalid value '" + value + "', it should more than 50.\n"}));
    }
}

TEST_F(Qos, LimitsThatNoFieldHolds)
{
    // Cut to 16 bits these would lift the limit, or reach into the next one.
    for (const std::string value : {"65536", "0x10000", "0x7fffffff", "99999999999", "-0x10"}) {
        EXPECT_EQ(unlisted({"qos", "--ir", value}), (Outcome{0, "--ir : invalid IOPS read '" + value + "'\n"}));
        EXPECT_EQ(unlisted({"qos", "--bw", value}), (Outcome{0, "--bw : invalid bandwidth write '" + value + "'\n"}));
    }
}

TEST_F(Qos, Checks)
{
    for (const char* const twice : {"-a", "-c", "-i", "--ir", "--iw", "--br", "--bw"}) {
        const std::string word = twice;
        const std::string value = word == "-a" ? "get" : word == "-c" ? "on" : word == "-i" ? "1" : "50";
        EXPECT_EQ(unlisted({"qos", word, value, word, value}), kDuplicate) << word;
    }
    EXPECT_EQ(unlisted({"qos", "-i", "1"}), (Outcome{0, "qos: option -a is required\n"}));
    EXPECT_EQ(unlisted({"qos", "-a", "set"}), (Outcome{0, "qos: option -i is required\n"}));
    EXPECT_EQ(unlisted({"qos", "-a", "set", "-i", "0"}), (Outcome{0, "qos: option -0 is required\n"}));
    EXPECT_EQ(unlisted({"qos", "-a", "set", "-i", "0", "--ir", "5"}), (Outcome{0, "qos: option -1 is required\n"}));
    EXPECT_EQ(unlisted({"qos", "-a", "set", "-i", "0", "--ir", "5", "--iw", "5", "--bw", "50"}),
              (Outcome{0, "qos: option -2 is required\n"}));
    EXPECT_EQ(unlisted({"qos", "-a", "set", "-i", "0", "--ir", "5", "--iw", "5", "--br", "50"}),
              (Outcome{0, "qos: option -3 is required\n"}));
}

TEST_F(Qos, DebugLines)
{
    dbg_enable = 1;
    machine.expect(set(2, 0x00060005, 0x00340033));
    EXPECT_EQ(unlisted({"qos", "-a", "set", "-i", "2", "--ir=5", "--iw=6", "--br=51", "--bw=52"}),
              (Outcome{0,
                       "CDW[0] : 0x000000e2\nCDW[10]: 0x00000000\nCDW[12]: 0x000217e0\nCDW[13]: 0x00060005\n"
                       "CDW[14]: 0x00340033\nSet QoS success.\n"}));
    machine.expect(get(2).data({0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(unlisted({"qos", "-a", "get", "-i", "2"})
                    .stream.starts_with("CDW[0] : 0x000000e2\nCDW[10]: 0x00000000\nCDW[12]: 0x000218e0\nHost ID:"));
}

}  // namespace
