// `gpio` and `inverse`.
#include "cli/Functions/simple/simple_inverse.h"
#include "tests/unit/cli/hardware_texts.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

class GpioCommand : public StorageTest {
protected:
    static Command gpio(QRX_U32 cdw12, QRX_U32 functions, QRX_U32 levels, QRX_U32 values)
    {
        return plain(cdw12, 0xF001).word(13, functions).word(14, levels).word(15, values);
    }
    const Outcome kDone{0, "GPIO setting success.\n", "result: 0\n"};
};

TEST_F(GpioCommand, Help)
{
    EXPECT_EQ(command({"gpio"}), (Outcome{1, expected::kGpioPage}));
    EXPECT_EQ(command({"gpio", "-h"}), (Outcome{0, expected::kGpioPage}));
    EXPECT_EQ(command({"gpio", "--level=0x10", "--help"}), (Outcome{0, expected::kGpioPage}));
}

TEST_F(GpioCommand, WhatIsNotGivenIsTheDefault)
{
    machine.expect(gpio(0x000111E0, 0x30, 0x30, 0x30));
    EXPECT_EQ(command({"gpio", "--set-default=yes"}), kDone);
    machine.expect(gpio(0x000011E0, 0x30, 0x30, 0x30));
    EXPECT_EQ(command({"gpio", "--set-default=no"}), kDone);
    machine.expect(gpio(0x000011E0, 0, 0x30, 0x30));
    EXPECT_EQ(command({"gpio", "--func-switch", "0x00"}), kDone);
    machine.expect(gpio(0x000011E0, 0x30, 0, 0x30));
    EXPECT_EQ(command({"gpio", "--level", "0"}), kDone);
    machine.expect(gpio(0x000011E0, 0x30, 0x30, 0));
    EXPECT_EQ(command({"gpio", "--value", ""}), kDone);
    machine.expect(gpio(0x000011E0, 0x30, 0x30, 0x30));
    EXPECT_EQ(command({"gpio", "stray"}), kDone);
}

TEST_F(GpioCommand, EachBitmapHasItsWord)
{
    machine.expect(gpio(0x000111E0, 0xC0, 0x40, 0x80));
    EXPECT_EQ(command({"gpio", "--func-switch=0xC0", "--level=0x40", "--value=128", "--set-default=YES"}), kDone);
    machine.expect(gpio(0x000011E0, 0x10, 0x20, 0xF0));
    EXPECT_EQ(command({"gpio", "-0", "16", "-1", "32", "-2", "0xf0", "-3", "No"}), kDone);
}

TEST_F(GpioCommand, OfRepeatedOptionsTheLastOneStands)
{
    machine.expect(gpio(0x000011E0, 0x10, 0x20, 0x40));
    EXPECT_EQ(command({"gpio", "--func-switch=0xF", "--func-switch=0x10", "--level=1", "--level=0x20", "--value=2",
                       "--value=0x40", "--set-default=yes", "--set-default=no"}),
              kDone);
}

TEST_F(GpioCommand, BitsOfOtherPinsAreRefused)
{
    EXPECT_EQ(command({"gpio", "--func-switch=0x0F"}),
              (Outcome{0, "", "result: 15\nFunc-switch value is not correct: 0x0000000f\n"}));
    EXPECT_EQ(command({"gpio", "--func-switch=0xAB"}),
              (Outcome{0, "", "result: 11\nFunc-switch value is not correct: 0x000000ab\n"}));
    EXPECT_EQ(command({"gpio", "--func-switch=0x130"}),
              (Outcome{0, "", "result: 256\nFunc-switch value is not correct: 0x00000130\n"}));
    EXPECT_EQ(command({"gpio", "--level=1"}), (Outcome{0, "", "result: 0\nLevel value is not correct: 0x00000001\n"}));
    EXPECT_EQ(command({"gpio", "--value=0x32"}),
              (Outcome{0, "", "result: 0\nDefault value is not correct: 0x00000032\n"}));
    EXPECT_EQ(command({"gpio", "--func-switch=0xffffffffff"}),
              (Outcome{0, "", "result: 2147483407\nFunc-switch value is not correct: 0x7fffffff\n"}));
}

TEST_F(GpioCommand, TheFirstBitmapThatIsWrongIsTold)
{
    EXPECT_EQ(command({"gpio", "--value=3", "--level=2", "--func-switch=1"}),
              (Outcome{0, "", "result: 1\nFunc-switch value is not correct: 0x00000001\n"}));
    EXPECT_EQ(command({"gpio", "--value=3", "--level=2", "--func-switch=0x10"}),
              (Outcome{0, "", "result: 0\nLevel value is not correct: 0x00000002\n"}));
}

TEST_F(GpioCommand, BadValues)
{
    EXPECT_EQ(command({"gpio", "--func-switch=x"}),
              (Outcome{0, "--func-switch: Function switch range is not correct. \n"}));
    EXPECT_EQ(command({"gpio", "--func-switch=-1"}),
              (Outcome{0, "--func-switch: Function switch range is not correct. \n"}));
    EXPECT_EQ(command({"gpio", "--level=1O"}), (Outcome{0, "--level: Level range is not correct. \n"}));
    EXPECT_EQ(command({"gpio", "--value=ff"}), (Outcome{0, "--value: Value range is not correct. \n"}));
    EXPECT_EQ(command({"gpio", "--set-default=1"}), (Outcome{0, "--set-default: Set default is not correct \n"}));
    EXPECT_EQ(command({"gpio", "-z"}), (Outcome{0, "", "", "gpio: illegal option -- z\n"}));
}

TEST_F(GpioCommand, ARefusalPrintsItsTextAndIsReturned)
{
    machine.expect(gpio(0x000011E0, 0x10, 0x30, 0x30).status(0x704));
    EXPECT_EQ(command({"gpio", "--func-switch=0x10"}),
              (Outcome{0x704, "GPIO setting failed.\n", "result: 0\nInvalid parameter (Status Code: 0x704)\n"}));
    machine.expect(gpio(0x000011E0, 0x30, 0x30, 0x30).error(5));
    EXPECT_EQ(command({"gpio", "--set-default=no"}),
              (Outcome{-1, "GPIO setting failed.\n", "result: 0\nUnknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(GpioCommand, DebugLines)
{
    dbg_enable = 1;
    machine.expect(gpio(0x000111E0, 0xC0, 0x40, 0x80));
    EXPECT_EQ(command({"gpio", "--func-switch=0xC0", "--level=0x40", "--value=0x80", "--set-default=yes"}),
              (Outcome{0,
                       "CDW[0] : 0x000000e2\nCDW[12]: 0x000111e0\nCDW[13]: 0x000000c0\nCDW[14]: 0x00000040\n"
                       "CDW[15]: 0x00000080\nGPIO setting success.\n",
                       "result: 0\n"}));
}

class InverseCommand : public StorageTest {
protected:
    static Command set(QRX_U32 value) { return plain(0x19E0 | value << 16, 0x1001); }
    static Command get() { return plain(0x1AE0, 0x1001).receives(4096).carries(Bytes(4096, 0xFF)); }
    static Outcome shown(const std::string& state)
    {
        return {0, "GPIO 8,9,10,11 Inverse Status: " + state + "\nGet Inverse Status success.\n"};
    }
};

TEST_F(InverseCommand, Help)
{
    EXPECT_EQ(command({"inverse"}), (Outcome{1, expected::kInversePage}));
    EXPECT_EQ(command({"inverse", "-h"}), (Outcome{0, expected::kInversePage}));
    EXPECT_EQ(command({"inverse", "-a", "get", "--help"}), (Outcome{0, expected::kInversePage}));
}

TEST_F(InverseCommand, Set)
{
    machine.expect(set(1));
    EXPECT_EQ(command({"inverse", "-a", "inverse"}), (Outcome{0, "Set Inverse success.\n"}));
    machine.expect(set(0));
    EXPECT_EQ(command({"inverse", "--action=NoInverse"}), (Outcome{0, "Set Inverse success.\n"}));
    machine.expect(set(1).status(0x101));
    EXPECT_EQ(command({"inverse", "-a", "INVERSE"}), (Outcome{0x101, "Set Inverse failed.(error code: 0x101)\n",
                                                              "Invalid Queue Identifier (Status Code: 0x101)\n"}));
    machine.expect(set(0).status(1));
    EXPECT_EQ(command({"inverse", "-a", "noinverse"}),
              (Outcome{1, "Set Inverse failed.(error code: 0x01)\n", "Invalid Command Opcode (Status Code: 0x1)\n"}));
}

TEST_F(InverseCommand, GetShowsTheFirstByte)
{
    machine.expect(get().data({0, 1, 2}));
    EXPECT_EQ(command({"inverse", "-a", "get"}), shown("No Inverse"));
    machine.expect(get().data({1, 0}));
    EXPECT_EQ(command({"inverse", "-a", "GET"}), shown("Inverse"));
    machine.expect(get().data({2}));
    EXPECT_EQ(command({"inverse", "-a", "get"}), shown("Unknown Status"));
}

TEST_F(InverseCommand, AFailedReadShowsAnUnknownState)
{
    machine.expect(get().status(2));
    EXPECT_EQ(
        command({"inverse", "-a", "get"}),
        (Outcome{2, "GPIO 8,9,10,11 Inverse Status: Unknown Status\nGet Inverse Status failed.(error code: 0x02)\n",
                 "Invalid Field in Command (Status Code: 0x2)\n"}));
    machine.expect(get().error(5));
    EXPECT_EQ(
        command({"inverse", "-a", "get"}),
        (Outcome{-1,
                 "GPIO 8,9,10,11 Inverse Status: Unknown Status\nGet Inverse Status failed.(error code: 0xffffffff)\n",
                 "Unknown error (Status Code: 0xffffffff)\n"}));
    machine.expect(get().data({1}).status(0x701));
    EXPECT_EQ(command({"inverse", "-a", "get"}),
              (Outcome{0x701, "GPIO 8,9,10,11 Inverse Status: Inverse\nGet Inverse Status failed.(error code: 0x701)\n",
                       "Failed (Status Code: 0x701)\n"}));
}

TEST_F(InverseCommand, TheLineAlone)
{
    const QRX_U8 kUnknown = 0x80;
    EXPECT_EQ(outcomeOf([&] {
                  showInverseStatus(&kUnknown);
                  return 0;
              }),
              (Outcome{0, "GPIO 8,9,10,11 Inverse Status: Unknown Status\n"}));
}

TEST_F(InverseCommand, BadValues)
{
    EXPECT_EQ(command({"inverse", "-a", "set"}), (Outcome{0, "-a : invalid action 'set'.\n"}));
    EXPECT_EQ(command({"inverse", "-a", ""}), (Outcome{0, "-a : invalid action ''.\n"}));
    EXPECT_EQ(command({"inverse", "stray"}), (Outcome{0, "inverse: option -a is required\n"}));
    EXPECT_EQ(command({"inverse", "-a", "get", "-a", "get"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(command({"inverse", "-z"}), (Outcome{0, "", "", "inverse: illegal option -- z\n"}));
}

TEST_F(InverseCommand, DebugLines)
{
    dbg_enable = 1;
    machine.expect(set(1));
    EXPECT_EQ(command({"inverse", "-a", "inverse"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000119e0\nSet Inverse success.\n");
    machine.expect(get().data({0}));
    EXPECT_EQ(command({"inverse", "-a", "get"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x00001ae0\n"
              "GPIO 8,9,10,11 Inverse Status: No Inverse\nGet Inverse Status success.\n");
}

}  // namespace
