// `reset` and `led`.
#include "cli/Functions/simple/simple_led.h"
#include "tests/unit/cli/hardware_texts.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

const Outcome kDuplicate{1, "Duplicated option specified.\n"};

class ResetCommand : public StorageTest {
protected:
    static Command reset(QRX_U32 cdw14) { return plain(0x08E1, 0x5001).word(14, cdw14); }
    const Outcome kDone{0, "Reset success\n"};
};

TEST_F(ResetCommand, Help)
{
    EXPECT_EQ(command({"reset"}), (Outcome{1, expected::kResetPage}));
    for (auto words : {Line{"reset", "-h"}, Line{"reset", "--help"}, Line{"reset", "-i", "0", "-t", "device", "-h"}}) {
        EXPECT_EQ(command(words), (Outcome{0, expected::kResetPage}));
    }
    EXPECT_EQ(command({"help", "reset"}), (Outcome{0, expected::kResetPage}));
}

TEST_F(ResetCommand, ADeviceIsItsIdAlone)
{
    machine.expect(reset(0x0000A5A6));
    EXPECT_EQ(command({"reset", "-i", "42406", "-t", "device"}), kDone);
    machine.expect(reset(3));
    EXPECT_EQ(command({"reset", "--pdid=3", "--type", "DEVICE"}), kDone);
}

TEST_F(ResetCommand, WithoutIdAndTypeDeviceZeroIsMeant)
{
    machine.expect(reset(0));
    EXPECT_EQ(command({"reset", "-t", "device"}), kDone);
    machine.expect(reset(7));
    EXPECT_EQ(command({"reset", "-i", "7"}), kDone);
    machine.expect(reset(0));
    EXPECT_EQ(command({"reset", "stray"}), kDone);
}

TEST_F(ResetCommand, PowerOfAPin)
{
    machine.expect(reset(0x00010001));
    EXPECT_EQ(command({"reset", "-i", "1", "-t", "power", "-a", "cycle"}), kDone);
    machine.expect(reset(0x01010000));
    EXPECT_EQ(command({"reset", "-i", "0", "-t", "Power", "-a", "ON"}), kDone);
    machine.expect(reset(0x02010001));
    EXPECT_EQ(command({"reset", "-i", "1", "-t", "power", "-a", "off"}), kDone);
}

TEST_F(ResetCommand, PerstOfADrive)
{
    machine.expect(reset(0x00020002));
    EXPECT_EQ(command({"reset", "-i", "2", "-t", "perstn", "-a", "cycle"}), kDone);
    machine.expect(reset(0x01020003));
    EXPECT_EQ(command({"reset", "-i", "3", "-t", "PERSTN", "--action=on"}), kDone);
    machine.expect(reset(0x0202A5A6));
    EXPECT_EQ(command({"reset", "-i", "42406", "-t", "perstn", "-a", "off"}), kDone);
}

TEST_F(ResetCommand, AnActionIsNeededForPowerAndPerstAndRefusedForADevice)
{
    for (const char* type : {"power", "perstn"}) {
        EXPECT_EQ(command({"reset", "-i", "0", "-t", type}), (Outcome{0, "reset: option -a is required\n"}));
    }
    // The missing action is told before the pin that does not exist.
    EXPECT_EQ(command({"reset", "-i", "9", "-t", "power"}), (Outcome{0, "reset: option -a is required\n"}));
    EXPECT_EQ(command({"reset", "-i", "0", "-t", "device", "-a", "on"}), (Outcome{0, "Option action is not allow.\n"}));
    EXPECT_EQ(command({"reset", "-i", "0", "-a", "off"}), (Outcome{0, "Option action is not allow.\n"}));
}

TEST_F(ResetCommand, ThereAreTwoPowerPins)
{
    const Outcome refusal{1, "Power Pin ID only support 0 or 1\n"};
    for (const char* id : {"2", "65536", "65537", "99999999999"}) {
        EXPECT_EQ(command({"reset", "-i", id, "-t", "power", "-a", "on"}), refusal) << id;
    }
}

TEST_F(ResetCommand, AnIdOfMoreThanSixteenBitsIsNotCut)
{
    machine.expect(reset(0x0000FFFF));
    EXPECT_EQ(command({"reset", "-i", "65535", "-t", "device"}), kDone);
    for (const std::string id : {"65536", "65539", "99999999999"}) {
        const Outcome refusal{0, "-i : invalid device id '" + id + "'\n"};
        EXPECT_EQ(command({"reset", "-i", id}), refusal);
        EXPECT_EQ(command({"reset", "-i", id, "-t", "device"}), refusal);
        EXPECT_EQ(command({"reset", "-i", id, "-t", "perstn", "-a", "cycle"}), refusal);
    }
}

TEST_F(ResetCommand, OneBasedIds)
{
    g_oneBaseMode = 1;
    EXPECT_EQ(command({"reset", "-i", "0", "-t", "device"}), (Outcome{0, "-i : invalid device id '0'\n"}));
    EXPECT_EQ(command({"reset", "-i", "3", "-t", "power", "-a", "on"}),
              (Outcome{1, "Power Pin ID only support 1 or 2\n"}));
    machine.expect(reset(0x01010001));
    EXPECT_EQ(command({"reset", "-i", "2", "-t", "power", "-a", "on"}), kDone);
    machine.expect(reset(0x00000000));
    EXPECT_EQ(command({"reset", "-i", "1"}), kDone);
}

TEST_F(ResetCommand, BadValues)
{
    EXPECT_EQ(command({"reset", "-a", "toggle"}), (Outcome{0, "-a : invalid action 'toggle'.\n"}));
    EXPECT_EQ(command({"reset", "--action", "on"}), (Outcome{0, "-a : invalid action ''.\n"}));
    EXPECT_EQ(command({"reset", "-i", "x"}), (Outcome{0, "-i : invalid device id 'x'\n"}));
    EXPECT_EQ(command({"reset", "-i", "-1"}), (Outcome{0, "-i : invalid device id '-1'\n"}));
    EXPECT_EQ(command({"reset", "-i", "0x1"}), (Outcome{0, "-i : invalid device id '0x1'\n"}));
    EXPECT_EQ(command({"reset", "-t", "pin"}), (Outcome{0, "-t : invalid type 'pin'.\n"}));
    EXPECT_EQ(command({"reset", "-z"}), (Outcome{0, "", "", "reset: illegal option -- z\n"}));
    EXPECT_EQ(command({"reset", "--id", "0"}), (Outcome{0, "", "", "reset: unrecognized option `--id'\n"}));
}

TEST_F(ResetCommand, RepeatedOptionsAreRefused)
{
    for (auto words : {Line{"reset", "-i", "0", "-i", "0"}, Line{"reset", "-t", "power", "-t", "power"},
                       Line{"reset", "-t", "device", "-a", "on", "-a", "on"}}) {
        EXPECT_EQ(command(words), kDuplicate);
    }
}

TEST_F(ResetCommand, ARefusalPrintsItsTextAndIsReturned)
{
    machine.expect(reset(1).status(0x706));
    EXPECT_EQ(command({"reset", "-i", "1", "-t", "device"}),
              (Outcome{0x706, "Reset failed.\n", "Invalid HD ID (Status Code: 0x706)\n"}));
    machine.expect(reset(1).error(5));
    EXPECT_EQ(command({"reset", "-i", "1", "-t", "device"}),
              (Outcome{-1, "Reset failed.\n", "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(ResetCommand, DebugLines)
{
    dbg_enable = 1;
    machine.expect(reset(0x02010001));
    EXPECT_EQ(command({"reset", "-i", "1", "-t", "power", "-a", "off"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000008e1\nCDW[14]: 0x02010001\nReset success\n");
}

class LedCommand : public StorageTest {
protected:
    static Command led(QRX_U32 cdw12, QRX_U32 cdw14) { return plain(cdw12, 0x5001).word(14, cdw14); }
    const Outcome kDone{0, "LED control success\n"};
};

TEST_F(LedCommand, Help)
{
    EXPECT_EQ(command({"led"}), (Outcome{1, expected::kLedPage}));
    EXPECT_EQ(command({"led", "-h"}), (Outcome{0, expected::kLedPage}));
    EXPECT_EQ(command({"led", "-o", "ep", "--help"}), (Outcome{0, expected::kLedPage}));
}

TEST_F(LedCommand, RetiredOptionsShowTheHelp)
{
    for (const char* option : {"-0", "-1", "-2", "-3", "--smaddr21", "--smaddr22", "--smaddr23", "--smaddr24"}) {
        EXPECT_EQ(command({"led", "-o", "ep", "-i", "0", "-a", "on", option, "5"}), (Outcome{0, expected::kLedPage}))
            << option;
    }
}

TEST_F(LedCommand, StatesOfAnEndPoint)
{
    const std::pair<const char*, QRX_U32> kStates[] = {{"off", 0}, {"on", 1}, {"sb", 2}, {"qb", 3}, {"QB", 3}};
    for (const auto& [word, state] : kStates) {
        machine.expect(led(0x07E0, state << 16));
        EXPECT_EQ(command({"led", "-o", "ep", "-i", "0", "-a", word}), kDone) << word;
    }
    machine.expect(led(0x07E0, 0x0002A5A6));
    EXPECT_EQ(command({"led", "--object=EP", "--id=42406", "--action", "sb"}), kDone);
}

TEST_F(LedCommand, StatesOfARootComplex)
{
    machine.expect(led(0x07E1, 0x00020001));
    EXPECT_EQ(command({"led", "-o", "rc", "-i", "1", "-a", "sb"}), kDone);
    machine.expect(led(0x07E1, 0x00010001));
    EXPECT_EQ(command({"led", "-o", "rc", "-i", "1", "-a", "on"}), kDone);
}

TEST_F(LedCommand, EveryOptionIsRequiredInThisOrder)
{
    EXPECT_EQ(command({"led", "stray"}), (Outcome{0, "led: option -o is required\n"}));
    EXPECT_EQ(command({"led", "-i", "0", "-a", "on"}), (Outcome{0, "led: option -o is required\n"}));
    EXPECT_EQ(command({"led", "-o", "ep"}), (Outcome{0, "led: option -i is required\n"}));
    EXPECT_EQ(command({"led", "-o", "ep", "-a", "on"}), (Outcome{0, "led: option -i is required\n"}));
    EXPECT_EQ(command({"led", "-o", "ep", "-i", "0"}), (Outcome{0, "led: option -a is required\n"}));
}

TEST_F(LedCommand, BadValues)
{
    EXPECT_EQ(command({"led", "-a", "blink"}), (Outcome{0, "-a : invalid action 'blink'.\n"}));
    EXPECT_EQ(command({"led", "-i", "1x"}), (Outcome{0, "-i : invalid id '1x'\n"}));
    for (const std::string id : {"65536", "99999999999"}) {
        EXPECT_EQ(command({"led", "-o", "ep", "-i", id, "-a", "on"}), (Outcome{0, "-i : invalid id '" + id + "'\n"}));
    }
    EXPECT_EQ(command({"led", "-o", "hba"}), (Outcome{0, "-m : invalid object 'hba'.\n"}));
    EXPECT_EQ(command({"led", "-x"}), (Outcome{0, "", "", "led: illegal option -- x\n"}));
    for (auto words : {Line{"led", "-o", "ep", "-o", "ep"}, Line{"led", "-i", "0", "-i", "0"},
                       Line{"led", "-a", "on", "-a", "on"}}) {
        EXPECT_EQ(command(words), kDuplicate);
    }
}

TEST_F(LedCommand, OneBasedIds)
{
    g_oneBaseMode = 1;
    EXPECT_EQ(command({"led", "-o", "ep", "-i", "0", "-a", "on"}), (Outcome{0, "-i : invalid id '0'\n"}));
    machine.expect(led(0x07E0, 0x00010004));
    EXPECT_EQ(command({"led", "-o", "ep", "-i", "5", "-a", "on"}), kDone);
}

TEST_F(LedCommand, ARefusalPrintsItsTextAndIsReturned)
{
    machine.expect(led(0x07E1, 0x00010009).status(0x704));
    EXPECT_EQ(command({"led", "-o", "rc", "-i", "9", "-a", "on"}),
              (Outcome{0x704, "LED control failed.\n", "Invalid parameter (Status Code: 0x704)\n"}));
    machine.expect(led(0x07E0, 0).error(5));
    EXPECT_EQ(command({"led", "-o", "ep", "-i", "0", "-a", "off"}),
              (Outcome{-1, "LED control failed.\n", "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(LedCommand, DebugLines)
{
    dbg_enable = 1;
    machine.expect(led(0x07E1, 0x00030002));
    EXPECT_EQ(command({"led", "-o", "rc", "-i", "2", "-a", "qb"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000007e1\nCDW[14]: 0x00030002\nLED control success\n");
}

TEST(LedTarget, CrossesTheMiddleTwo)
{
    EXPECT_EQ(getLEDTargetID(0), 0);
    EXPECT_EQ(getLEDTargetID(1), 2);
    EXPECT_EQ(getLEDTargetID(2), 1);
    EXPECT_EQ(getLEDTargetID(3), 3);
    EXPECT_EQ(getLEDTargetID(4), 255);
    EXPECT_EQ(getLEDTargetID(-1), 255);
}

}  // namespace
