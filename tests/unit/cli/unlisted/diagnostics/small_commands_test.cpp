// `err_status`, `crash`, `delay`, `offline`, `chkalive`, `sf`, `ioq` and `sbsms`.
#include <map>
#include <string>
#include <vector>

#include "cli/Functions/simple/simple_diagnostics.h"
#include "cli/Functions/simple/simple_ioq.h"
#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

const Outcome kDuplicate{1, "Duplicated option specified.\n"};

class SmallCommands : public StorageTest {
protected:
    static std::string helpOf(const std::string& brief, const char* help) { return "Description" + brief + help; }
};

TEST_F(SmallCommands, TheHelpOfEachBeginsWithItsSynopsis)
{
    for (const auto& [help, synopsis] :
         std::vector<std::pair<std::string, std::string>>{{simple_err_status_help, "err_status -a <get|clear> | [-h]"},
                                                          {simple_crash_help, "crash -a <enable> | [-h]"},
                                                          {simple_delay_help, "delay -s <seconds> [-h]"},
                                                          {simple_offline_help, "offline [-i <PD id> | -h ]"},
                                                          {simple_chkalive_help, "chkalive [-h]"},
                                                          {simple_sf_help, "sf <-t 0|1 > [-h]"},
                                                          {simple_ioq_help, "No help exist."}}) {
        EXPECT_EQ(help.substr(0, synopsis.size() + 2), "\n" + synopsis + "\n");
    }
}

TEST_F(SmallCommands, ABareWordShowsTheHelpAndReturnsOne)
{
    const std::map<std::string, std::string> pages{
        {"err_status", helpOf(":Get or clear error status of NVMe Controller.", simple_err_status_help)},
        {"crash", helpOf(":Make firmware of NVMe Controller crash.", simple_crash_help)},
        {"delay", helpOf(":Make NVMe Controller stall for some seconds.", simple_delay_help)},
        {"offline", helpOf(":Take a physical disk offline.", simple_offline_help)},
        {"sf", helpOf(":Switch between single port and dual port.", simple_sf_help)},
        {"ioq", helpOf(":Show IO queue number of each host.", "\nNo help exist.\n")},
    };
    for (const auto& [word, page] : pages) {
        EXPECT_EQ(unlisted({word}), (Outcome{1, page}));
        EXPECT_EQ(unlisted({word, "-h"}), (Outcome{0, page}));
        EXPECT_EQ(unlisted({word, "--help"}), (Outcome{0, page}));
    }
}

TEST_F(SmallCommands, AnUnknownOptionReturnsZeroButForIoq)
{
    for (const std::string word : {"err_status", "crash", "delay", "offline", "chkalive", "sf"}) {
        EXPECT_EQ(unlisted({word, "-z"}), (Outcome{0, "", "", word + ": illegal option -- z\n"}));
    }
    EXPECT_EQ(unlisted({"ioq", "-z"}), (Outcome{1, "", "", "ioq: illegal option -- z\n"}));
}

TEST_F(SmallCommands, AnOptionGivenTwiceIsRefusedBeforeAnythingIsSent)
{
    EXPECT_EQ(unlisted({"err_status", "-a", "get", "--action", "clear"}), kDuplicate);
    EXPECT_EQ(unlisted({"crash", "-a", "enable", "-a", "enable"}), kDuplicate);
    EXPECT_EQ(unlisted({"delay", "-s", "1", "--seconds=2"}), kDuplicate);
    EXPECT_EQ(unlisted({"offline", "-i", "1", "--id=1"}), kDuplicate);
    EXPECT_EQ(unlisted({"sf", "-t", "1", "--target=0"}), kDuplicate);
    EXPECT_EQ(unlisted({"ioq", "-a", "show", "-a", "show"}), kDuplicate);
}

TEST_F(SmallCommands, TheOptionThatIsMissingIsNamed)
{
    const std::map<std::string, std::string> complaints{{"err_status", "err_status: option -a is required\n"},
                                                        {"crash", "crash: option -a is required\n"},
                                                        {"delay", "delay: option -s is required\n"},
                                                        {"offline", "offline: option -i is required\n"},
                                                        {"sf", "sf: option -t is required\n"}};
    for (const auto& [word, complaint] : complaints) {
        EXPECT_EQ(unlisted({word, "--output", "x"}), (Outcome{0, complaint}));
    }
}

TEST_F(SmallCommands, WordsAreMatchedExactly)
{
    for (const char* word : {"Get", "GET", "clearx", "", "enable"}) {
        EXPECT_EQ(unlisted({"err_status", "-a", word}),
                  (Outcome{0, "-a : invalid target '" + std::string(word) + "'.\n"}));
    }
    for (const char* word : {"disable", "Enable", ""}) {
        EXPECT_EQ(unlisted({"crash", "-a", word}), (Outcome{0, "-a : invalid target '" + std::string(word) + "'.\n"}));
    }
    for (const char* word : {"2", "01", "", "single"}) {
        EXPECT_EQ(unlisted({"sf", "-t", word}), (Outcome{0, "-t : invalid target '" + std::string(word) + "'.\n"}));
    }
}

TEST_F(SmallCommands, ErrStatusGetShowsTheCompletionWord)
{
    const std::string success = "Get error status command is success.\nCompletion Queue Entry Dword 0: ";
    machine.expect(plain(0x26E0, 0x1001).wantsResult().result(0xA5A50001));
    EXPECT_EQ(unlisted({"err_status", "-a", "get"}),
              (Outcome{0, success + "0xa5a50001\n\nError Status:Firmware has crash log\n"}));
    machine.expect(plain(0x26E0, 0x1001).wantsResult().result(0xFFFFFFFE));
    EXPECT_EQ(unlisted({"err_status", "--action=get", "--output", "x"}),
              (Outcome{0, success + "0xfffffffe\n\nError Status:Normal\n"}));
    machine.expect(plain(0x26E0, 0x1001).wantsResult().status(0x705));
    EXPECT_EQ(unlisted({"err_status", "-a", "get"}),
              (Outcome{0x705, "err_status command is failed.\n", "Not supported (Status Code: 0x705)\n"}));
    machine.expect(plain(0x26E0, 0x1001).wantsResult().error(EIO));
    EXPECT_EQ(unlisted({"err_status", "-a", "get"}).result, -1);
}

TEST_F(SmallCommands, ErrStatusClear)
{
    machine.expect(plain(0x27E0, 0x1001));
    EXPECT_EQ(unlisted({"err_status", "-a", "clear"}), (Outcome{0, "Clear error status success.\n"}));
    machine.expect(plain(0x27E0, 0x1001).status(6));
    EXPECT_EQ(unlisted({"err_status", "-a", "clear"}),
              (Outcome{6, "Clear error status failed.\n", "Internal Error (Status Code: 0x6)\n"}));
}

TEST_F(SmallCommands, Crash)
{
    machine.expect(plain(0x28E0, 0x1001));
    EXPECT_EQ(unlisted({"crash", "-a", "enable"}), (Outcome{0, "Crash command is success.\n"}));
    machine.expect(plain(0x28E0, 0x1001).status(6));
    EXPECT_EQ(unlisted({"crash", "-a", "enable"}),
              (Outcome{6, "crash command is failed.\n", "Internal Error (Status Code: 0x6)\n"}));
}

TEST_F(SmallCommands, DelaySendsEightBitsAndReportsTheWholeValue)
{
    machine.expect(plain(0x2CFCE0, 0x1001));
    EXPECT_EQ(unlisted({"delay", "-s", "300"}), (Outcome{0, "Delay seconds 300 success.\n"}));
    machine.expect(plain(0x1FFCE0, 0x1001));
    EXPECT_EQ(unlisted({"delay", "--seconds=0x1f"}), (Outcome{0, "Delay seconds 31 success.\n"}));
    machine.expect(plain(0xFFFCE0, 0x1001));
    EXPECT_EQ(unlisted({"delay", "-s", "99999999999"}), (Outcome{0, "Delay seconds 2147483647 success.\n"}));
    machine.expect(plain(0x00FCE0, 0x1001));
    EXPECT_EQ(unlisted({"delay", "-s", ""}), (Outcome{0, "Delay seconds 0 success.\n"}));
    machine.expect(plain(0x00FCE0, 0x1001));
    EXPECT_EQ(unlisted({"delay", "-s", "g0x5"}), (Outcome{0, "Delay seconds 0 success.\n"}));
    machine.expect(plain(0x2CFCE0, 0x1001).status(6));
    EXPECT_EQ(unlisted({"delay", "-s", "300"}),
              (Outcome{6, "Delay seconds 300 failed.\n", "Internal Error (Status Code: 0x6)\n"}));
}

TEST_F(SmallCommands, DelayTakesNoOtherTextForANumber)
{
    for (const char* word : {"-5", "1.5", "ten", "0X10"}) {
        EXPECT_EQ(unlisted({"delay", "-s", word}), (Outcome{0, "-s : invalid seconds '" + std::string(word) + "'.\n"}));
    }
}

TEST_F(SmallCommands, Offline)
{
    machine.expect(plain(0x00030BE1, 0x1001));
    EXPECT_EQ(unlisted({"offline", "-i", "3"}), (Outcome{0, "offline command success.\n"}));
    machine.expect(plain(0xFEDC0BE1, 0x1001));
    EXPECT_EQ(unlisted({"offline", "--id=65244"}), (Outcome{0, "offline command success.\n"}));
    machine.expect(plain(0x00030BE1, 0x1001).status(6));
    EXPECT_EQ(unlisted({"offline", "-i", "3"}),
              (Outcome{6, "offline command failed.(error code: 0x06)\n", "Internal Error (Status Code: 0x6)\n"}));
    machine.expect(plain(0x00030BE1, 0x1001).error(EIO));
    EXPECT_EQ(unlisted({"offline", "-i", "3"}).stream, "offline command failed.(error code: 0xffffffff)\n");
}

TEST_F(SmallCommands, OfflineTakesNumbersAlone)
{
    for (const char* word : {"x", "-1", "0x3"}) {
        EXPECT_EQ(unlisted({"offline", "-i", word}), (Outcome{0, "-i: id should be a number\n"}));
    }
}

TEST_F(SmallCommands, OfflineTakesNoIdThatItsFieldDoesNotHold)
{
    machine.expect(plain(0xFFFF0BE1, 0x1001));
    EXPECT_EQ(unlisted({"offline", "-i", "65535"}), (Outcome{0, "offline command success.\n"}));
    for (const char* word : {"65536", "65539", "4294967296", "99999999999"}) {
        EXPECT_EQ(unlisted({"offline", "-i", word}), (Outcome{0, "invalid id '" + std::string(word) + "'\n"}));
    }
}

TEST_F(SmallCommands, OfflineUnderTheOneBasedRule)
{
    g_oneBaseMode = 1;
    EXPECT_EQ(unlisted({"offline", "-i", "0"}), (Outcome{0, "invalid id '0'\n"}));
    machine.expect(plain(0x00000BE1, 0x1001));
    EXPECT_EQ(unlisted({"offline", "-i", "1"}), (Outcome{0, "offline command success.\n"}));
}

TEST_F(SmallCommands, ChkaliveSendsItsCommandAtOnce)
{
    machine.expect(plain(0x1EE0, 0x1001));
    EXPECT_EQ(unlisted({"chkalive"}), (Outcome{0, "Check adapter is alive.\n"}));
    machine.expect(plain(0x1EE0, 0x1001).status(0x705));
    EXPECT_EQ(
        unlisted({"chkalive", "--output", "x"}),
        (Outcome{0x705, "Check adapter alive failed.(error code: 0x705)\n", "Not supported (Status Code: 0x705)\n"}));
    EXPECT_EQ(unlisted({"chkalive", "-h"}),
              (Outcome{0, helpOf(":Check whether NVMe Controller is alive.", simple_chkalive_help)}));
}

TEST_F(SmallCommands, SfSwitchesThePorts)
{
    machine.expect(plain(0x000021E0, 0x1001));
    EXPECT_EQ(unlisted({"sf", "-t", "0"}), (Outcome{0, "Switch feature to single port success.\n"}));
    machine.expect(plain(0x000121E0, 0x1001));
    EXPECT_EQ(unlisted({"sf", "--target=1"}), (Outcome{0, "Switch feature to dual port success.\n"}));
    machine.expect(plain(0x000021E0, 0x1001).status(6));
    EXPECT_EQ(unlisted({"sf", "-t", "0"}),
              (Outcome{6, "Switch feature to single port failed.\n", "Internal Error (Status Code: 0x6)\n"}));
    machine.expect(plain(0x000121E0, 0x1001).status(6));
    EXPECT_EQ(unlisted({"sf", "-t", "1"}),
              (Outcome{6, "Switch feature to dual port failed.\n", "Internal Error (Status Code: 0x6)\n"}));
}

TEST_F(SmallCommands, TheDebugLinesShowTheFilledWords)
{
    dbg_enable = 1;
    machine.expect(plain(0x000121E0, 0x1001));
    EXPECT_EQ(unlisted({"sf", "-t", "1"}),
              (Outcome{0, "CDW[0] : 0x000000e2\nCDW[12]: 0x000121e0\nSwitch feature to dual port success.\n"}));
    machine.expect(plain(0x26E0, 0x1001).wantsResult());
    EXPECT_EQ(unlisted({"err_status", "-a", "get"}).stream.substr(0, 40), "CDW[0] : 0x000000e2\nCDW[12]: 0x000026e0\n");
    machine.expect(plain(0x1FCE0, 0x1001));
    EXPECT_EQ(unlisted({"delay", "-s", "1"}).stream.substr(0, 40), "CDW[0] : 0x000000e2\nCDW[12]: 0x0001fce0\n");
    machine.expect(plain(0x10BE1, 0x1001));
    EXPECT_EQ(unlisted({"offline", "-i", "1"}).stream.substr(0, 40), "CDW[0] : 0x000000e2\nCDW[12]: 0x00010be1\n");
    machine.expect(plain(0x1EE0, 0x1001));
    EXPECT_EQ(unlisted({"chkalive"}).stream.substr(0, 40), "CDW[0] : 0x000000e2\nCDW[12]: 0x00001ee0\n");
    machine.expect(page(0x24E0, 0x1001));
    EXPECT_EQ(unlisted({"ioq", "-a", "show"}),
              (Outcome{0, "CDW[0] : 0x000000e2\nCDW[12]: 0x000024e0\nMax Controllers: 0\n"}));
}

// An answer of `ioq` for hosts with these counts, of which `told` are said to be there.
Bytes queues(const std::vector<QRX_U8>& counts, QRX_U32 told)
{
    Bytes data = bytesOf(told);
    for (const QRX_U8 count : counts) {
        data.insert(data.end(), {count, 0xEE, 0xEE, 0xEE});
    }
    return envelope(data);
}

TEST_F(SmallCommands, IoqShowsTheQueuesOfEachHost)
{
    const std::string expected =
        "HOST ID 0, IO queue number: 16\nHOST ID 1, IO queue number: 255\nHOST ID 2, IO queue number: 0\n"
        "Max Controllers: 3\n";
    machine.expect(page(0x24E0, 0x1001).data(queues({16, 255, 0}, 3)));
    EXPECT_EQ(unlisted({"ioq", "-a", "show"}), (Outcome{0, expected}));
    machine.expect(page(0x24E0, 0x1001).data(queues({16, 255, 0}, 3)));
    EXPECT_EQ(unlisted({"ioq", "--action=SHOW"}), (Outcome{0, expected}));
    machine.expect(page(0x24E0, 0x1001).data(queues({}, 0)));
    EXPECT_EQ(unlisted({"ioq", "--output", "x"}), (Outcome{0, "Max Controllers: 0\n"}));
}

TEST_F(SmallCommands, IoqRefusesAnotherAction)
{
    EXPECT_EQ(unlisted({"ioq", "-a", "list"}), (Outcome{1, "-a : invalid action 'list'.\n"}));
}

TEST_F(SmallCommands, IoqAsksTheCurrentController)
{
    gCurrentAdapter = 0;
    machine.expect(page(0x24E0, 0x1001).on(0).data(queues({9}, 1)));
    EXPECT_EQ(unlisted({"ioq", "-a", "show"}), (Outcome{0, "HOST ID 0, IO queue number: 9\nMax Controllers: 1\n"}));
    machine.expect(page(0x24E0, 0x1001).on(0).status(0x705));
    EXPECT_EQ(unlisted({"ioq", "--output", "x"}),
              (Outcome{0x705, "\nUnable to query IO queue number of controllers 0\n",
                       "Not supported (Status Code: 0x705)\n"}));
}

TEST_F(SmallCommands, IoqFailsByTheLowByteOfTheStatus)
{
    machine.expect(page(0x24E0, 0x1001).status(0x705));
    EXPECT_EQ(unlisted({"ioq", "-a", "show"}), (Outcome{0x705, "\nUnable to query IO queue number of controllers 1\n",
                                                        "Not supported (Status Code: 0x705)\n"}));
    machine.expect(page(0x24E0, 0x1001).status(0x700));
    EXPECT_EQ(unlisted({"ioq", "-a", "show"}).stream, "Max Controllers: 0\n");
    machine.expect(page(0x24E0, 0x1001).error(EIO));
    EXPECT_EQ(unlisted({"ioq", "-a", "show"}).result, -1);
}

TEST_F(SmallCommands, IoqShowsNoMoreHostsThanAnAnswerHasRoomFor)
{
    for (const auto& [told, shown] :
         std::vector<std::pair<QRX_U32, std::string>>{{1022, "1022"}, {0xFFFFFFFF, "-1"}, {0x7FFFFFFF, "2147483647"}}) {
        machine.expect(page(0x24E0, 0x1001).data(queues(std::vector<QRX_U8>(1021, 7), told)));
        std::string expected;
        for (int i = 0; i < 1021; ++i) {
            expected += "HOST ID " + std::to_string(i) + ", IO queue number: 7\n";
        }
        expected += "Max Controllers: " + shown + "\nioq: the answer has room for 1021 of them\n";
        EXPECT_EQ(unlisted({"ioq", "-a", "show"}), (Outcome{0, expected}));
    }
    machine.expect(page(0x24E0, 0x1001).data(queues(std::vector<QRX_U8>(1021, 7), 1021)));
    const std::string whole = unlisted({"ioq", "-a", "show"}).stream;
    EXPECT_EQ(whole.substr(whole.size() - 22), "Max Controllers: 1021\n");
}

TEST_F(SmallCommands, SbsmsDoesNothing)
{
    EXPECT_EQ(unlisted({"sbsms"}), (Outcome{0, ""}));
    EXPECT_EQ(unlisted({"sbsms", "-h"}), (Outcome{0, ""}));
    EXPECT_EQ(unlisted({"sbsms", "-z", "x"}), (Outcome{0, ""}));
    EXPECT_EQ(std::string(simple_sbsms_help).substr(0, 12), "\nsbsms [-h]\n");
}

}  // namespace
