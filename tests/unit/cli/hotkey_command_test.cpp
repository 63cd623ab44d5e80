// `hotkey`.
#include "cli/Functions/simple/simple_hotkey.h"

#include <algorithm>
#include <vector>

#include "api/src/interface/wire/vd.h"
#include "tests/unit/cli/free_disks_fixture.h"
#include "tests/unit/cli/health_texts.h"
#include "tests/unit/cli/input.h"

namespace {

using namespace qrx::test;

const Outcome kDone{0, "cmd success\n"};

const std::string kRaidWarning = "If PD is a member of VD, the data of VD will be lost.\n";
const std::string kQuestion = "Are you sure you want to secure erase this disk? (y or n)\n";
const std::string kAgain = "Please input y or n.\n";
const std::string kCancel = "Cancel secure erase command.\n";

class HotkeyCommand : public FreeDisksTest {
protected:
    static Command create(QRX_U32 mode, QRX_U32 stripe, QRX_U32 members)
    {
        return plain(0x03E2 | stripe << 16 | mode << 24, 0x7001).word(13, members).word(14, 1);
    }
    static Command vdFetch(QRX_U32 index) { return page(0xE2, 0x5001).word(14, index); }
    static Command vdDelete(QRX_U32 id) { return plain(0x04E2 | id << 16, 0x1001); }
    static Command erase(QRX_U32 id)
    {
        return Command::passthru(195).word(1, id).word(10, 512).word(14, 128).word(15, 1).flag(0xC403).on(1);
    }
    static std::string debugOfFetch(unsigned group, unsigned id)
    {
        char lines[80];
        std::snprintf(lines, sizeof(lines), "CDW[0] : 0x000000e2\nCDW[12]: 0x%08x\nCDW[14]: 0x%08x\n", group, id);
        return lines;
    }
    static Command adapterFetch() { return page(0xE0, 0x5001); }
    static Command registerRead(QRX_U32 id, QRX_U32 address)
    {
        return plain(0x09E0 | id << 16, 0x3401).word(13, address).receives(4).carries(Bytes(4));
    }
};

TEST_F(HotkeyCommand, Help)
{
    EXPECT_EQ(command({"hotkey"}), (Outcome{1, expected::kHotkeyPage}));
    EXPECT_EQ(command({"hotkey", "-h"}), (Outcome{0, expected::kHotkeyPage}));
    EXPECT_EQ(command({"hotkey", "--waiveconfirmation", "--help"}), (Outcome{0, expected::kHotkeyPage}));
}

TEST_F(HotkeyCommand, CreatesRaid10OfFour)
{
    expectPds(4, {0, 1, 2, 3});
    machine.expect(create(16, 2, 0x7F));
    EXPECT_EQ(command({"hotkey", "-k", "14cg"}), kDone);
}

TEST_F(HotkeyCommand, CreatesRaid1)
{
    expectPds(3, {1, 2});
    machine.expect(create(1, 1, 0xE));
    EXPECT_EQ(command({"hotkey", "--hotkey", "12bg"}), kDone);
    expectPds(3, {0, 1, 2});
    machine.expect(create(1, 0, 0xF));  // of three: the firmware decides
    EXPECT_EQ(command({"hotkey", "-k13g"}), kDone);
}

TEST_F(HotkeyCommand, CreatesRaid0)
{
    expectPds(4, {0, 1, 2, 3});
    machine.expect(create(0, 0, 0x7F));
    EXPECT_EQ(command({"hotkey", "-k", "04g"}), kDone);
    expectPds(1, {0});
    machine.expect(create(0, 0, 0x1));
    EXPECT_EQ(command({"hotkey", "-k", "01ag and more"}), kDone);
    expectPds(1, {0});
    machine.expect(create(0, 0, 0));
    EXPECT_EQ(command({"hotkey", "-k", "00g"}), kDone);
}

TEST_F(HotkeyCommand, EarlierMembersAreShiftedIn)
{
    const std::pair<std::vector<QRX_U16>, QRX_U32> kSets[] = {
        {{1, 2}, 0xE}, {{0, 1}, 0x3}, {{0, 3}, 0x9}, {{1, 3}, 0x1A}, {{2, 5}, 0xA4}};
    for (const auto& [free, bitmap] : kSets) {
        expectPds(6, free);
        machine.expect(create(0, 0, bitmap));
        EXPECT_EQ(command({"hotkey", "-k", "02g"}), kDone) << bitmap;
    }
}

TEST_F(HotkeyCommand, TakesTheFirstFreeDisksOnly)
{
    expectPds(6, {2, 3, 4, 5});
    machine.expect(create(0, 0, 0x4));
    EXPECT_EQ(command({"hotkey", "-k", "01g"}), kDone);
}

TEST_F(HotkeyCommand, AsksForAllDisksThatThePortsMayHave)
{
    current().MaxPD = 2;
    current().PortCount = 2;
    for (QRX_U32 id = 0; id < 4; ++id) {
        machine.expect(pdFetch(id).data(envelope(NVME_PD_Info{.Status = kPdAssigned})));
    }
    machine.expect(create(0, 0, 0));
    EXPECT_EQ(command({"hotkey", "-k", "00g"}), kDone);
}

TEST_F(HotkeyCommand, OfManyDisksTheFirst32AreAskedFor)
{
    current().MaxPD = 255;
    current().PortCount = 255;
    for (QRX_U32 id = 0; id < 32; ++id) {
        machine.expect(pdFetch(id).data(envelope(NVME_PD_Info{.Status = id == 31 ? QRX_U8{0} : kPdAssigned})));
    }
    machine.expect(create(0, 0, 0x80000000));
    EXPECT_EQ(command({"hotkey", "-k", "01g"}), kDone);
}

TEST_F(HotkeyCommand, TooFewDisks)
{
    expectPds(3, {1});
    EXPECT_EQ(command({"hotkey", "-k", "02g"}), (Outcome{0, "", "Not enough free drive(s)\n"}));
}

TEST_F(HotkeyCommand, ADiskThatCannotBeReadIsNotFree)
{
    dbg_enable = 1;
    current().MaxPD = 4;
    current().PortCount = 1;
    Bytes unsignedPage = envelope(NVME_PD_Info{});
    unsignedPage[0] = 'q';
    machine.expect(pdFetch(0).data(unsignedPage));
    machine.expect(pdFetch(1).data(envelope(NVME_PD_Info{}, 6)));
    machine.expect(pdFetch(2).status(0x706));
    machine.expect(pdFetch(3).data(envelope(NVME_PD_Info{})).status(2));  // the answer decides
    machine.expect(create(0, 0, 0x8));
    EXPECT_EQ(command({"hotkey", "-k", "01g"}),
              (Outcome{0, debugOfFetch(0xE1, 0) + "cmd_status: 0x0\n" +
                              "receive sign get 0x71 0x52 0x58 expect 0x51 0x52 0x58\n" +
                              "Get PD info from ID: 0 fail\n" + debugOfFetch(0xE1, 1) +
                              "cmd_status: 0x6\nGet PD info from ID: 1 fail\n" + debugOfFetch(0xE1, 2) +
                              "cmd_status: 0x0\nreceive sign get 0x0 0x0 0x0 expect 0x51 0x52 0x58\n" +
                              "Get PD info from ID: 2 fail\n" + debugOfFetch(0xE1, 3) + "cmd_status: 0x0\n" +
                              "CDW[0] : 0x000000e2\nCDW[12]: 0x000003e2\nCDW[13]: 0x00000008\nCDW[14]: 0x00000001\n"
                              "cmd success\n"}));
}

TEST_F(HotkeyCommand, ARefusedCreationIsToldAndNotReturned)
{
    expectPds(1, {0});
    machine.expect(create(1, 0, 1).status(0x73D));
    EXPECT_EQ(command({"hotkey", "-k", "11g"}),
              (Outcome{0, "cmd failed.\n", "Invalid HD count (Status Code: 0x73d)\n"}));
}

TEST_F(HotkeyCommand, UnknownWords)
{
    for (const char* word : {"01a", "2", "0x", "0", "1", "", "01", "01d", "01dg", "99g", "0ag", "d", "S", "W", "g",
                             "01Ag", "01 g", "-1g", "21g"}) {
        EXPECT_EQ(command({"hotkey", "-k", word}), (Outcome{1, std::string("-k : invalid type '") + word + "'\n"}));
    }
    EXPECT_EQ(command({"hotkey", "-z"}), (Outcome{1, "", "", "hotkey: illegal option -- z\n"}));
}

TEST_F(HotkeyCommand, DeletesEachVdAsItIsFound)
{
    current().MaxVD = 4;
    machine.expect(vdFetch(0).data(envelope(NVME_VD_Info{.ID = 7})));
    machine.expect(vdDelete(7));
    machine.expect(vdFetch(1).data(envelope(NVME_VD_Info{.ID = 8}, 2)));
    machine.expect(vdFetch(2).data(Bytes(4096)));
    machine.expect(vdFetch(3).data(envelope(NVME_VD_Info{.ID = 0xFFFF})).status(2));  // the answer decides
    machine.expect(vdDelete(0xFFFF).status(0x701));
    EXPECT_EQ(command({"hotkey", "-k", "Dx"}),
              (Outcome{0, "delete VD ID 7 success\ndelete VD ID 65535 cmd failed.\n",
                       "Invalid Field in Command (Status Code: 0x2)\nFailed (Status Code: 0x701)\n"}));
}

TEST_F(HotkeyCommand, DeletedIdsAreShownAsTheyAre)
{
    g_oneBaseMode = 1;
    dbg_enable = 1;
    current().MaxVD = 1;
    machine.expect(vdFetch(0).data(envelope(NVME_VD_Info{.ID = 0})));
    machine.expect(vdDelete(0));
    EXPECT_EQ(command({"hotkey", "-k", "D"}),
              (Outcome{0, debugOfFetch(0xE2, 0) + "cmd_status: 0x0\ndelete VD ID 0 success\n"}));
}

TEST_F(HotkeyCommand, NoVdToDelete)
{
    current().MaxVD = 2;
    machine.expect(vdFetch(0).data(envelope(NVME_VD_Info{}, 1)));
    machine.expect(vdFetch(1).status(0x707));
    EXPECT_EQ(command({"hotkey", "-k", "D"}).stream, "No virtual disk is found.\n");
    current().MaxVD = 0;
    EXPECT_EQ(command({"hotkey", "-k", "D"}), (Outcome{0, "No virtual disk is found.\n"}));
    EXPECT_EQ(outcomeOf([] { return hotkey_deleteVD(); }).result, 1);
}

TEST_F(HotkeyCommand, ErasesEachOfTheFirstFourDisks)
{
    const char* const kWords[] = {"s", "t", "u", "vwxyz"};
    for (QRX_U32 id = 0; id < 4; ++id) {
        machine.expect(erase(id));
        EXPECT_EQ(command({"hotkey", "--waiveconfirmation", "-k", kWords[id]}),
                  (Outcome{0, "", "Erase PD ID: " + std::to_string(id) + "\n"}));
    }
}

TEST_F(HotkeyCommand, AsksFirst)
{
    for (const char* answer : {"y\n", "Y\n", "yes\n", "y"}) {
        const Input input(answer);
        machine.expect(erase(0));
        EXPECT_EQ(command({"hotkey", "-k", "s"}), (Outcome{0, kRaidWarning + kQuestion, "Erase PD ID: 0\n"})) << answer;
    }
    const std::string refused = kRaidWarning + kQuestion + kCancel;
    for (const char* answer : {"n\n", "N\n", "no\n", "never mind"}) {
        const Input input(answer);
        EXPECT_EQ(command({"hotkey", "-k", "s"}), (Outcome{0, refused})) << answer;
    }
}

TEST_F(HotkeyCommand, OnAJbofControllerTheWarningIsAnother)
{
    runAsJbof();
    const Input input("n\n");
    EXPECT_EQ(command({"hotkey", "-k", "s"}), (Outcome{0, "The data of PD will be lost.\n" + kQuestion + kCancel}));
}

TEST_F(HotkeyCommand, AsksAgainUntilItIsAnswered)
{
    const Input input("maybe\n\n yes\nyes\nnext line\n");
    machine.expect(erase(2));
    EXPECT_EQ(command({"hotkey", "-k", "u"}),
              (Outcome{0, kRaidWarning + kQuestion + kAgain + kAgain + kAgain, "Erase PD ID: 2\n"}));
    EXPECT_EQ(Input::rest(), "next line\n");
}

TEST_F(HotkeyCommand, TheEndOfInputCancels)
{
    const Input input("what\n");
    EXPECT_EQ(command({"hotkey", "-k", "s"}), (Outcome{0, kRaidWarning + kQuestion + kAgain + kCancel}));
}

TEST_F(HotkeyCommand, TheWaiverCountsOnlyBeforeTheWord)
{
    const Input input("n\n");
    EXPECT_EQ(command({"hotkey", "-k", "s", "--waiveconfirmation"}), (Outcome{0, kRaidWarning + kQuestion + kCancel}));
}

TEST_F(HotkeyCommand, AFailedEraseShowsItsStatusTextAlone)
{
    dbg_enable = 1;
    machine.expect(erase(1).status(0x706));
    EXPECT_EQ(command({"hotkey", "--waiveconfirmation", "-k", "t"}),
              (Outcome{0,
                       "CDW[0] : 0x000000c3\nCDW[1] : 0x00000001\nCDW[10]: 0x00000200\nCDW[14]: 0x00000080\n"
                       "CDW[15]: 0x00000001\n",
                       "Erase PD ID: 1\nInvalid HD ID (Status Code: 0x706)\n"}));
}

// The record of a controller with these ports.
Bytes adapterWith(std::initializer_list<QRX_U8> types)
{
    NVME_Adapter_Info info{};
    for (NVME_PCIe_Info& port : info.PCIeInfo) {
        port.Type = kPcieEndOfList;
    }
    std::size_t at = 0;
    for (const QRX_U8 type : types) {
        info.PCIeInfo[at++].Type = type;
    }
    return envelope(info);
}

TEST_F(HotkeyCommand, ShowsTheLinksOfAllPorts)
{
    machine.expect(adapterFetch().data(adapterWith({1, 0, 1, 1, 7, 1, 0})));
    machine.expect(registerRead(0, 0xE3203148).data({0x11, 0, 0, 0x80}));
    machine.expect(registerRead(1, 0xE3403148).data({0x12}));
    machine.expect(registerRead(2, 0xE2203148).data({0x13}));
    machine.expect(registerRead(3, 0xE2403148).data({0x14}));
    machine.expect(registerRead(4, 0xE2603148).data({0x15}));
    machine.expect(registerRead(5, 0xE2803148).data({0x16}));
    EXPECT_EQ(command({"hotkey", "-k", "w"}),
              (Outcome{0,
                       "e3203148 : 0x80000011\ne3403148 : 0x12\ne2203148 : 0x13\ne2403148 : 0x14\n"
                       "e2603148 : 0x15\ne2803148 : 0x16\n"}));
}

TEST_F(HotkeyCommand, ShowsTheLinksOfThePortsThatThereAre)
{
    machine.expect(adapterFetch().data(adapterWith({0, 1, 255, 1, 0})));
    machine.expect(registerRead(0, 0xE3203148).data({1}));
    machine.expect(registerRead(2, 0xE2203148).data({2}));
    EXPECT_EQ(command({"hotkey", "-k", "w"}), (Outcome{0, "e3203148 : 0x1\ne2203148 : 0x2\n"}));
    machine.expect(adapterFetch().data(adapterWith({})));
    EXPECT_EQ(command({"hotkey", "-k", "w"}), (Outcome{0, ""}));
}

TEST_F(HotkeyCommand, SixteenPortsNeedNoEnd)
{
    machine.expect(adapterFetch().data(adapterWith({7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 1})));
    machine.expect(registerRead(2, 0xE2203148).data({3}));
    EXPECT_EQ(command({"hotkey", "-k", "w"}), (Outcome{0, "e2203148 : 0x3\n"}));
    machine.expect(adapterFetch().data(adapterWith({})));
    EXPECT_EQ(outcomeOf(hotkey_read_RC_EP), (Outcome{0, ""}));
}

TEST_F(HotkeyCommand, APortThatCannotBeReadDoesNotStopTheOthers)
{
    machine.expect(adapterFetch().data(adapterWith({0, 1})));
    machine.expect(registerRead(0, 0xE3203148).status(0x701));
    machine.expect(registerRead(2, 0xE2203148).data({2}));
    EXPECT_EQ(command({"hotkey", "-k", "w"}),
              (Outcome{0, "e2203148 : 0x2\n", "Failed (Status Code: 0x701)\nrc or ep fail\n"}));
}

TEST_F(HotkeyCommand, WithoutTheControllersRecordNoPortIsRead)
{
    machine.expect(adapterFetch().data(adapterWith({0, 1})).status(0x701));
    EXPECT_EQ(command({"hotkey", "-k", "w"}),
              (Outcome{0, "\nUnable to get info of Adapter\n", "Failed (Status Code: 0x701)\nrc or ep fail\n"}));
    Bytes refused = adapterWith({0, 1});
    refused[4] = 0x2A;
    machine.expect(adapterFetch().data(refused));
    EXPECT_EQ(command({"hotkey", "-k", "w"}),
              (Outcome{0, "\nUnable to get info of Adapter, cmd_status:0x2a\n", "rc or ep fail\n"}));
    gCurrentAdapter = 2;
    EXPECT_EQ(command({"hotkey", "-k", "w"}), (Outcome{0, "\nUnable to get info of Adapter\n", "rc or ep fail\n"}));
    EXPECT_EQ(outcomeOf(hotkey_read_RC_EP), (Outcome{1, "\nUnable to get info of Adapter\n", "rc or ep fail\n"}));
}

TEST_F(HotkeyCommand, BothWordsAreCarriedOutBeforeTheyAreTooMany)
{
    machine.expect(erase(0));
    machine.expect(erase(1));
    EXPECT_EQ(command({"hotkey", "--waiveconfirmation", "-k", "s", "-k", "t"}),
              (Outcome{1, "Duplicated option specified.\n", "Erase PD ID: 0\nErase PD ID: 1\n"}));
}

TEST_F(HotkeyCommand, AWordIsNeeded)
{
    const Outcome required{1, "hotkey: option -k is required\n"};
    EXPECT_EQ(command({"hotkey", "--waiveconfirmation"}), required);
    EXPECT_EQ(command({"hotkey", "--waiveconfirmation", "--waiveconfirmation"}), required);
    EXPECT_EQ(command({"hotkey", "--output", "x"}), required);
}

}  // namespace
