// The earlier `info`. What the printers of the records print is tested with the command of today.
#include "cli/Functions/storage/info.h"

#include "api/src/interface/wire/bga.h"
#include "api/src/interface/wire/ns.h"
#include "api/src/interface/wire/pd.h"
#include "api/src/interface/wire/vd.h"
#include "cli/Functions/simple/simple_info.h"
#include "tests/unit/cli/system_disk.h"
#include "tests/unit/cli/typed_fixture.h"

namespace {

using namespace qrx::test;

// What a printer prints.
template <class Print>
std::string printed(Print print)
{
    return outcomeOf([&] {
               print();
               return 0;
           })
        .stream;
}

class EarlierInfo : public TypedTest {
protected:
    EarlierInfo()
    {
        current().MaxVD = 3;
        current().MaxPD = 2;
        current().PortCount = 2;
        current().MaxNS = 4;
        current().MaxNSPerVD = 2;
        records[0].VID = 0x1111;
        records[0].MaxNS = 0x21;
        records[1].VID = 0x2222;
    }

    static NVME_PD_Info pd(QRX_U16 id) { return {.ID = id, .Model = {'M'}, .SectorSize = 512, .LBA = 0x600000}; }
    static NVME_VD_Info vd(QRX_U16 id) { return {.ID = id, .RaidMode = kRaid1, .SectorSize = 512, .Name = {'N'}}; }
    static NVME_NS_Info ns(QRX_U8 nsid, QRX_U8 status = kNsValid)
    {
        return {.NSID = nsid, .device_type = kNsParentVd, .ID = 5, .Status = status, .SectorSize = 512};
    }
    static std::string pdPage(QRX_U16 id, bool isJBOF = false)
    {
        return printed([&] { HD_PrintInfo(pd(id), isJBOF); });
    }
    static std::string vdPage(QRX_U16 id)
    {
        return printed([&] { LD_PrintInfo(vd(id)); });
    }
    static std::string nsPage(QRX_U8 nsid, QRX_U8 status = kNsValid)
    {
        return printed([&] { NS_PrintInfo(ns(nsid, status), false); });
    }
    static Bytes list(std::initializer_list<NVME_NS_Info> all)
    {
        Bytes bytes;
        for (const NVME_NS_Info& each : all) {
            bytes = joined(bytes, bytesOf(each));
        }
        return bytes;
    }

    // What the page of a controller asks for besides its record.
    void expectAdapterPage(unsigned slot)
    {
        machine.expect(page(0x0FE0, 0x1401).word(10, 1023));
        machine.expect(Command::admin(6, 0, {1}).receives(4096).on(slot).data(Bytes(4096)));
    }
    std::string adapterPage(unsigned slot, bool all = false)
    {
        expectAdapterPage(slot);
        return printed([&] { Adapter_PrintInfo(static_cast<QRX_U8>(slot), records[slot], all); });
    }
    void expectPd(QRX_U16 id, const NVME_BGA_STATUS& activity = {})
    {
        pair.expect({225, 0}, header(id), listed(pd(id)));
        pair.expect({227, 1}, header(id), listed(activity));
    }
    Command listOfHost() { return page(0x00E5, 0x1001); }
    // The record, and what the test for a system disk reads.
    void expectVd(QRX_U16 id, QRX_U16 parent = 0)
    {
        pair.expect({226, 0}, header(id), listed(vd(id)));
        NVME_NS_Info system = ns(0x37);
        system.ID = parent;
        machine.expect(listOfHost().data(envelope(system)));
        machine.expect(page(0x00E0, 0x5001).data(envelope(current())));
    }
    void expectActivity(QRX_U16 id, const NVME_BGA_STATUS& activity = {})
    {
        pair.expect({227, 2}, header(id), listed(activity));
    }
};

TEST_F(EarlierInfo, Help)
{
    const std::string page = helpPage(info_sh, info_help);
    EXPECT_EQ(unlisted({"info", "-h"}), (Outcome{0, page}));
    EXPECT_EQ(unlisted({"info", "-o", "vd", "--help"}), (Outcome{0, page}));
}

TEST_F(EarlierInfo, TheBareWordIsIncomplete)
{
    EXPECT_EQ(unlisted({"info"}), (Outcome{1, "info: option -o is required\n"}));
}

TEST_F(EarlierInfo, EveryControllerAsItWasReadAtStart)
{
    const std::string first = adapterPage(0);
    const std::string second = adapterPage(1);
    EXPECT_NE(first, second);
    expectAdapterPage(0);
    expectAdapterPage(1);
    EXPECT_EQ(unlisted({"info", "-o", "hba"}),
              (Outcome{0, first + "\n" + second + "\nTotal # of NVMe Controller: 2\n\n"}));
    expectAdapterPage(0);
    expectAdapterPage(1);
    EXPECT_EQ(unlisted({"info", "-o", "hba", "-i", "255"}).stream,
              first + "\n" + second + "\nTotal # of NVMe Controller: 2\n\n");
}

TEST_F(EarlierInfo, AControllerByItsIndex)
{
    for (const unsigned slot : {0U, 1U}) {
        const std::string page = adapterPage(slot);
        expectAdapterPage(slot);
        EXPECT_EQ(unlisted({"info", "-o", "HBA", "-i", std::to_string(slot)}), (Outcome{0, page}));
    }
    const std::string page = adapterPage(1);
    gSpecificAdapterFlag = 1;
    expectAdapterPage(1);
    EXPECT_EQ(unlisted({"info", "-o", "hba"}), (Outcome{0, page})) << "the one named at start";
    const std::string first = adapterPage(0);
    expectAdapterPage(0);
    EXPECT_EQ(unlisted({"info", "-o", "hba", "-i", "0"}), (Outcome{0, first}));
    g_oneBaseMode = 1;
    const std::string oneBased = adapterPage(0);
    expectAdapterPage(0);
    EXPECT_EQ(unlisted({"info", "-o", "hba", "-i", "1"}), (Outcome{0, oneBased}));
}

TEST_F(EarlierInfo, AControllerThatIsNotThere)
{
    const Outcome unable{0, "\nUnable to get info of NVMe Controller\n"};
    EXPECT_EQ(unlisted({"info", "-o", "hba", "-i", "2"}), unable);
    EXPECT_EQ(unlisted({"info", "-o", "hba", "-i", "256"}), unable);
    gSpecificAdapterFlag = 1;
    EXPECT_EQ(unlisted({"info", "-o", "hba", "-i", "255"}), unable);
    g_oneBaseMode = 1;
    EXPECT_EQ(unlisted({"info", "-o", "hba", "-i", "0"}),
              (Outcome{0, "-i : id should be a number\n\nUnable to get info of NVMe Controller\n"}));
}

TEST_F(EarlierInfo, AllOfAnyValueAddsTheSubnqn)
{
    for (auto words :
         {Line{"info", "-o", "hba", "-i", "1", "-a", "x"}, Line{"info", "-o", "hba", "-i", "1", "--all=0"}}) {
        machine.expect(page(0x0FE0, 0x1401).word(10, 1023));
        for (QRX_U32 id = 0; id < 2; ++id) {  // a controller without a name is asked for its disks
            machine.expect(page(0x00E1, 0x5001).word(14, id));
        }
        machine.expect(Command::admin(6, 0, {1}).receives(4096).on(1).data(Bytes(4096)));
        const Outcome outcome = unlisted(words);
        EXPECT_NE(
            outcome.stream.find("SUBNQN:                              Not found, make sure SSD is already installed\n"),
            std::string::npos)
            << outcome.stream;
    }
}

TEST_F(EarlierInfo, OnePd)
{
    for (const char* word : {"pd", "hd"}) {
        expectPd(0x0102);
        EXPECT_EQ(unlisted({"info", "-o", word, "-i", "258"}), (Outcome{0, pdPage(0x0102)}));
    }
    pair.expect({225, 0}, header(1), {}, 6);
    EXPECT_EQ(unlisted({"info", "-o", "pd", "-i", "1"}), (Outcome{0, "\nUnable to get info of PD\n"}));
}

TEST_F(EarlierInfo, ThePatrolOfAPd)
{
    expectPd(1, {.BgaType = 3, .ID = 9, .Percentage = 42, .BgaStatus = 1});
    EXPECT_EQ(unlisted({"info", "-o", "pd", "-i", "1"}),
              (Outcome{0, pdPage(1) + "BGA progress:           Media Patrol is running in 42%\n"}));
    expectPd(1, {.BgaType = 6, .ID = 9, .Percentage = 43, .BgaStatus = 2});
    EXPECT_EQ(unlisted({"info", "-o", "pd", "-i", "1"}),
              (Outcome{0, pdPage(1) + "BGA progress            Media Patrol is pause in 43%\n"}));
    expectPd(1, {.BgaType = 6, .Percentage = 44, .BgaStatus = 3});
    EXPECT_EQ(unlisted({"info", "-o", "pd", "-i", "1"}), (Outcome{0, pdPage(1)}));
}

TEST_F(EarlierInfo, APdWhoseActivityCannotBeReadIsShownAllTheSame)
{
    pair.expect({225, 0}, header(1), listed(pd(1)));
    pair.expect({227, 1}, header(1), {}, 6);
    EXPECT_EQ(unlisted({"info", "-o", "pd", "-i", "1"}), (Outcome{0, pdPage(1)}));
}

TEST_F(EarlierInfo, EveryPd)
{
    runAsJbof();
    pair.expect({225, 0}, header(0), {}, 6);
    expectPd(1);
    pair.expect({225, 0}, header(2), {}, 6);
    expectPd(3);
    EXPECT_EQ(unlisted({"info", "-o", "pd"}),
              (Outcome{0, "\n" + pdPage(1, true) + "\n" + pdPage(3, true) + "\nTotal # of PD:          2\n\n"}));
    current().PortCount = 1;
    current().MaxPD = 1;
    pair.expect({225, 0}, header(0), {}, 6);
    EXPECT_EQ(unlisted({"info", "-o", "pd", "-i", "255"}), (Outcome{0, "\nNo physical disk is found.\n"}));
}

TEST_F(EarlierInfo, OneVd)
{
    for (const char* word : {"vd", "ld"}) {
        expectVd(0x0102);
        expectActivity(0x0102);
        EXPECT_EQ(unlisted({"info", "-o", word, "-i", "258"}), (Outcome{0, vdPage(0x0102)}));
    }
    expectVd(1);
    expectActivity(1, {.BgaType = 3, .ID = 9, .Percentage = 42, .BgaStatus = 1});
    EXPECT_EQ(unlisted({"info", "-o", "vd", "-i", "1"}),
              (Outcome{0, vdPage(1) + "BGA progress:        Rebuilding is running in 42%\n"}));
    pair.expect({226, 0}, header(1), {}, 7);
    EXPECT_EQ(unlisted({"info", "-o", "vd", "-i", "1"}), (Outcome{0, "\nUnable to get info of VD\n"}));
}

TEST_F(EarlierInfo, TheVdOfTheSystem)
{
    const SystemDisk disk(machine);
    expectVd(1, 1);
    expectActivity(1, {.BgaType = 7, .Percentage = 5, .BgaStatus = 2});
    EXPECT_EQ(unlisted({"info", "-o", "vd", "-i", "1"}),
              (Outcome{0, vdPage(1) + "OS Disk:             Is\nBGA progress:        Media Patrol is pause in 5%\n"}));
    expectVd(1, 2);
    expectActivity(1);
    EXPECT_EQ(unlisted({"info", "-o", "vd", "-i", "1"}), (Outcome{0, vdPage(1)}));
}

TEST_F(EarlierInfo, WhetherItIsTheSystemsMayStayUnknown)
{
    const SystemDisk disk(machine);
    pair.expect({226, 0}, header(1), listed(vd(1)));
    machine.expect(listOfHost().status(0x705));
    expectActivity(1);
    EXPECT_EQ(unlisted({"info", "-o", "vd", "-i", "1"}),
              (Outcome{0, vdPage(1), "Not supported (Status Code: 0x705)\n"}));
}

TEST_F(EarlierInfo, EveryVdThatThereCanBeIsAskedFor)
{
    current().PortCount = 1;  // which has no say
    pair.expect({226, 0}, header(0), {}, 7);
    expectVd(1);
    expectActivity(1);
    expectVd(2);
    pair.expect({227, 2}, header(2), {}, 7);  // shown, and not counted
    EXPECT_EQ(unlisted({"info", "-o", "vd"}),
              (Outcome{0, "\n" + vdPage(1) + "\n" + vdPage(2) + "Total # of VD:       1\n\n"}));
    current().MaxVD = 0;
    EXPECT_EQ(unlisted({"info", "-o", "vd"}), (Outcome{0, "\nNo virtual disk is found.\n"}));
}

TEST_F(EarlierInfo, NamespacesOfTheHost)
{
    machine.expect(listOfHost().data(envelope(list({ns(5), ns(6, 0), ns(7, kNsActive)}))));
    EXPECT_EQ(unlisted({"info", "-o", "ns"}),
              (Outcome{0, nsPage(5) + nsPage(7, kNsActive) + "Total # of NS:       2\n\n"}));
    machine.expect(listOfHost().data(envelope(list({ns(5), ns(7, kNsActive)}))));
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-t", "Host", "-i", "7", "-v", "1"}), (Outcome{0, nsPage(7, kNsActive)}));
    machine.expect(listOfHost().data(envelope(list({ns(5), ns(6, 0)}))));
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-i", "6"}), (Outcome{0, "\nUnable to get info of NS\n"}));
    machine.expect(listOfHost().data(envelope(Bytes{})));
    EXPECT_EQ(unlisted({"info", "-o", "ns"}), (Outcome{0, "No Namespace Info Exist.\n"}));
}

TEST_F(EarlierInfo, NoMoreNamespacesThanTheControllerHas)
{
    current().MaxNS = 1;
    machine.expect(listOfHost().data(envelope(list({ns(5), ns(6)}))));
    EXPECT_EQ(unlisted({"info", "-o", "ns"}), (Outcome{0, nsPage(5) + "Total # of NS:       1\n\n"}));
    current().MaxNS = 255;  // more than a page holds
    Bytes full;
    for (int i = 0; i < 42; ++i) {
        full = joined(full, bytesOf(ns(8)));
    }
    machine.expect(listOfHost().data(envelope(full)));
    EXPECT_EQ(unlisted({"info", "-o", "ns"}).stream.substr(42 * nsPage(8).size()), "Total # of NS:       42\n\n");
}

TEST_F(EarlierInfo, NamespacesThatCannotBeRead)
{
    machine.expect(listOfHost().status(0x705));
    EXPECT_EQ(unlisted({"info", "-o", "ns"}),
              (Outcome{0, "\nUnable to get info of NS\n", "Not supported (Status Code: 0x705)\n"}));
    current().MaxNS = 0;
    EXPECT_EQ(unlisted({"info", "-o", "ns"}), (Outcome{0, "Get MaxNS from NVMe Controller info fail.\n"}));
}

TEST_F(EarlierInfo, NamespaceIdsAreShiftedTooInOneBasedMode)
{
    g_oneBaseMode = 1;
    machine.expect(listOfHost().data(envelope(list({ns(5), ns(6)}))));
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-i", "6"}), (Outcome{0, nsPage(5)}));
    machine.expect(listOfHost().data(envelope(list({ns(5)}))));
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-i", "0"}),
              (Outcome{0, "-i : id should be a number\n\nUnable to get info of NS\n"}));
}

TEST_F(EarlierInfo, NamespacesOfAVd)
{
    for (const char* word : {"vd", "LD"}) {
        pair.expect({229, 1, 0x0102}, {}, list({ns(5), ns(6, kNsActive)}));
        EXPECT_EQ(unlisted({"info", "-o", "ns", "-t", word, "-v", "258"}),
                  (Outcome{0, nsPage(5) + "Total # of NS:       1\n\n"}));
    }
    pair.expect({229, 1, 0}, {}, list({ns(5), ns(6)}));
    EXPECT_EQ(unlisted({"info", "-o", "ns", "--type=vd", "--vdid=0", "-i", "6"}), (Outcome{0, nsPage(6)}));
    pair.expect({229, 1, 0}, {}, list({ns(5), ns(6, kNsActive)}));
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-t", "vd", "-v", "0", "-i", "6"}),
              (Outcome{0, "\nUnable to get info of NS\n"}));
    pair.expect({229, 1, 0}, {}, {}, 7);
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-t", "vd", "-v", "0"}), (Outcome{0, "\nUnable to get info of VD\n"}));
    g_oneBaseMode = 1;  // the VD's id is not shifted
    pair.expect({229, 1, 2}, {}, list({ns(5, 0), ns(6, 0)}));
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-t", "vd", "-v", "2"}), (Outcome{0, "No Namespace Info Exist.\n"}));
}

TEST_F(EarlierInfo, OnlyAsManyNamespacesAsAVdCanHave)
{
    current().MaxNSPerVD = 1;
    pair.expect({229, 1, 0}, {}, list({ns(5), ns(6)}));
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-t", "vd", "-v", "0"}),
              (Outcome{0, nsPage(5) + "Total # of NS:       1\n\n"}));
    current().MaxNSPerVD = 255;  // more than a page holds
    Bytes full;
    for (int i = 0; i < 42; ++i) {
        full = joined(full, bytesOf(ns(8)));
    }
    pair.expect({229, 1, 0}, {}, full);
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-t", "vd", "-v", "0"}).stream.substr(42 * nsPage(8).size()),
              "Total # of NS:       42\n\n");
}

TEST_F(EarlierInfo, NamespacesOfAllVds)
{
    pair.expect({229, 1, 0}, {}, list({ns(5), ns(6)}));
    pair.expect({229, 1, 1}, {}, {}, 7);
    pair.expect({229, 1, 2}, {}, list({ns(7), ns(8, 0)}));
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-t", "vd", "-v", "255"}),
              (Outcome{0, nsPage(5) + nsPage(6) + nsPage(7) + "Total # of NS:       3\n\n"}));
    current().MaxVD = 0;
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-t", "vd", "-v", "255"}), (Outcome{0, "No Namespace Info Exist.\n"}));
}

TEST_F(EarlierInfo, WhatNamespacesOfAVdNeed)
{
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-t", "vd"}), (Outcome{1, "info: option -v is required\n"}));
    current().MaxNSPerVD = 0;
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-t", "vd", "-v", "0"}),
              (Outcome{0, "Get MaxNSPerVD from NVMe Controller info fail.\n"}));
}

TEST_F(EarlierInfo, BadOptions)
{
    EXPECT_EQ(unlisted({"info", "-o", "disk"}), (Outcome{1, "-o : invalid object 'disk'\n"}));
    EXPECT_EQ(unlisted({"info", "-o", "pd", "-i", "1x"}), (Outcome{1, "-i : id should be a number\n"}));
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-t", "pd"}), (Outcome{1, "-t : invalid type 'pd'\n"}));
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-v", "-1"}), (Outcome{1, "-v : VD id should be a number\n"}));
    // Arguments that may be left out, and are.
    EXPECT_EQ(unlisted({"info", "-o", "ns", "--type", "vd"}), (Outcome{1, "-t : invalid type ''\n"}));
    EXPECT_EQ(unlisted({"info", "-o", "ns", "-t", "vd", "--vdid", "1"}),
              (Outcome{1, "-v : VD id should be a number\n"}));
    EXPECT_EQ(unlisted({"info", "-o", "hba", "-u", "x"}), (Outcome{1, "", "", "info: illegal option -- u\n"}));
    EXPECT_EQ(unlisted({"info", "-o", "hba", "--all"}),
              (Outcome{1, "", "", "info: option `--all' requires an argument\n"}));
    EXPECT_EQ(unlisted({"info", "-i", "x"}), (Outcome{1, "-i : id should be a number\ninfo: option -o is required\n"}));
}

TEST_F(EarlierInfo, Duplicates)
{
    for (auto words : {Line{"info", "-o", "pd", "-o", "pd"}, Line{"info", "-o", "pd", "-i", "1", "-i", "1"},
                       Line{"info", "-o", "ns", "-t", "vd", "-t", "vd"}, Line{"info", "-o", "ns", "-v", "1", "-v", "1"},
                       Line{"info", "-o", "hba", "-a", "1", "--all=1"}}) {
        EXPECT_EQ(unlisted(words), (Outcome{1, "Duplicated option specified.\n"}));
    }
}

}  // namespace
