// `eeprom` and `hidetemp`.
#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

const Outcome kDuplicate{1, "Duplicated option specified.\n"};

class Switches : public StorageTest {
protected:
    static Command eeprom(QRX_U32 value) { return plain(0x0000EAE0, 0x5001).word(14, value); }
    static Command readEeprom() { return page(0x0000EBE0, 0x1001); }
    // An answer with a verdict and a value.
    static Bytes answer(QRX_U8 verdict, QRX_U32 value)
    {
        Bytes bytes = padded({'Q', 'R', 'X', 0, verdict}, 4096);
        for (unsigned i = 0; i < 4; ++i) {
            bytes[8 + i] = static_cast<QRX_U8>(value >> 8 * i);
        }
        return bytes;
    }
};

TEST_F(Switches, EepromHelp)
{
    const std::string text = helpOf("eeprom");
    EXPECT_EQ(unlisted({"eeprom"}), (Outcome{1, text}));
    EXPECT_EQ(unlisted({"eeprom", "-h"}), (Outcome{0, text}));
    EXPECT_EQ(unlisted({"eeprom", "-a", "on", "--help"}), (Outcome{0, text}));
}

TEST_F(Switches, EepromOnAndOff)
{
    machine.expect(eeprom(1));
    EXPECT_EQ(unlisted({"eeprom", "-a", "on"}), (Outcome{0, "Set EEPROM success\n"}));
    machine.expect(eeprom(0));
    EXPECT_EQ(unlisted({"eeprom", "--action=OFF"}), (Outcome{0, "Set EEPROM success\n"}));
    machine.expect(eeprom(1).status(0x704));
    EXPECT_EQ(unlisted({"eeprom", "-a", "on"}),
              (Outcome{0x704, "Set EEPROM on fail\n", "Invalid parameter (Status Code: 0x704)\n"}));
    machine.expect(eeprom(0).status(1));
    EXPECT_EQ(unlisted({"eeprom", "-a", "off"}).stream, "Set EEPROM off fail\n");
}

TEST_F(Switches, EepromShown)
{
    machine.expect(readEeprom().data(answer(0, 1)));
    EXPECT_EQ(unlisted({"eeprom", "-a", "show"}), (Outcome{0, "Get EEPROM success: on (0x1)\n"}));
    machine.expect(readEeprom().data(answer(0, 0)));
    EXPECT_EQ(unlisted({"eeprom", "-a", "Show"}), (Outcome{0, "Get EEPROM success: off (0x0)\n"}));
    machine.expect(readEeprom().data(answer(0, 0xCAFEF00D)));
    EXPECT_EQ(unlisted({"eeprom", "-a", "show"}), (Outcome{0, "Get EEPROM success: unknown (0xcafef00d)\n"}));
}

TEST_F(Switches, EepromThatCannotBeRead)
{
    machine.expect(readEeprom().status(2));
    EXPECT_EQ(unlisted({"eeprom", "-a", "show"}),
              (Outcome{2, "Get EEPROM show fail\n", "Invalid Field in Command (Status Code: 0x2)\n"}));
    machine.expect(readEeprom().data(answer(5, 1)));
    EXPECT_EQ(unlisted({"eeprom", "-a", "show"}), (Outcome{5, "Get EEPROM show fail\n"})) << "by its envelope";
    machine.expect(readEeprom());
    EXPECT_EQ(unlisted({"eeprom", "-a", "show"}), (Outcome{1, "Get EEPROM show fail\n"})) << "without a signature";
}

TEST_F(Switches, EepromChecks)
{
    EXPECT_EQ(unlisted({"eeprom", "-a", "get"}), (Outcome{0, "-a : invalid action 'get'.\n"}));
    EXPECT_EQ(unlisted({"eeprom", "-a", "on", "-a", "off"}), kDuplicate);
    EXPECT_EQ(unlisted({"eeprom", "stray"}), (Outcome{0, "Unknown error(0x0)\n"}));
    EXPECT_EQ(unlisted({"eeprom", "-z"}), (Outcome{0, "", "", "eeprom: illegal option -- z\n"}));
}

TEST_F(Switches, EepromDebugLines)
{
    dbg_enable = 1;
    machine.expect(eeprom(1));
    EXPECT_EQ(unlisted({"eeprom", "-a", "on"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x0000eae0\nCDW[14]: 0x00000001\nSet EEPROM success\n");
    machine.expect(readEeprom().data(answer(0, 1)));
    EXPECT_EQ(unlisted({"eeprom", "-a", "show"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x0000ebe0\nGet EEPROM success: on (0x1)\n");
}

TEST_F(Switches, HidetempHelp)
{
    const std::string text = helpOf("hidetemp");
    EXPECT_EQ(unlisted({"hidetemp"}), (Outcome{1, text}));
    EXPECT_EQ(unlisted({"hidetemp", "-h"}), (Outcome{0, text}));
    EXPECT_EQ(unlisted({"hidetemp", "-t", "enable", "--help"}), (Outcome{0, text}));
}

TEST_F(Switches, HidetempHidesAndShows)
{
    machine.expect(plain(0x000125E0, 0x1001));
    EXPECT_EQ(unlisted({"hidetemp", "-t", "enable"}), (Outcome{0, "Set hide temperature to enable success.\n"}));
    machine.expect(plain(0x000025E0, 0x1001));
    EXPECT_EQ(unlisted({"hidetemp", "--target=disable"}), (Outcome{0, "Set hide temperature to disable success.\n"}));
    machine.expect(plain(0x000125E0, 0x1001).status(0x705));
    EXPECT_EQ(unlisted({"hidetemp", "-t", "enable"}).stream, "Set hide temperature to enable failed.\n");
    machine.expect(plain(0x000025E0, 0x1001).status(0x705));
    const Outcome failed = unlisted({"hidetemp", "-t", "disable"});
    EXPECT_EQ(failed.stream, "Set hide temperature to disable failed.\n");
    EXPECT_EQ(failed.result, 0x705);
}

TEST_F(Switches, HidetempChecks)
{
    for (const std::string word : {"Enable", "DISABLE", "on", "", "enabled"}) {
        EXPECT_EQ(unlisted({"hidetemp", "-t", word}), (Outcome{0, "-t : invalid target '" + word + "'.\n"}));
    }
    EXPECT_EQ(unlisted({"hidetemp", "-t", "enable", "-t", "disable"}), kDuplicate);
    EXPECT_EQ(unlisted({"hidetemp", "stray"}), (Outcome{0, "hidetemp: option -t is required\n"}));
}

TEST_F(Switches, HidetempDebugLines)
{
    dbg_enable = 1;
    machine.expect(plain(0x000125E0, 0x1001));
    EXPECT_EQ(unlisted({"hidetemp", "-t", "enable"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000125e0\nSet hide temperature to enable success.\n");
}

}  // namespace
