// help, ?, version, --debug and adapter.
#include <gtest/gtest.h>

#include <string>

#include "cli/Functions/builtin/adapter.h"
#include "cli/Functions/builtin/help.h"
#include "cli/Functions/builtin/version.h"
#include "cli/Functions/simple/simple_info.h"
#include "tests/unit/cli/run.h"
#include "tests/unit/cli/texts.h"

namespace {

using namespace qrx::test;

const std::string kHelpPage =
    std::string("Description:Get brief help for all commands or detail help for one command.") + expected::kHelpHelp;
const std::string kMarkPage = std::string("Description:Get brief help for all commands.") + expected::kHelpHelp;
const std::string kInfoPage = std::string(
                                  "Description:For display NVMe Controller(hba), virtual disk(vd), physical "
                                  "disk(pd) or Namespace(ns) information.") +
                              expected::kInfoHelp;
const std::string kVersionPage =
    std::string("Description:Show API, CLI and support firmware version") + expected::kVersionHelp;
const std::string kAdapterPage =
    std::string("Description:Default NVMe Controller the following CLI commands refers to.") + adapter_help;

const std::string kList = std::string(expected::kHelpHead) +
                          "?                  :Get brief help for all commands.\n"
                          "help               :Get brief help for all commands or detail help for one command.\n"
                          "adapter            :Default NVMe Controller the following CLI commands refers to.\n"
                          "version            :Show API, CLI and support firmware version\n"
                          "smart              :Get SSD backend RC/Slot SMART info.\n"
                          "flash              :Update flash image.\n"
                          "log                :For show/on/off SPI log\n"
                          "info               :For display NVMe Controller(hba), virtual disk(vd), physical disk(pd) "
                          "or Namespace(ns) information.\n"
                          "event              :For getting event from NVMe Controller.\n"
                          "import             :For import VD\n"
                          "init               :For start or stop VD initialization.\n"
                          "mp                 :For start or stop media patrol for a virtual disk.\n"
                          "rebuild            :For start or stop VD rebuild.\n"
                          "debuglv            :For switch debug level target\n"
                          "get                :For getting configuration information of NVMe Controller.\n"
                          "set                :For setting configuration parameters of NVMe Controller.\n"
                          "vpdwrite           :Write VPD via standard MI-Send\n"
                          "oemdata            :For write OEM data.\n"
                          "passthru           :Passthrough NVMe admin command to backend device\n"
                          "spi                :Read and write SPI data. Maximal size of SPI data is 4096 bytes.\n"
                          "vd                 :For VD create and delete\n"
                          "reset              :For reset back-end device\n"
                          "[Notice]\n"
                          "  <Default GPIO setting>\n"
                          "    Set power: \n"
                          "        Power pin id 0 means control GPIO4\n"
                          "        Power pin id 1 means control GPIO5\n"
                          "    Set perstn\n"
                          "        PD id 0 means control GPIO8\n"
                          "        PD id 1 means control GPIO10\n"
                          "        PD id 2 means control GPIO9\n"
                          "        PD id 3 means control GPIO11\n"
                          "\n"
                          "led                :For control LED of device\n"
                          "vpd                :For switch VPD access target\n"
                          "dumphba            :For dump hba info data structure\n"
                          "gpio               :For GPIO setting in HBA info (Only for GPIO 4 to 7)\n"
                          "ns                 :For namespace management\n"
                          "identify           :Get controller identify info.\n"
                          "inverse            :For GPIO 8,9,10 and 11 inverse control.\n"
                          "vpdread            :Read VPD via standard MI-Send and MI-Receive\n" +
                          expected::kHelpFoot + "\n";

TEST(HelpTexts, AreExact)
{
    EXPECT_STREQ(help_help, expected::kHelpHelp);
    EXPECT_STREQ(version_help, expected::kVersionHelp);
    EXPECT_STREQ(simple_info_help, expected::kInfoHelp);
    const std::string adapter = adapter_help;
    EXPECT_EQ(adapter.substr(0, adapter.find("        For example")), expected::kAdapterHelpHead);
    EXPECT_EQ(adapter.substr(adapter.find("    --list \n"), std::string(expected::kAdapterHelpOptions).size()),
              expected::kAdapterHelpOptions);
    for (const char* line : {"\n    adapter --list\n    ", "\n    adapter -i 0\n    ",
                             "\n    adapter -s 03:00.00\n    ", "\n    adapter -n \"nqn."}) {
        EXPECT_NE(adapter.find(line), std::string::npos) << line;
    }
}

TEST(Help, ListsTheGeneralCommandsInRowOrder)
{
    EXPECT_EQ(command({"help"}), (Outcome{0, kList}));
    EXPECT_EQ(command({"?"}), (Outcome{0, kList}));
    EXPECT_EQ(command({"help", "-\x01utput", "x"}).stream, "No help available for 'x'\n");
    EXPECT_EQ(command({"help", "--output=x"}), (Outcome{0, kList}));
}

TEST(Help, ShowsThePagesOfTheCommandsNamed)
{
    EXPECT_EQ(command({"help", "info", "version"}), (Outcome{0, kInfoPage + kVersionPage}));
    EXPECT_EQ(command({"?", "info"}), (Outcome{0, kInfoPage}));
    EXPECT_EQ(command({"help", "?"}), (Outcome{0, kMarkPage}));
}

TEST(Help, UnknownWordsAreToldUntilAPageWasShown)
{
    EXPECT_EQ(command({"help", "bogus", "info"}), (Outcome{0, "No help available for 'bogus'\n" + kInfoPage}));
    EXPECT_EQ(command({"help", "info", "bogus"}), (Outcome{0, kInfoPage}));
    EXPECT_EQ(command({"help", "INFO", "inf", "--", "--debug"}),
              (Outcome{0,
                       "No help available for 'INFO'\nNo help available for 'inf'\n"
                       "No help available for '--debug'\n"}));
}

TEST(Help, AStrayOptionShowsTheHelpOfTheRowItCameThrough)
{
    EXPECT_EQ(command({"help", "-h"}), (Outcome{0, kHelpPage, "", "help: illegal option -- h\n"}));
    EXPECT_EQ(command({"?", "--bogus"}), (Outcome{0, kMarkPage, "", "?: unrecognized option `--bogus'\n"}));
}

TEST(Help, UsesEachTextAsAFormat)
{
    Command_Info row{"pct", 4, doHelp, "\n50%%\n", ":10%%", 1};
    pCmdTable = &row;
    cmdTableSize = 1;
    Words words{"help", "pct"};
    EXPECT_EQ(outcomeOf([&] { return doHelp(words.argc(), words.argv(), &row); }),
              (Outcome{0, "Description:10%\n50%\n"}));
}

TEST(Version, Lines)
{
    const Outcome lines{0, "CLI Version: 1.0.0.1046\nSupport Firmware Version: 1.0.x.1039 above\n"};
    EXPECT_EQ(command({"version"}), lines);
    EXPECT_EQ(command({"vers", "stray"}), lines);
    EXPECT_EQ(command({"version", "--output", "x"}), lines);
}

TEST(Version, Options)
{
    EXPECT_EQ(command({"version", "-h"}), (Outcome{0, kVersionPage}));
    EXPECT_EQ(command({"version", "--help"}), (Outcome{0, kVersionPage}));
    EXPECT_EQ(command({"version", "-i", "3"}), (Outcome{0, kVersionPage}));
    EXPECT_EQ(command({"version", "-z"}), (Outcome{1, "", "", "version: illegal option -- z\n"}));
}

class Debug : public testing::Test {
protected:
    GlobalsGuard guard;
};

TEST_F(Debug, TurnsDebugLinesOnAndOff)
{
    const Outcome on{0, "Set debug mode to enable\n"};
    const Outcome off{0, "Set debug mode to disable\n"};
    dbg_enable = 0;
    EXPECT_EQ(command({"--debug"}), on);
    EXPECT_EQ(dbg_enable, 1);
    EXPECT_EQ(command({"--debug", "-a", "disable"}), off);
    EXPECT_EQ(dbg_enable, 0);
    EXPECT_EQ(command({"--debug", "-a", "off"}), on);
    EXPECT_EQ(dbg_enable, 1);
    EXPECT_EQ(command({"--debug", "--action=DISABLE", "--output", "x"}), off);
    EXPECT_EQ(command({"--debug", "-a", "disable", "-a", "ENABLE"}), on);
    EXPECT_EQ(command({"-", "-a", "disable"}), off);
}

TEST_F(Debug, ABadOptionDoesNotStopTheChange)
{
    dbg_enable = 0;
    EXPECT_EQ(command({"--debug", "-z"}),
              (Outcome{0, "Set debug mode to enable\n", "", "--debug: illegal option -- z\n"}));
    EXPECT_EQ(dbg_enable, 1);
}

TEST_F(Debug, HelpIsDescriptionAloneAndChangesNothing)
{
    dbg_enable = 0;
    EXPECT_EQ(command({"--debug", "-h"}), (Outcome{0, "Description"}));
    EXPECT_EQ(dbg_enable, 0);
}

class Adapter : public testing::Test {
protected:
    const std::string padded = std::string("My NQN") + std::string(217, ' ');

    Adapter()
    {
        machine.addController({.path = "/dev/nvme1", .bdf = "03:00.00", .subnqn = "nqn.one"});
        machine.addController({.path = "/dev/nvme3", .bdf = "04:00.00", .subnqn = padded});
        machine.addController({.path = "/dev/nvme7", .bdf = "0123456789ab", .subnqn = std::string(223, 'q')});
        gCurrentAdapter = 0;
        gNumAdaptersFound = 0;
    }
    GlobalsGuard guard;
    ScriptedMachine machine;
};

TEST_F(Adapter, TheBareWordShowsHelp)
{
    EXPECT_EQ(command({"adapter"}), (Outcome{1, kAdapterPage}));
    EXPECT_EQ(command({"adapter", "-h"}), (Outcome{0, kAdapterPage}));
    EXPECT_EQ(command({"adapter", "-z"}), (Outcome{1, "", "", "adapter: illegal option -- z\n"}));
    EXPECT_EQ(command({"adapter", "stray"}), (Outcome{0, ""}));
}

TEST_F(Adapter, SelectsByDeviceNumber)
{
    EXPECT_EQ(command({"adapter", "-i", "3"}), (Outcome{0, "Updated current NVMe Controller id : 3\n"}));
    EXPECT_EQ(gCurrentAdapter, 1);
    EXPECT_EQ(command({"adapter", "--id=7"}), (Outcome{0, "Updated current NVMe Controller id : 7\n"}));
    EXPECT_EQ(gCurrentAdapter, 2);
}

TEST_F(Adapter, RefusesNumbersThatNameNoController)
{
    gCurrentAdapter = 1;
    EXPECT_EQ(command({"adapter", "-i", "2"}), (Outcome{1, "NVMe Controller 2 does not exist.\n"}));
    EXPECT_EQ(command({"adapter", "-i", "4294967297"}), (Outcome{1, "NVMe Controller 2147483647 does not exist.\n"}));
    EXPECT_EQ(command({"adapter", "-i", ""}), (Outcome{1, "NVMe Controller 0 does not exist.\n"}));
    EXPECT_EQ(command({"adapter", "-i", "x1"}), (Outcome{1, "-i : invalid NVMe Controller id 'x1'\n"}));
    EXPECT_EQ(command({"adapter", "-i", "2", "-h"}), (Outcome{1, "NVMe Controller 2 does not exist.\n"}));
    EXPECT_EQ(gCurrentAdapter, 1);
}

TEST_F(Adapter, SelectsBySlot)
{
    EXPECT_EQ(command({"adapter", "-s", "04:00.00"}), (Outcome{0, "Updated current NVMe Controller id : 3\n"}));
    EXPECT_EQ(gCurrentAdapter, 1);
    EXPECT_EQ(command({"adapter", "-s", "\"03:00.00\""}), (Outcome{0, "Updated current NVMe Controller id : 1\n"}));
    EXPECT_EQ(gCurrentAdapter, 0);
    EXPECT_EQ(command({"adapter", "-s", "0123456789ab"}), (Outcome{0, "Updated current NVMe Controller id : 7\n"}));
    EXPECT_EQ(command({"adapter", "--slot", "03:00.0"}), (Outcome{0, "03:00.0 is not NVMe Controller\n"}));
    EXPECT_EQ(gCurrentAdapter, 2);
}

TEST_F(Adapter, RefusesOverLongSlots)
{
    const Outcome complaint{1, "-s : length of slot should be no more than 12 characters\n"};
    EXPECT_EQ(command({"adapter", "-s", "0123456789abc"}), complaint);
    EXPECT_EQ(command({"adapter", "-s", std::string(5000, 's')}), complaint);
    EXPECT_EQ(command({"adapter", "-s", '"' + std::string(5000, 's') + '"'}), complaint);
    EXPECT_EQ(command({"adapter", "-s", "'03:00.00'"}),
              (Outcome{0, " is not NVMe Controller\n", "Please use double quotation mark to include strings.\n"}));
}

TEST_F(Adapter, SelectsBySubnqnWithItsTrailingBlanks)
{
    EXPECT_EQ(command({"adapter", "-n", '"' + padded + '"'}), (Outcome{0, "Updated current NVMe Controller id : 3\n"}));
    EXPECT_EQ(gCurrentAdapter, 1);
    EXPECT_EQ(command({"adapter", "--SUBNQN", std::string(223, 'q')}),
              (Outcome{0, "Updated current NVMe Controller id : 7\n"}));
    EXPECT_EQ(command({"adapter", "-n", "\"My NQN\""}), (Outcome{1, "SUBNQN \"My NQN\" does not exist.\n"}));
    EXPECT_EQ(gCurrentAdapter, 2);
}

TEST_F(Adapter, RefusesOverLongSubnqns)
{
    const Outcome complaint{1, "-n : length of subnqn should be no more than 255 characters\n"};
    EXPECT_EQ(command({"adapter", "-n", std::string(256, 'n')}), complaint);
    EXPECT_EQ(command({"adapter", "-n", '"' + std::string(5000, 'n') + '"'}), complaint);
    EXPECT_EQ(command({"adapter", "-n", std::string(255, 'n')}),
              (Outcome{1, "SUBNQN \"" + std::string(255, 'n') + "\" does not exist.\n"}));
}

TEST_F(Adapter, ListsWithoutChangingTheCurrentController)
{
    gCurrentAdapter = 1;
    EXPECT_EQ(command({"adapter", "--list"}), (Outcome{0,
                                                       "Total number of NVMe Controllers: 3\n"
                                                       "Current default NVMe Controller ID for CLI commands: 3\n"}));
    EXPECT_EQ(gNumAdaptersFound, 3);
    EXPECT_EQ(command({"adapter", "--list", "-i", "7"}),
              (Outcome{0,
                       "Total number of NVMe Controllers: 3\n"
                       "Current default NVMe Controller ID for CLI commands: 7\n"}));
    EXPECT_EQ(gCurrentAdapter, 1);
}

TEST_F(Adapter, TheShortListTakesAnArgumentAndDropsIt)
{
    EXPECT_EQ(command({"adapter", "-l", "-h"}).stream,
              "Total number of NVMe Controllers: 3\nCurrent default NVMe Controller ID for CLI commands: 1\n");
    EXPECT_EQ(command({"adapter", "-l"}), (Outcome{1, "", "", "adapter: option requires an argument -- l\n"}));
    EXPECT_EQ(command({"adapter", "--list=1"}),
              (Outcome{1, "", "", "\t\t\t\t\tadapter: option `--list' doesn't allow an argument\n"}));
}

TEST_F(Adapter, RefusesDuplicatesAndIdWithSlot)
{
    const Outcome twice{1, "Duplicated option specified.\n"};
    EXPECT_EQ(command({"adapter", "-i", "1", "-i", "1"}), twice);
    EXPECT_EQ(command({"adapter", "-s", "a", "-s", "a"}), twice);
    EXPECT_EQ(command({"adapter", "--list", "--list"}), twice);
    EXPECT_EQ(command({"adapter", "-n", std::string(223, 'q'), "-n", std::string(223, 'q')}), twice);
    EXPECT_EQ(command({"adapter", "-i", "1", "-s", "03:00.0"}),
              (Outcome{1, "argument '-s' not allow use in the same time.\n"}));
    EXPECT_EQ(gCurrentAdapter, 0);
}

TEST_F(Adapter, TheSlotDecidesOverTheNameAndTheLaterOfNameAndId)
{
    const std::string q(223, 'q');
    EXPECT_EQ(command({"adapter", "-s", "04:00.00", "-n", q}).stream, "Updated current NVMe Controller id : 3\n");
    EXPECT_EQ(command({"adapter", "-n", q, "-i", "1"}).stream, "Updated current NVMe Controller id : 1\n");
    EXPECT_EQ(command({"adapter", "-i", "1", "-n", q}).stream, "Updated current NVMe Controller id : 7\n");
}

}  // namespace
