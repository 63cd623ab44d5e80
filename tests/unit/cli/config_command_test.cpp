// `get`, `set` and `debuglv`.
#include "cli/Functions/simple/simple_config.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

class ConfigCommands : public StorageTest {
protected:
    static Command read() { return page(0x01E0, 0x1401).word(10, 1023); }
    static Command readOk(QRX_U8 autoRebuild, QRX_U8 rate)
    {
        return read().data(envelope(NVME_Adapter_Config{.AutoRebuildOn = autoRebuild, .BGARate = rate}));
    }
    static Command write(QRX_U32 cdw14) { return plain(0x02E0, 0x5401).word(14, cdw14); }
    static Command level(QRX_U32 unit) { return plain(0x12E0 | unit << 16, 0x1001); }
};

const std::string kOnHigh =
    "Auto Rebuild:            on\n"
    "BGA Rate:                High\n\n";
const std::string kOffLow =
    "Auto Rebuild:            off\n"
    "BGA Rate:                Low\n\n";

class Get : public ConfigCommands {};

TEST_F(Get, Help)
{
    EXPECT_EQ(command({"get"}), (Outcome{1, expected::kGetPage}));
    EXPECT_EQ(command({"get", "-h"}), (Outcome{0, expected::kGetPage}));
    EXPECT_EQ(command({"get", "-o", "hba", "--help"}), (Outcome{0, expected::kGetPage}));
}

TEST_F(Get, TheCurrentControllersSettingsAsOftenAsThereAreControllers)
{
    machine.expect(readOk(1, 0));
    machine.expect(readOk(2, 32));
    EXPECT_EQ(command({"get", "-o", "hba"}), (Outcome{0, kOnHigh + kOffLow}));
    gCurrentAdapter = 0;
    machine.addController();
    gNumAdaptersFound = 3;
    for (int i = 0; i < 3; ++i) {
        machine.expect(readOk(0, 32).on(0));
    }
    EXPECT_EQ(command({"get", "--object", "HBA"}), (Outcome{0, kOffLow + kOffLow + kOffLow}));
}

TEST_F(Get, TheControllerNamedByIdOrAtStart)
{
    machine.expect(readOk(1, 0).on(0));
    EXPECT_EQ(command({"get", "-o", "hba", "-i", "0"}), (Outcome{0, kOnHigh}));
    machine.expect(readOk(1, 0));
    EXPECT_EQ(command({"get", "-o", "hba", "--id=1"}), (Outcome{0, kOnHigh}));
    gSpecificAdapterFlag = 1;
    machine.expect(readOk(0, 32));
    EXPECT_EQ(command({"get", "-o", "hba"}), (Outcome{0, kOffLow}));
    machine.expect(readOk(0, 32).on(0));
    EXPECT_EQ(command({"get", "-o", "hba", "-i", "0"}), (Outcome{0, kOffLow}));
    g_oneBaseMode = 1;
    machine.expect(readOk(0, 32));
    EXPECT_EQ(command({"get", "-o", "hba", "-i", "2"}), (Outcome{0, kOffLow}));
}

TEST_F(Get, IdsAboveOneAreNeverReached)
{
    machine.addController();
    gNumAdaptersFound = 3;
    EXPECT_EQ(command({"get", "-o", "hba", "-i", "2"}),
              (Outcome{1, "\nUnable to get configuration of NVMe Controller 2\n"}));
    gSpecificAdapterFlag = 1;
    gCurrentAdapter = 2;
    records[2].Features = kFeatureRaid;
    EXPECT_EQ(command({"get", "-o", "hba"}), (Outcome{1, "\nUnable to get configuration of NVMe Controller 2\n"}));
}

TEST_F(Get, RatesAndSwitches)
{
    const std::pair<QRX_U8, const char*> kRates[] = {
        {0, "High"}, {2, "Medium"}, {32, "Low"}, {1, "Unknown"}, {255, "Unknown"}};
    for (const auto& [rate, word] : kRates) {
        machine.expect(readOk(255, rate).on(0));
        EXPECT_EQ(command({"get", "-o", "hba", "-i", "0"}),
                  (Outcome{0, "Auto Rebuild:            off\nBGA Rate:                " + std::string(word) + "\n\n"}));
    }
}

TEST_F(Get, NeitherSignatureNorVerdictIsTested)
{
    Bytes answer = envelope(NVME_Adapter_Config{.AutoRebuildOn = 1, .BGARate = 0}, 9);
    answer[0] = '?';
    machine.expect(read().data(answer));
    EXPECT_EQ(command({"get", "-o", "hba", "-i", "1"}), (Outcome{0, kOnHigh}));
}

TEST_F(Get, AFailureReturnsTheLowEightBits)
{
    machine.expect(read().status(0x705));
    EXPECT_EQ(
        command({"get", "-o", "hba", "-i", "1"}),
        (Outcome{5, "\nUnable to get configuration of NVMe Controller 1\n", "Not supported (Status Code: 0x705)\n"}));
    machine.expect(read().error(5));
    EXPECT_EQ(command({"get", "-o", "hba"}), (Outcome{255, "\nUnable to get configuration of NVMe Controller 255\n",
                                                      "Unknown error (Status Code: 0xffffffff)\n"}));
    machine.expect(readOk(1, 0));
    machine.expect(read().status(0x700));
    EXPECT_EQ(command({"get", "-o", "hba"}),
              (Outcome{0, kOnHigh + "\nUnable to get configuration of NVMe Controller 255\n",
                       "No error (Status Code: 0x700)\n"}));
}

TEST_F(Get, AJbofControllerReturnsTheLengthOfItsRefusal)
{
    runAsJbof();
    const Outcome refused{34, "This feature is not support JBOF.\n"};
    EXPECT_EQ(command({"get", "-o", "hba"}), refused);
    EXPECT_EQ(command({"get", "-o", "hba", "-i", "0"}), refused);
    gCurrentAdapter = 0;  // only the current one is asked
    machine.expect(readOk(1, 0));
    EXPECT_EQ(command({"get", "-o", "hba", "-i", "1"}), (Outcome{0, kOnHigh}));
}

TEST_F(Get, BadValues)
{
    EXPECT_EQ(command({"get", "-o", "vd"}), (Outcome{1, "-o : invalid object 'vd', should be NVMe Controller\n"}));
    EXPECT_EQ(command({"get", "-i", "1x"}), (Outcome{1, "-i : id is not a number\n"}));
    EXPECT_EQ(command({"get", "-i", "2"}), (Outcome{1, "-i : invalid id '2'\n"}));
    EXPECT_EQ(command({"get", "-z"}), (Outcome{1, "", "", "get: illegal option -- z\n"}));
    EXPECT_EQ(command({"get", "-i", "1"}), (Outcome{1, "get: option -o is required\n"}));
    EXPECT_EQ(command({"get", "-o", "hba", "-o", "hba"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(command({"get", "-i", "0", "-i", "0"}), (Outcome{1, "Duplicated option specified.\n"}));
    g_oneBaseMode = 1;
    EXPECT_EQ(command({"get", "-i", "0"}), (Outcome{1, "-i : invalid id '0'\n"}));
    EXPECT_EQ(command({"get", "-i", "3"}), (Outcome{1, "-i : invalid id '3'\n"}));
    gNumAdaptersFound = 0;
    EXPECT_EQ(command({"get", "-i", "1"}), (Outcome{1, "-i : invalid id '1'\n"}));
}

TEST_F(Get, DebugLines)
{
    dbg_enable = 1;
    const std::string words = "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x000001e0\n";
    machine.expect(readOk(1, 0));
    machine.expect(readOk(0, 32));
    EXPECT_EQ(command({"get", "-o", "hba"}).stream, words + kOnHigh + words + kOffLow);
}

class Set : public ConfigCommands {};

const Outcome kUpdated{0, "HBA configuration is updated.\n"};

TEST_F(Set, Help)
{
    EXPECT_EQ(command({"set"}), (Outcome{1, expected::kSetPage}));
    for (auto words : {Line{"set", "-h"}, Line{"set", "-n", "x"}, Line{"set", "--name", "x"}, Line{"set", "-s", "x"},
                       Line{"set", "-o", "hba", "--secure=x"}}) {
        EXPECT_EQ(command(words), (Outcome{0, expected::kSetPage}));
    }
}

TEST_F(Set, WhatIsNotGivenGoesBackAsItWasReported)
{
    machine.expect(readOk(0x5A, 0xC3));
    machine.expect(write(0xC301));
    EXPECT_EQ(command({"set", "-o", "hba", "-a", "on"}), kUpdated);
    machine.expect(readOk(0x5A, 0xC3));
    machine.expect(write(0x205A));
    EXPECT_EQ(command({"set", "-o", "hba", "-r", "low"}), kUpdated);
    machine.expect(readOk(0x5A, 0xC3));
    machine.expect(write(0x0200));
    EXPECT_EQ(command({"set", "--object=HBA", "--autorebuild", "OFF", "--bgarate", "Medium"}), kUpdated);
    machine.expect(readOk(0x5A, 0xC3));
    machine.expect(write(0x005A));
    EXPECT_EQ(command({"set", "-o", "hba", "-r", "HIGH"}), kUpdated);
}

TEST_F(Set, NothingToSetIsToldAfterARead)
{
    machine.expect(readOk(1, 2));
    EXPECT_EQ(command({"set", "-o", "hba"}), (Outcome{0, "Invalid setting(s) for HBA\n"}));
    machine.expect(readOk(1, 2));
    EXPECT_EQ(command({"set", "-o", "hba", "-v", "1"}), (Outcome{0, "Invalid setting(s) for HBA\n"}));
}

TEST_F(Set, Failures)
{
    machine.expect(read().status(0x705));
    EXPECT_EQ(
        command({"set", "-o", "hba", "-a", "on"}),
        (Outcome{1, "\nUnable to get configuration info of adapter 1\n", "Not supported (Status Code: 0x705)\n"}));
    machine.expect(readOk(1, 2));
    machine.expect(write(0x0201).error(5));
    EXPECT_EQ(command({"set", "-o", "hba", "-a", "on"}),
              (Outcome{1, "\nFailed to configure hba 1\n", "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(Set, BadValues)
{
    EXPECT_EQ(command({"set", "-a", "maybe"}), (Outcome{1, "-c : invalid auto rebuild mode 'maybe'\n"}));
    EXPECT_EQ(command({"set", "-o", "hba", "-r", "fast"}), (Outcome{1, "-r : invalid BGA rate 'fast'\n"}));
    EXPECT_EQ(command({"set", "-o", "pd"}), (Outcome{1, "-o : invalid object 'pd'\n"}));
    EXPECT_EQ(command({"set", "-v", "x"}), (Outcome{1, "-v : invalid vd id 'x'\n"}));
    EXPECT_EQ(command({"set", "-v", "2"}), (Outcome{1, "-v : invalid vd id '2'\n"}));
    EXPECT_EQ(command({"set", "-o", "hba", "-i", "0"}), (Outcome{1, "", "", "set: illegal option -- i\n"}));
    EXPECT_EQ(command({"set", "-a", "on"}), (Outcome{1, "set: option -o is required\n"}));
    g_oneBaseMode = 1;
    EXPECT_EQ(command({"set", "--vid", "0"}), (Outcome{1, "-v : invalid vd id '0'\n"}));
    EXPECT_EQ(command({"set", "-v", "2"}), (Outcome{1, "set: option -o is required\n"}));
    EXPECT_EQ(command({"set", "-v", "65537"}), (Outcome{1, "set: option -o is required\n"}));
}

TEST_F(Set, Duplicates)
{
    EXPECT_EQ(command({"set", "-o", "hba", "-o", "hba"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(command({"set", "-r", "low", "-r", "low"}), (Outcome{1, "Duplicated option specified.\n"}));
    machine.expect(readOk(1, 2));
    machine.expect(write(0x0200));
    EXPECT_EQ(command({"set", "-o", "hba", "-a", "on", "-a", "off"}), kUpdated);
}

TEST_F(Set, AJbofControllerRefuses)
{
    runAsJbof();
    EXPECT_EQ(command({"set", "-o", "hba", "-a", "on"}), (Outcome{1, "This feature is not support JBOF.\n"}));
}

TEST_F(Set, DebugLines)
{
    dbg_enable = 1;
    machine.expect(readOk(1, 2));
    machine.expect(write(0x2001));
    EXPECT_EQ(command({"set", "-o", "hba", "-r", "low"}).stream,
              "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x000001e0\n"
              "CDW[0] : 0x000000e2\nCDW[10]: 0x00000000\nCDW[12]: 0x000002e0\nCDW[14]: 0x00002001\n"
              "HBA configuration is updated.\n");
}

class DebugLevel : public ConfigCommands {};

TEST_F(DebugLevel, Help)
{
    EXPECT_EQ(command({"debuglv"}), (Outcome{1, expected::kDebuglvPage}));
    EXPECT_EQ(command({"debuglv", "-h"}), (Outcome{0, expected::kDebuglvPage}));
}

TEST_F(DebugLevel, Levels)
{
    machine.expect(level(0));
    EXPECT_EQ(command({"debuglv", "-t", "0"}), (Outcome{0, "debug level access to normal success.\n"}));
    machine.expect(level(1));
    EXPECT_EQ(command({"debug", "--target=1"}), (Outcome{0, "debug level access to error only success.\n"}));
    machine.expect(level(0).status(1));
    EXPECT_EQ(command({"debuglv", "-t", "0"}),
              (Outcome{1, "debug level access to normal failed.\n", "Invalid Command Opcode (Status Code: 0x1)\n"}));
    machine.expect(level(1).error(5));
    EXPECT_EQ(command({"debuglv", "-t", "1"}),
              (Outcome{-1, "debug level access to error only failed.\n", "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(DebugLevel, BadValues)
{
    EXPECT_EQ(command({"debuglv", "-t", "2"}), (Outcome{0, "-t : invalid target '2'.\n"}));
    EXPECT_EQ(command({"debuglv", "-t", ""}), (Outcome{0, "-t : invalid target ''.\n"}));
    EXPECT_EQ(command({"debuglv", "-z"}), (Outcome{0, "", "", "debuglv: illegal option -- z\n"}));
    EXPECT_EQ(command({"debuglv", "-t", "0", "-t", "0"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(command({"debuglv", "--output", "x"}), (Outcome{0, "debuglv: option -t is required\n"}));
}

TEST_F(DebugLevel, DebugLines)
{
    dbg_enable = 1;
    machine.expect(level(1));
    EXPECT_EQ(command({"debuglv", "-t", "1"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000112e0\ndebug level access to error only success.\n");
}

}  // namespace
