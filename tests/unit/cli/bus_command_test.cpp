// `vpd`, `reg`, `i2c`, `qxf`, `protect` and `sriov`.
#include "tests/unit/cli/hardware_texts.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

const Outcome kDuplicate{1, "Duplicated option specified.\n"};

class VpdCommand : public StorageTest {
protected:
    static Command target(QRX_U32 word) { return plain(0x10E0, 0x5001).word(14, word); }
    const Outcome kSpi{0, "VPD access to SPI success.\n"};
    const Outcome kEeprom{0, "VPD access to EEPROM success.\n"};
};

TEST_F(VpdCommand, Help)
{
    EXPECT_EQ(command({"vpd"}), (Outcome{1, expected::kVpdPage}));
    EXPECT_EQ(command({"vpd", "-h"}), (Outcome{0, expected::kVpdPage}));
    EXPECT_EQ(command({"vpd", "-t", "spi", "--help"}), (Outcome{0, expected::kVpdPage}));
}

TEST_F(VpdCommand, Targets)
{
    machine.expect(target(1));
    EXPECT_EQ(command({"vpd", "-t", "spi"}), kSpi);
    machine.expect(target(0));
    EXPECT_EQ(command({"vpd", "--target=EEPROM"}), kEeprom);
}

TEST_F(VpdCommand, OfSeveralTargetsSpiDecides)
{
    machine.expect(target(1));
    EXPECT_EQ(command({"vpd", "-t", "spi", "-t", "eeprom"}), kSpi);
    machine.expect(target(1));
    EXPECT_EQ(command({"vpd", "-t", "eeprom", "-t", "SPI"}), kSpi);
    machine.expect(target(0));
    EXPECT_EQ(command({"vpd", "-t", "eeprom", "-t", "eeprom"}), kEeprom);
}

TEST_F(VpdCommand, Failures)
{
    machine.expect(target(1).status(1));
    EXPECT_EQ(command({"vpd", "-t", "spi"}),
              (Outcome{1, "VPD access to SPI failed.\n", "Invalid Command Opcode (Status Code: 0x1)\n"}));
    machine.expect(target(0).error(5));
    EXPECT_EQ(command({"vpd", "-t", "eeprom"}),
              (Outcome{-1, "VPD access to EEPROM failed.\n", "Unknown error (Status Code: 0xffffffff)\n"}));
    EXPECT_EQ(command({"vpd", "-t", "flash"}), (Outcome{0, "-t : invalid target 'flash'.\n"}));
    EXPECT_EQ(command({"vpd", "-t", "spi", "-t", "x"}), (Outcome{0, "-t : invalid target 'x'.\n"}));
    EXPECT_EQ(command({"vpd", "stray"}), (Outcome{0, "vpd: option -t is required\n"}));
    EXPECT_EQ(command({"vpd", "-z"}), (Outcome{0, "", "", "vpd: illegal option -- z\n"}));
}

TEST_F(VpdCommand, DebugLines)
{
    dbg_enable = 1;
    machine.expect(target(1));
    EXPECT_EQ(command({"vpd", "-t", "spi"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000010e0\nCDW[14]: 0x00000001\nVPD access to SPI success.\n");
}

class RegCommand : public StorageTest {
protected:
    static Command read(QRX_U8 id, QRX_U32 address)
    {
        return plain(0x09E0U | QRX_U32{id} << 16U, 0x3401).word(13, address).receives(4).carries(Bytes(4));
    }
    static Command write(QRX_U8 id, QRX_U32 address, QRX_U32 data)
    {
        return plain(0x0AE0U | QRX_U32{id} << 16U, 0x7001).word(13, address).word(14, data);
    }
    const Outcome kWritten{0, "Write register successful.\n", "size of optarg: 4\n"};
};

TEST_F(RegCommand, Help)
{
    EXPECT_EQ(command({"reg"}), (Outcome{1, expected::kRegPage}));
    EXPECT_EQ(command({"reg", "-h"}), (Outcome{0, expected::kRegPage}));
    EXPECT_EQ(command({"reg", "-t", "read", "--help"}), (Outcome{0, expected::kRegPage}));
}

TEST_F(RegCommand, ReadShowsBytesAndWord)
{
    machine.expect(read(0, 0xE3200000).data({0x1E, 0xBC, 0x86, 0x00}));
    EXPECT_EQ(command({"reg", "-t", "read", "-a", "0xE3200000"}),
              (Outcome{0, "Data:0x86bc1e, Address:0xe3200000\nRead register successful.\n", "0x1e 0xbc 0x86 0x00 "}));
    machine.expect(read(0xA5, 0x10).data({0x11, 0x22, 0x33, 0x84}));
    EXPECT_EQ(command({"reg", "--id=0xA5", "--type", "READ", "--address=16"}),
              (Outcome{0, "Data:0x84332211, Address:0x10\nRead register successful.\n", "0x11 0x22 0x33 0x84 "}));
}

TEST_F(RegCommand, AFailedReadStillShowsItsBytes)
{
    machine.expect(read(3, 8).status(0x704));
    EXPECT_EQ(
        command({"reg", "-i", "3", "-t", "read", "-a", "8"}),
        (Outcome{0x704, "Read register failed.\n", "Invalid parameter (Status Code: 0x704)\n0x00 0x00 0x00 0x00 "}));
    machine.expect(read(3, 8).data({1, 2, 3, 4}).error(5));
    const Outcome failed = command({"reg", "-i", "3", "-t", "read", "-a", "8"});
    EXPECT_EQ(failed.result, -1);
    EXPECT_EQ(failed.stream, "Read register failed.\n");
}

TEST_F(RegCommand, Write)
{
    machine.expect(write(0, 0xE3200000, 0x0086BC1E));
    EXPECT_EQ(command({"reg", "-i", "0", "-t", "write", "-d", "0x0086BC1E", "-a", "0xE3200000"}), kWritten);
    machine.expect(write(1, 0x20, 0xFEDCBA98));
    EXPECT_EQ(command({"reg", "--id=1", "--type=WRITE", "--data=0xFEDCBA98", "--address=0x20"}), kWritten);
    machine.expect(write(0, 0, 0));
    EXPECT_EQ(command({"reg", "-t", "write", "-a", "0"}), (Outcome{0, "Write register successful.\n"}));
    machine.expect(write(0, 0, 5).status(0x701));
    EXPECT_EQ(command({"reg", "-t", "write", "-a", "0", "-d", "5"}),
              (Outcome{0x701, "Write register failed.\n", "size of optarg: 4\nFailed (Status Code: 0x701)\n"}));
}

TEST_F(RegCommand, HexadecimalNumbersTakeAllBitsAndDecimalOnesSaturate)
{
    machine.expect(write(0xFF, 0x89ABCDEF, 0x89ABCDEF));
    EXPECT_EQ(command({"reg", "-t", "write", "-i", "0x1FF", "-a", "0x123456789ABCDEF", "-d", "0x589ABCDEF"}), kWritten);
    machine.expect(write(0xFF, 0x7FFFFFFF, 0x7FFFFFFF));
    EXPECT_EQ(command({"reg", "-t", "write", "-i", "4000000000", "-a", "3810525184", "-d", "2147483648"}), kWritten);
    machine.expect(write(0, 0xFFFFFFFF, 0));
    EXPECT_EQ(command({"reg", "-t", "write", "-i", "256", "-a", "0xFFFFFFFFFFFFFFFFF", "-d", ""}).result, 0);
}

TEST_F(RegCommand, DataOfAReadIsIgnored)
{
    machine.expect(read(0, 4).data({7, 0, 0, 0}));
    EXPECT_EQ(
        command({"reg", "-t", "read", "-a", "4", "-d", "9"}),
        (Outcome{0, "Data:0x7, Address:0x4\nRead register successful.\n", "size of optarg: 4\n0x07 0x00 0x00 0x00 "}));
}

TEST_F(RegCommand, BadValues)
{
    EXPECT_EQ(command({"reg", "-a", "E3200000"}), (Outcome{0, "-a : invalid address 'E3200000'\n"}));
    EXPECT_EQ(command({"reg", "-i", "-1"}), (Outcome{0, "-i : invalid PCIe ID '-1'\n"}));
    EXPECT_EQ(command({"reg", "-t", "modify"}), (Outcome{0, "-t : invalid type 'modify'\n"}));
    EXPECT_EQ(command({"reg", "-d", "x"}), (Outcome{0, "-d : invalid data 'x'\n", "size of optarg: 4\n"}));
    EXPECT_EQ(command({"reg", "-z"}), (Outcome{0, "", "", "reg: illegal option -- z\n"}));
    EXPECT_EQ(command({"reg", "-a", "0"}), (Outcome{0, "reg: option -t is required\n"}));
    EXPECT_EQ(command({"reg", "-t", "read", "-i", "1"}), (Outcome{0, "reg: option -a is required\n"}));
    EXPECT_EQ(command({"reg", "stray"}), (Outcome{0, "reg: option -t is required\n"}));
}

TEST_F(RegCommand, RepeatedOptionsAreRefused)
{
    for (auto words : {Line{"reg", "-t", "read", "-t", "read"}, Line{"reg", "-i", "0", "-i", "0"},
                       Line{"reg", "-a", "0", "-a", "0"}}) {
        EXPECT_EQ(command(words), kDuplicate);
    }
    EXPECT_EQ(command({"reg", "-d", "0", "-d", "0"}),
              (Outcome{1, "Duplicated option specified.\n", "size of optarg: 4\nsize of optarg: 4\n"}));
}

TEST_F(RegCommand, DebugLines)
{
    dbg_enable = 1;
    machine.expect(read(2, 0xE3200000).data({1, 0, 0, 0}));
    EXPECT_EQ(command({"reg", "-i", "2", "-t", "read", "-a", "0xE3200000"}).stream,
              "CDW[0] : 0x000000e2\nCDW[10]: 0x00000000\nCDW[12]: 0x000209e0\nCDW[13]: 0xe3200000\n"
              "Data:0x1, Address:0xe3200000\nRead register successful.\n");
    machine.expect(write(2, 4, 9));
    EXPECT_EQ(command({"reg", "-i", "2", "-t", "write", "-a", "4", "-d", "9"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x00020ae0\nCDW[13]: 0x00000004\nCDW[14]: 0x00000009\n"
              "Write register successful.\n");
}

class I2cCommand : public StorageTest {
protected:
    static Command test(QRX_U32 channel) { return plain(0x14E0U | channel << 16U, 0x1001); }
};

TEST_F(I2cCommand, Help)
{
    EXPECT_EQ(command({"i2c"}), (Outcome{1, expected::kI2cPage}));
    for (auto words : {Line{"i2c", "-h"}, Line{"i2c", "--help"}, Line{"i2c", "-i", "1", "-t", "x"},
                       Line{"i2c", "-i", "1", "-a", "x"}}) {
        EXPECT_EQ(command(words), (Outcome{0, expected::kI2cPage}));
    }
}

TEST_F(I2cCommand, TestsAChannel)
{
    const std::pair<const char*, QRX_U32> kChannels[] = {{"1", 1}, {"2", 2}, {"4", 4}, {"004", 4}};
    for (const auto& [word, channel] : kChannels) {
        machine.expect(test(channel));
        EXPECT_EQ(command({"i2c", "-i", word}), (Outcome{0, "Pass\n"})) << word;
    }
    machine.expect(test(2));
    EXPECT_EQ(command({"i2c", "--id=2"}), (Outcome{0, "Pass\n"}));
}

TEST_F(I2cCommand, AFailureIsToldAndReturnsZero)
{
    machine.expect(test(1).status(0x701));
    EXPECT_EQ(command({"i2c", "-i", "1"}), (Outcome{0, "Fail\n", "Failed (Status Code: 0x701)\n"}));
    machine.expect(test(4).error(5));
    EXPECT_EQ(command({"i2c", "-i", "4"}), (Outcome{0, "Fail\n", "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(I2cCommand, BadValues)
{
    for (const std::string id : {"3", "0", "5", "-1", "x", "0x1", "", "4294967297"}) {
        EXPECT_EQ(command({"i2c", "-i", id}), (Outcome{0, "-i : invalid device id '" + id + "'\n"}));
    }
    EXPECT_EQ(command({"i2c", "stray"}), (Outcome{0, "i2c: option -i is required\n"}));
    EXPECT_EQ(command({"i2c", "-i", "1", "-i", "1"}), kDuplicate);
    EXPECT_EQ(command({"i2c", "-z"}), (Outcome{0, "", "", "i2c: illegal option -- z\n"}));
}

TEST_F(I2cCommand, AChannelIsNoIdOfTheOneBasedKind)
{
    g_oneBaseMode = 1;
    machine.expect(test(1));
    EXPECT_EQ(command({"i2c", "-i", "1"}), (Outcome{0, "Pass\n"}));
}

TEST_F(I2cCommand, DebugLines)
{
    dbg_enable = 1;
    machine.expect(test(4));
    EXPECT_EQ(command({"i2c", "-i", "4"}).stream, "CDW[0] : 0x000000e2\nCDW[12]: 0x000414e0\nPass\n");
}

// The three switches are one command under three names.
struct SwitchRow {
    const char* word;
    const char* page;
    QRX_U32 cdw12;
    std::string name;  // in the outcome
};

class SwitchCommands : public StorageTest {
protected:
    static Command turn(const SwitchRow& row, QRX_U32 on) { return plain(row.cdw12, 0x5001).word(14, on); }
    static std::string success(const SwitchRow& row, const std::string& verb)
    {
        return row.name + " " + verb +
               " success. Please shutdown and boot your system to make function work as normal.\n";
    }
    const SwitchRow kRows[3] = {
        {"qxf", expected::kQxfPage, 0x0DE0, "QXF"},
        {"protect", expected::kProtectPage, 0x15E0, "Protect"},
        {"sriov", expected::kSriovPage, 0x0EE0, "SRIOV"},
    };
};

TEST_F(SwitchCommands, Help)
{
    for (const SwitchRow& row : kRows) {
        EXPECT_EQ(command({row.word}), (Outcome{1, row.page}));
        EXPECT_EQ(command({row.word, "-h"}), (Outcome{0, row.page}));
        EXPECT_EQ(command({row.word, "-a", "on", "--help"}), (Outcome{0, row.page}));
    }
}

TEST_F(SwitchCommands, OnAndOff)
{
    for (const SwitchRow& row : kRows) {
        machine.expect(turn(row, 1));
        EXPECT_EQ(command({row.word, "-a", "on"}), (Outcome{0, success(row, "enable")}));
        machine.expect(turn(row, 0));
        EXPECT_EQ(command({row.word, "--action=OFF"}), (Outcome{0, success(row, "disable")}));
    }
}

TEST_F(SwitchCommands, ARefusalPrintsItsTextAndIsReturned)
{
    for (const SwitchRow& row : kRows) {
        machine.expect(turn(row, 1).status(0x705));
        EXPECT_EQ(command({row.word, "-a", "on"}),
                  (Outcome{0x705, row.name + " enable failed.\n", "Not supported (Status Code: 0x705)\n"}));
        machine.expect(turn(row, 0).error(5));
        EXPECT_EQ(command({row.word, "-a", "off"}),
                  (Outcome{-1, row.name + " disable failed.\n", "Unknown error (Status Code: 0xffffffff)\n"}));
    }
}

TEST_F(SwitchCommands, BadValues)
{
    for (const SwitchRow& row : kRows) {
        const std::string word = row.word;
        EXPECT_EQ(command({word, "-a", "1"}), (Outcome{0, "-a : invalid action '1'.\n"}));
        EXPECT_EQ(command({word, "stray"}), (Outcome{0, word + ": option -a is required\n"}));
        EXPECT_EQ(command({word, "-a", "on", "-a", "on"}), kDuplicate);
        EXPECT_EQ(command({word, "-z"}), (Outcome{0, "", "", word + ": illegal option -- z\n"}));
    }
}

TEST_F(SwitchCommands, DebugLines)
{
    dbg_enable = 1;
    for (const SwitchRow& row : kRows) {
        machine.expect(turn(row, 1));
        char words[80];
        std::snprintf(words, sizeof(words), "CDW[0] : 0x000000e2\nCDW[12]: 0x%08x\nCDW[14]: 0x00000001\n", row.cdw12);
        EXPECT_EQ(command({row.word, "-a", "on"}).stream, words + success(row, "enable"));
    }
}

}  // namespace
