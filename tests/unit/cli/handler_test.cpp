// What the handlers of the storage commands are written on: the option pass, and what is known of the controllers.
#include <gtest/gtest.h>

#include <string>

#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"
#include "tests/unit/cli/run.h"

namespace {

using namespace qrx;
using namespace qrx::test;

constexpr char kLetters[] = "a:b:n:\x01:h";
constexpr option kLong[] = {{"all", no_argument, nullptr, 'A'}, kOutputRow, kHelpRow, kEndRow};

// The option pass of a handler that takes -a and -b, accepts any argument but "bad", and returns 7 after a complaint.
Outcome pass(std::initializer_list<std::string> words, std::optional<int>* went = nullptr)
{
    Command_Info row{"led", 4, nullptr, "\nlong\n", ":brief", 1};
    Words mine(words);
    return outcomeOf([&] {
        OptionScan scan(mine.argc(), mine.argv(), kLetters, kLong);
        const auto result = readOptions(scan, &row, "ab", 7, [&](int letter) {
            return std::string(scan.word()) != "bad" || complain("-%c : bad %s\n", letter, scan.word());
        });
        if (went != nullptr) {
            *went = result;
        }
        return result.value_or(-77);
    });
}

TEST(OptionPass, GoesOnWhenAllIsWell)
{
    EXPECT_EQ(pass({"led", "-a", "1", "-b", "2"}), (Outcome{-77, ""}));
    EXPECT_EQ(pass({"led", "--output", "x"}), (Outcome{-77, ""}));
    EXPECT_EQ(pass({"led", "word"}), (Outcome{-77, ""}));
}

TEST(OptionPass, EndsAtAComplaintOfTheReaderOrTheScanner)
{
    EXPECT_EQ(pass({"led", "-b", "bad", "-h"}), (Outcome{7, "-b : bad bad\n"}));
    EXPECT_EQ(pass({"led", "-z", "-h"}), (Outcome{7, "", "", "led: illegal option -- z\n"}));
}

TEST(OptionPass, ShowsTheHelpForAnyOtherOptionAndForABareWord)
{
    EXPECT_EQ(pass({"led", "-a", "1", "-h"}), (Outcome{0, "Description:brief\nlong\n"}));
    EXPECT_EQ(pass({"led", "-n", "1"}), (Outcome{0, "Description:brief\nlong\n"}));
    EXPECT_EQ(pass({"led", "--all"}), (Outcome{0, "Description:brief\nlong\n"}));
    EXPECT_EQ(pass({"led"}), (Outcome{1, "Description:brief\nlong\n"}));
}

TEST(OptionPass, MayEndInOtherWaysForTheReaderThanForTheScanner)
{
    const auto passed = [](std::initializer_list<std::string> words) {
        Command_Info row{"led", 4, nullptr, "\nlong\n", ":brief", 1};
        Words mine(words);
        return outcomeOf([&] {
            OptionScan scan(mine.argc(), mine.argv(), kLetters, kLong);
            return readOptions(scan, &row, "a", {5, 6}, [](int) { return false; }).value_or(-77);
        });
    };
    EXPECT_EQ(passed({"led", "-z"}), (Outcome{5, "", "", "led: illegal option -- z\n"}));
    EXPECT_EQ(passed({"led", "-a", "1"}), (Outcome{6, ""}));
}

TEST(RequiredOptions, TheFirstThatIsMissingIsTold)
{
    const auto required = [](std::initializer_list<std::string> words, std::optional<int> result) {
        Command_Info row{"led", 4, nullptr, "\nlong\n", ":brief", 1};
        Words mine(words);
        return outcomeOf([&] {
            OptionScan scan(mine.argc(), mine.argv(), kLetters, kLong);
            (void)passOptions(scan, &row, "ab", 0, [](int) { return true; });
            return (result ? requireOptions(scan, &row, "ba", *result) : requireOptions(scan, &row, "ba"))
                .value_or(-77);
        });
    };
    EXPECT_EQ(required({"led", "-a", "1", "-b", "2"}, 3), (Outcome{-77, ""}));
    EXPECT_EQ(required({"led"}, 3), (Outcome{3, "led: option -b is required\n"}));
    EXPECT_EQ(required({"led", "-b", "2"}, 3), (Outcome{3, "led: option -a is required\n"}));
    EXPECT_EQ(required({"led"}, std::nullopt), (Outcome{0, "led: option -b is required\n"}));
}

TEST(Take, StoresWhatIsThereCutToTheField)
{
    QRX_U8 field = 9;
    EXPECT_TRUE(take(std::optional(0x12C), field));
    EXPECT_EQ(field, 0x2C);
    EXPECT_FALSE(take(std::optional<int>(), field));
    EXPECT_EQ(field, 0x2C);
}

TEST(UnsignedNumbers, SaturateAtThirtyTwoBits)
{
    EXPECT_EQ(strtoul32("4294967295", 10), 0xFFFFFFFFU);
    EXPECT_EQ(strtoul32("4294967296", 10), 0xFFFFFFFFU);
    EXPECT_EQ(strtoul32("99999999999999999999999", 10), 0xFFFFFFFFU);
    EXPECT_EQ(strtoul32("2147483648", 10), 0x80000000U);
    EXPECT_EQ(strtoul32("-1", 10), 0xFFFFFFFFU);
    EXPECT_EQ(strtoul32("-4294967295", 10), 1U);
    EXPECT_EQ(strtoul32("-99999999999", 10), 0xFFFFFFFFU);
    EXPECT_EQ(strtoul32("", 10), 0U);
}

TEST(DuplicateOption, ReturnsWhatTheHandlerWants)
{
    EXPECT_EQ(outcomeOf([] { return duplicateOption(0); }), (Outcome{0, "Duplicated option specified.\n"}));
}

TEST(CarryOut, ShowsTheWordsSendsAndReports)
{
    GlobalsGuard guard;
    ScriptedMachine machine;
    machine.addController();
    machine.addController();
    gCurrentAdapter = 1;
    dbg_enable = 1;
    const auto command = vendorCommand(0xE1, 7, 0xBEEF).word(14, 5);
    machine.expect(test::Command::vendor(0xBEEF07E1).word(14, 5).flag(0x5001).on(1));
    EXPECT_EQ(outcomeOf([&] { return carryOut(command, "no\n", "yes\n"); }),
              (Outcome{0, "CDW[0] : 0x000000e2\nCDW[12]: 0xbeef07e1\nCDW[14]: 0x00000005\nyes\n"}));
    dbg_enable = 0;
    machine.expect(test::Command::vendor(0xBEEF07E1).word(14, 5).flag(0x5001).on(1).status(2));
    EXPECT_EQ(outcomeOf([&] { return carryOut(command, "no\n", "yes\n"); }),
              (Outcome{2, "no\n", "Invalid Field in Command (Status Code: 0x2)\n"}));
}

TEST(ControllerRecord, IsZeroWhereThereIsNoController)
{
    GlobalsGuard guard;
    std::array<NVME_Adapter_Info, 2> records{};
    records[1].MaxNS = 9;
    records[1].Features = kFeatureRaid;
    g_pAdInfos = records.data();
    gNumAdaptersFound = 2;
    EXPECT_EQ(recordOf(1).MaxNS, 9);
    EXPECT_FALSE(isJbof(recordOf(1)));
    EXPECT_TRUE(isJbof(recordOf(0)));
    gNumAdaptersFound = 1;
    EXPECT_EQ(recordOf(1).MaxNS, 0);
    g_pAdInfos = nullptr;
    EXPECT_EQ(recordOf(0).MaxNS, 0);
}

}  // namespace
