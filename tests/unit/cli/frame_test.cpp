// What the handlers are written on: options, numbers, lines, commands.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/lines.h"
#include "cli/Public/frame/list.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/report.h"
#include "tests/unit/cli/run.h"

namespace {

using namespace qrx;
using namespace qrx::test;

constexpr option kLong[] = {{"sbs", optional_argument, nullptr, 'b'}, kOutputRow, kHelpRow, kEndRow};
constexpr char kLetters[] = "a:b:f\x01:h";

std::string linesOf(const std::function<void()>& print)
{
    return outcomeOf([&] {
               print();
               return 0;
           })
        .stream;
}

TEST(OptionScan, RewindsCountsAndPassesOverTheSilentOption)
{
    optind = 7;
    Words words{"c", "-a", "1", "-\x01utput", "file", "-a", "2", "--output", "x"};
    OptionScan scan(words.argc(), words.argv(), kLetters, kLong);
    EXPECT_EQ(scan.next(), 'a');
    EXPECT_STREQ(scan.word(), "1");
    EXPECT_FALSE(scan.repeated("ab"));
    EXPECT_EQ(scan.next(), 'a');
    EXPECT_STREQ(scan.word(), "2");
    EXPECT_EQ(scan.next(), OptionScan::kEnd);
    EXPECT_EQ(optind, 8);
    EXPECT_EQ(scan.count('a'), 2U);
    EXPECT_TRUE(scan.has('a'));
    EXPECT_FALSE(scan.has('b'));
    EXPECT_TRUE(scan.repeated("ab"));
    EXPECT_FALSE(scan.repeated("b"));
}

TEST(OptionScan, AnOptionalArgumentLeftOutIsAnEmptyWordAndNoNumber)
{
    Words words{"c", "--sbs", "5"};
    OptionScan scan(words.argc(), words.argv(), kLetters, kLong);
    EXPECT_EQ(scan.next(), 'b');
    EXPECT_STREQ(scan.word(), "");
    EXPECT_EQ(readNumber(optarg), std::nullopt);
    EXPECT_EQ(readHexOrNumber(optarg), std::nullopt);
    EXPECT_EQ(readId(optarg), std::nullopt);
    EXPECT_EQ(keyword(optarg, {}), std::nullopt);
}

TEST(OptionScan, AFlagThatNeverLetsGoOfItsWordEndsTheScan)
{
    Words words{"c", "-fx", "-f"};
    OptionScan scan(words.argc(), words.argv(), kLetters, kLong);
    EXPECT_EQ(scan.next(), 'f');
    EXPECT_EQ(scan.next(), OptionScan::kError);
}

TEST(OptionScan, TwoFlagsInTheirOwnWordsAreTwo)
{
    Words words{"c", "-f", "-f"};
    OptionScan scan(words.argc(), words.argv(), kLetters, kLong);
    EXPECT_EQ(scan.next(), 'f');
    EXPECT_EQ(scan.next(), 'f');
    EXPECT_EQ(scan.next(), OptionScan::kEnd);
}

TEST(OptionScan, ErrorsAreNotCounted)
{
    Words words{"c", "-z"};
    const auto outcome = outcomeOf([&] {
        OptionScan scan(words.argc(), words.argv(), kLetters, kLong);
        const int result = scan.next();
        EXPECT_EQ(scan.count('?'), 0U);
        return result;
    });
    EXPECT_EQ(outcome, (Outcome{'?', "", "", "c: illegal option -- z\n"}));
}

TEST(Keywords, AreComparedWithoutRegardToCase)
{
    constexpr Keyword kWords[] = {{"on", 5}, {"off", 6}};
    EXPECT_EQ(keyword("ON", kWords), 5);
    EXPECT_EQ(keyword("Off", kWords), 6);
    EXPECT_EQ(keyword("of", kWords), std::nullopt);
    EXPECT_EQ(keyword("", kWords), std::nullopt);
    EXPECT_EQ(keyword(nullptr, kWords), std::nullopt);
}

TEST(Numbers, SaturateAtThirtyTwoBits)
{
    EXPECT_EQ(strtol32("2147483647", 10), 2147483647);
    EXPECT_EQ(strtol32("2147483648", 10), 2147483647);
    EXPECT_EQ(strtol32("99999999999999999999999", 10), 2147483647);
    EXPECT_EQ(strtol32("-2147483649", 10), -2147483647 - 1);
    EXPECT_EQ(strtol32("-99999999999999999999999", 10), -2147483647 - 1);
    EXPECT_EQ(strtol32("0xFFFFFFFF", 16), 0x7FFFFFFF);
    EXPECT_EQ(strtol32("7A51", 16), 0x7A51);
    const char* end = nullptr;
    EXPECT_EQ(strtol32("12x", 10, &end), 12);
    EXPECT_STREQ(end, "x");
}

TEST(Numbers, InDecimalOrHexadecimal)
{
    EXPECT_EQ(readNumber("42"), 42);
    EXPECT_EQ(readNumber(""), 0);
    EXPECT_EQ(readNumber("010"), 10);
    EXPECT_EQ(readNumber("4x"), std::nullopt);
    EXPECT_EQ(readNumber("-4"), std::nullopt);
    EXPECT_EQ(readNumber("0x4"), std::nullopt);
    EXPECT_EQ(readHexOrNumber("0x1f"), 0x1f);
    EXPECT_EQ(readHexOrNumber("10"), 10);
    EXPECT_EQ(readHexOrNumber("1f"), std::nullopt);
    EXPECT_EQ(readHexOrNumber("120x5"), 0x120);
    EXPECT_EQ(readHexOrNumber("zz0x5"), 0);
    EXPECT_EQ(readHexOrNumber("0xFFFFFFFF"), 0x7FFFFFFF);
}

TEST(Numbers, AWideHexadecimalOneTakesAllBits)
{
    EXPECT_EQ(readWideHexOrNumber("0xE3200000"), 0xE3200000U);
    EXPECT_EQ(readWideHexOrNumber("0x123456789ABCDEF"), 0x89ABCDEFU);
    EXPECT_EQ(readWideHexOrNumber("0xFFFFFFFFFFFFFFFFF"), 0xFFFFFFFFU);
    EXPECT_EQ(readWideHexOrNumber("zz0x5"), 0U);
    EXPECT_EQ(readWideHexOrNumber("4294967295"), 0x7FFFFFFFU);
    EXPECT_EQ(readWideHexOrNumber(""), 0U);
    EXPECT_EQ(readWideHexOrNumber("E3200000"), std::nullopt);
    EXPECT_EQ(readWideHexOrNumber("-1"), std::nullopt);
    EXPECT_EQ(readWideHexOrNumber(nullptr), std::nullopt);
}

TEST(Numbers, AnExactOneIsNeitherCutNorReadByHalf)
{
    EXPECT_EQ(readExact("0xFFFFFFFFFFFFFFFF"), 0xFFFFFFFFFFFFFFFFU);
    EXPECT_EQ(readExact("18446744073709551615"), 0xFFFFFFFFFFFFFFFFU);
    EXPECT_EQ(readExact("0xFFFFFFFF", 32), 0xFFFFFFFFU);
    EXPECT_EQ(readExact("4294967295", 32), 0xFFFFFFFFU);
    EXPECT_EQ(readExact("010", 4), 10U);
    EXPECT_EQ(readExact("1", 1), 1U);
    EXPECT_EQ(readExact("", 1), 0U);
    for (const char* text : {"0x10000000000000000", "18446744073709551616", "-0x1", " -0x1", "+0x1", "-1", "+1", "0x",
                             "0x1g", "g0x1", "1x0x1", "0x1 ", "0x1+1", "x", "1f"}) {
        EXPECT_EQ(readExact(text), std::nullopt) << text;
    }
    EXPECT_EQ(readExact("0x100000000", 32), std::nullopt);
    EXPECT_EQ(readExact("4294967296", 32), std::nullopt);
    EXPECT_EQ(readExact("16", 4), std::nullopt);
    EXPECT_EQ(readExact("2", 1), std::nullopt);
    EXPECT_EQ(readExact(nullptr), std::nullopt);
}

TEST(Numbers, AnIdThatItsFieldDoesNotHoldIsNone)
{
    EXPECT_EQ(narrowId(0), 0);
    EXPECT_EQ(narrowId(65535), 65535);
    EXPECT_EQ(narrowId(65536), std::nullopt);
    EXPECT_EQ(narrowId(-1), std::nullopt);
    EXPECT_EQ(narrowId(std::nullopt), std::nullopt);
    EXPECT_EQ(narrowId<QRX_U8>(255), 255);
    EXPECT_EQ(narrowId<QRX_U8>(256), std::nullopt);
}

TEST(Numbers, TheOneBasedRule)
{
    GlobalsGuard guard;
    g_oneBaseMode = 0;
    EXPECT_EQ(idBase(), 0);
    EXPECT_EQ(readId("0"), 0);
    EXPECT_EQ(readId("7"), 7);
    g_oneBaseMode = 1;
    EXPECT_EQ(idBase(), 1);
    EXPECT_EQ(readId("0"), std::nullopt);
    EXPECT_EQ(readId("7"), 6);
    EXPECT_EQ(readId("x"), std::nullopt);
    g_oneBaseMode = 2;
    EXPECT_EQ(idBase(), 0);
}

TEST(Lists, GiveTheirElementsInOrderWithoutTheEmptyOnes)
{
    const auto elements = [](std::string_view list, const std::string& refused) {
        std::string seen;
        const bool all = eachElement(list, [&](const char* element) {
            seen += std::string(element) + ";";
            return element != refused;
        });
        return seen + (all ? "all" : "refused");
    };
    EXPECT_EQ(elements("1,0x2, 3", "-"), "1;0x2; 3;all");
    EXPECT_EQ(elements(",a,,b,", "-"), "a;b;all");
    EXPECT_EQ(elements("", "-"), "all");
    EXPECT_EQ(elements(",", "-"), "all");
    EXPECT_EQ(elements("a,b,c", "b"), "a;b;refused") << "nothing behind it is looked at";
}

TEST(LabelLines, NarrowToThirtyTwoBits)
{
    const Lines lines(10);
    EXPECT_EQ(linesOf([&] { lines.number("A:", 5); }), "A:         5\n");
    EXPECT_EQ(linesOf([&] { lines.number("A:", 0x1'FFFFFFFE); }), "A:         -2\n");
    EXPECT_EQ(linesOf([&] { lines.number64("A:", 0x1'FFFFFFFE); }), "A:         4294967294\n");
    EXPECT_EQ(linesOf([&] { lines.pair("A:", 7, 0xFFFFFFFF); }), "A:         7 -1\n");
    EXPECT_EQ(linesOf([&] { lines.hex("A:", 0xBEEF); }), "A:         0xbeef\n");
    EXPECT_EQ(linesOf([&] { lines.hex64("A:", 0x1234'56789ABC); }), "A:         0x123456789abc\n");
}

TEST(LabelLines, IdsGoByTheOneBasedRule)
{
    GlobalsGuard guard;
    g_oneBaseMode = 0;
    EXPECT_EQ(linesOf([] { Lines(5).id("A:", 65535); }), "A:    65535\n");
    g_oneBaseMode = 1;
    EXPECT_EQ(linesOf([] { Lines(5).id("A:", 65535); }), "A:    65536\n");
}

TEST(LabelLines, Texts)
{
    const Lines lines(5);
    EXPECT_EQ(linesOf([&] { lines.text("Name:", "x"); }), "Name: x\n");
    EXPECT_EQ(linesOf([&] { lines.text("A longer one:", ""); }), "A longer one: \n");
    EXPECT_EQ(linesOf([&] { lines.textf("A:", "%02x-%d%%", 7, 8); }), "A:    07-8%\n");
    EXPECT_EQ(linesOf([&] { lines.yesNo("A:", true); }), "A:    Yes\n");
    EXPECT_EQ(linesOf([&] { lines.yesNo("A:", false); }), "A:    No\n");
}

TEST(LabelLines, GigabytesAreOfSixtyFourBits)
{
    const Lines lines(5);
    EXPECT_EQ(linesOf([&] { lines.gigabytes("A:", 0x1'0000'0000, 512); }), "A:    2048 GB\n");
    EXPECT_EQ(linesOf([&] { lines.gigabytes("A:", 2097151, 512); }), "A:    0 GB\n");
    EXPECT_EQ(linesOf([&] { lines.gigabytes("A:", 2097152, 512); }), "A:    1 GB\n");
    EXPECT_EQ(linesOf([&] { lines.gigabytes("A:", 1ULL << 63, 2); }), "A:    0 GB\n");
    EXPECT_EQ(linesOf([&] { lines.gigabytes("A:", ~0ULL, 1); }), "A:    17179869183 GB\n");
}

TEST(Report, TheWordsOfEveryHandler)
{
    Command_Info row{"led", 4, nullptr, "\nlong\n", ":brief", 1};
    EXPECT_EQ(outcomeOf([&] { return showHelp(&row, 5); }), (Outcome{5, "Description:brief\nlong\n"}));
    EXPECT_EQ(outcomeOf([] { return duplicateOption(); }), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(outcomeOf([&] { return optionRequired(&row, 'i'); }), (Outcome{0, "led: option -i is required\n"}));
    EXPECT_EQ(outcomeOf([&] { return optionRequired(&row, 'i', 1); }), (Outcome{1, "led: option -i is required\n"}));
    EXPECT_EQ(outcomeOf([&] { return optionValNotRequired(&row, 'i'); }),
              (Outcome{0, "led: option -i is not required\n"}));
    EXPECT_EQ(outcomeOf([] { return refuse(3, "-a : %s %d\n", "x", 4); }), (Outcome{3, "-a : x 4\n"}));
    EXPECT_EQ(outcomeOf([] { return report(0, "no\n", "yes\n"); }), (Outcome{0, "yes\n"}));
    EXPECT_EQ(outcomeOf([] { return report(-1, "no\n", "yes\n"); }), (Outcome{-1, "no\n"}));
    EXPECT_EQ(outcomeOf([] { return reportCode(0, "It"); }), (Outcome{0, "It success.\n"}));
    EXPECT_EQ(outcomeOf([] { return reportCode(5, "It"); }), (Outcome{5, "It failed.(error code: 0x05)\n"}));
    EXPECT_EQ(outcomeOf([] { return reportCode(-1, "It"); }), (Outcome{-1, "It failed.(error code: 0xffffffff)\n"}));
}

class AdminCommands : public testing::Test {
protected:
    AdminCommands()
    {
        machine.addController();
        machine.addController({.path = "/dev/nvme1"});
    }
    GlobalsGuard guard;
    ScriptedMachine machine;
};

TEST_F(AdminCommands, CarryTheirWordsAndFlags)
{
    machine.expect(test::Command::vendor(0xBEEF07E1).word(13, 0x13).word(14, 0x14).flag(0x7001));
    EXPECT_EQ(vendorCommand(0xE1, 7, 0xBEEF).word(13, 0x13).word(14, 0x14).send(), 0);
    machine.expect(test::Command::passthru(0xC2).word(1, 9).flag(0x5001).on(1).status(0x2));
    EXPECT_EQ(outcomeOf([] { return AdminCommand(kTunnelFromDrive).word(1, 9).flag(0x5001).send(1); }),
              (Outcome{2, "", "Invalid Field in Command (Status Code: 0x2)\n"}));
}

TEST_F(AdminCommands, MoveDataBothWays)
{
    gCurrentAdapter = 1;
    machine.expect(test::Command::passthru(199).word(12, 0x13E0).flag(0x1001).sends({1, 2, 3}).on(1));
    EXPECT_EQ(vendorCommand(kGroupAdapter, 0x13, 0, kVendorWrite).transmit(Bytes{1, 2, 3}), 0);

    machine.expect(test::Command::vendor(0xE0)
                       .flag(0x1001)
                       .receives(4096)
                       .carries(Bytes(4096))
                       .on(1)
                       .data(envelope(Bytes{7, 8}, 9)));
    Response response;
    EXPECT_EQ(vendorCommand(kGroupAdapter, 0).receive(response.bytes()), 0);
    EXPECT_TRUE(response.isSigned());
    EXPECT_EQ(response.status(), 9);
    EXPECT_EQ(response.record<QRX_U16>(), 0x0807);
    EXPECT_EQ(response.record<QRX_U8>(1), 8);
    EXPECT_EQ(response.record<QRX_U16>(4096 - 8 - 2), 0);
    EXPECT_EQ(response.record<QRX_U16>(4096 - 8 - 1), std::nullopt);
}

TEST_F(AdminCommands, AQuietFailureIsSilentAndADriverFailureIsMinusOne)
{
    Response response;
    machine.expect(test::Command::vendor(0xE1).flag(0x1001).receives(4096).status(2));
    EXPECT_EQ(outcomeOf([&] { return vendorCommand(kGroupPd, 0).receiveQuietly(response.bytes()); }), (Outcome{2, ""}));
    machine.expect(test::Command::vendor(0xE1).flag(0x1001).error(5));
    EXPECT_EQ(outcomeOf([&] { return vendorCommand(kGroupPd, 0).send(); }).result, -1);
    EXPECT_FALSE(response.isSigned());
}

TEST_F(AdminCommands, EachLetterOfTheSignatureCounts)
{
    for (int letter = 0; letter < 4; ++letter) {
        Response response;
        const char sign[] = "QRXz";
        for (int i = 0; i < 4; ++i) {
            response.bytes()[static_cast<std::size_t>(i)] = static_cast<QRX_U8>(i == letter ? '?' : sign[i]);
        }
        EXPECT_EQ(response.isSigned(), letter == 3);
    }
}

TEST_F(AdminCommands, UnderDebugWhatStandsInPlaceOfTheSignatureIsTold)
{
    Response response;
    std::copy_n("QRx", 3, response.bytes().begin());
    bool good = true;
    const auto line = [&] { return linesOf([&] { good = response.checkSign(); }); };
    EXPECT_EQ(line(), "");
    EXPECT_FALSE(good);
    dbg_enable = 1;
    EXPECT_EQ(line(), "receive sign get 0x51 0x52 0x78 expect 0x51 0x52 0x58\n");
    EXPECT_FALSE(good);
    response.bytes()[2] = 'X';
    EXPECT_EQ(line(), "");
    EXPECT_TRUE(good);
}

TEST_F(AdminCommands, DebugLines)
{
    const auto every =
        AdminCommand(0xE2).word(1, 1).word(10, 0xA).word(11, 0xB).word(12, 0xC).word(13, 0xD).word(14, 0xE).word(15,
                                                                                                                 0xF);
    dbg_enable = 0;
    EXPECT_EQ(linesOf([&] {
                  every.debug();
                  every.debug({0, 1});
              }),
              "");
    dbg_enable = 1;
    EXPECT_EQ(linesOf([&] { every.debug(); }),
              "CDW[0] : 0x000000e2\nCDW[10]: 0x0000000a\nCDW[11]: 0x0000000b\nCDW[12]: 0x0000000c\n"
              "CDW[13]: 0x0000000d\nCDW[14]: 0x0000000e\nCDW[15]: 0x0000000f\n");
    EXPECT_EQ(linesOf([&] { every.debug({1, 14}); }), "CDW[1] : 0x00000001\nCDW[14]: 0x0000000e\n");
    EXPECT_EQ(linesOf([] { vendorCommand(0xE0, 2).word(14, 0).flag(1).debug(); }),
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000002e0\nCDW[14]: 0x00000000\n");
}

}  // namespace
