// `test`: the info queries in a loop.
#include "cli/Functions/simple/simple_test.h"

#include "tests/unit/cli/info_fixture.h"
#include "tests/unit/cli/run_unlisted.h"

namespace {

using namespace qrx::test;

const std::string kPage =
    std::string("Description:Query all adapters and their physical disks repeatedly.") + simple_test_help;

// What the printers of `info` make of a record.
std::string shown(QRX_U8 adapter, const NVME_Adapter_Info& info)
{
    return outcomeOf([&] {
               Adapter_PrintInfo(adapter, info, false);
               return 0;
           })
        .stream;
}

std::string shown(const NVME_PD_Info& pd, bool isJbof)
{
    return outcomeOf([&] {
               HD_PrintInfo(pd, isJbof);
               return 0;
           })
        .stream;
}

class TestCommand : public InfoTest {
protected:
    TestCommand()
    {
        adapter.Features = kFeatureRaid;
        adapter.VID = 0x7A51;
        adapter.PortCount = 3;
        disk.ID = 1;
        disk.SectorSize = 512;
        disk.SSDAdapterID = 5;
        setText(disk.Model, "Model");
        setText(disk.SerialNo, "Serial");
        records[1].Features = 0;
    }

    // The commands that a controller's page brings, once it has been read.
    void hostReads(unsigned slot)
    {
        machine.expect(settingsFetch());
        machine.expect(identify().on(slot));
    }
    // What the page of a controller is, from commands of its own.
    std::string pageOf(QRX_U8 index)
    {
        hostReads(index);
        return shown(index, adapter);
    }
    void goodAdapter(unsigned slot)
    {
        machine.expect(adapterFetch().on(slot).data(envelope(adapter)));
        hostReads(slot);
    }

    NVME_Adapter_Info adapter{};
    NVME_PD_Info disk{};
};

TEST_F(TestCommand, Help)
{
    EXPECT_EQ(unlisted({"test"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"test", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(kPage.substr(67, 11), "\ntest [-h]\n");
    EXPECT_EQ(unlisted({"test", "-z"}), (Outcome{0, "", "", "test: illegal option -- z\n"}));
}

TEST_F(TestCommand, WithoutACountItAsksForOne)
{
    EXPECT_EQ(unlisted({"test", "--output", "x"}), (Outcome{0, "please input what times you need\n"}));
    EXPECT_EQ(unlisted({"test", "-o", "NS"}), (Outcome{0, "please input what times you need\n"}));
}

TEST_F(TestCommand, ABadValueEndsTheCommand)
{
    EXPECT_EQ(unlisted({"test", "-t", "x"}), (Outcome{0, "-t : times should be a number\n"}));
    EXPECT_EQ(unlisted({"test", "-t", "-1", "-h"}), (Outcome{0, "-t : times should be a number\n"}));
    EXPECT_EQ(unlisted({"test", "-t", "1", "-o", "disk"}), (Outcome{0, "-o : invalid object 'disk'\n"}));
    EXPECT_EQ(unlisted({"test", "-t", "1", "--times=1"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(unlisted({"test", "-t", "1", "-o", "pd", "-o", "pd"}), (Outcome{1, "Duplicated option specified.\n"}));
}

TEST_F(TestCommand, ACountBelowOneDoesNothing)
{
    EXPECT_EQ(unlisted({"test", "-t", "0"}), (Outcome{0, ""}));
    for (const char* object : {"hba", "pd", "hd", "vd", "ld", "ns", "HBA"}) {
        EXPECT_EQ(unlisted({"test", "-t", "", "-o", object}), (Outcome{0, ""}));
    }
}

TEST_F(TestCommand, ShowsAllControllersAndThenTheirDisksEachTime)
{
    const std::string pages = pageOf(0) + pageOf(1);
    std::string expected;
    for (int i = 0; i < 2; ++i) {
        goodAdapter(0);
        goodAdapter(1);
        machine.expect(pdFetch(0).on(0).data(envelope(disk)));
        machine.expect(pdFetch(1).on(0).data(envelope(disk)));
        machine.expect(pdFetch(0).on(1).data(envelope(disk)));
        machine.expect(pdFetch(1).on(1).data(envelope(disk, 6)));
        expected += "[Time#" + std::to_string(i) + "]\n=====Get all adapters====start\n" + pages +
                    "=====Get all pds=====start\n" + shown(disk, false) + shown(disk, false) + shown(disk, true) +
                    "Error code:0x6\n";
    }
    EXPECT_EQ(unlisted({"test", "--times=2", "--object", "ns"}), (Outcome{0, expected}));
}

TEST_F(TestCommand, WhatFailsIsToldAndTheRestGoesOn)
{
    const std::string last = pageOf(1);
    machine.expect(adapterFetch().on(0).status(0x705));
    goodAdapter(1);
    machine.expect(pdFetch(0).on(0).status(0x706));
    machine.expect(pdFetch(1).on(0).data(Bytes{'Q', 'R', 'Z'}));
    machine.expect(pdFetch(0).on(1).data(envelope(disk, 9)));
    machine.expect(pdFetch(1).on(1).data(envelope(disk)));
    EXPECT_EQ(unlisted({"test", "-t", "1"}),
              (Outcome{0,
                       "[Time#0]\n=====Get all adapters====start\n\nUnable to get info of NVMe Controller 0\n" + last +
                           "=====Get all pds=====start\nError code:0x706\nError code:0x1\nNo physical disk is found.\n"
                           "Error code:0x9\n" +
                           shown(disk, true),
                       "Not supported (Status Code: 0x705)\nInvalid HD ID (Status Code: 0x706)\n"}));
}

TEST_F(TestCommand, DebugLines)
{
    dbg_enable = 1;
    const std::string empty = "cmd_status: 0x0\nreceive sign get 0x0 0x0 0x0 expect 0x51 0x52 0x58\n";
    const std::string disks = "CDW[0] : 0x000000e2\nCDW[12]: 0x000000e1\nCDW[14]: 0x00000000\n" + empty +
                              "Error code:0x706\n"
                              "CDW[0] : 0x000000e2\nCDW[12]: 0x000000e1\nCDW[14]: 0x00000001\n" +
                              empty + "Error code:0x706\nNo physical disk is found.\n";
    Outcome expected{0, "[Time#0]\n=====Get all adapters====start\n"};
    for (const unsigned slot : {0U, 1U}) {
        machine.expect(adapterFetch().on(slot).status(0x705));
        expected.stream += "CDW[0] : 0x000000e2\nCDW[12]: 0x000000e0\nCDW[14]: 0x00000000\n" + empty +
                           "\nUnable to get info of NVMe Controller " + std::to_string(slot) + "\n";
        expected.out += "Not supported (Status Code: 0x705)\n";
    }
    expected.stream += "=====Get all pds=====start\n" + disks + disks;
    for (const unsigned slot : {0U, 1U}) {
        for (const QRX_U16 id : {QRX_U16{0}, QRX_U16{1}}) {
            machine.expect(pdFetch(id).on(slot).status(0x706));
            expected.out += "Invalid HD ID (Status Code: 0x706)\n";
        }
    }
    EXPECT_EQ(unlisted({"test", "-t", "1"}), expected);
}

TEST_F(TestCommand, AVerdictOnTheControllerIsTold)
{
    const std::string last = pageOf(1);
    machine.expect(adapterFetch().on(0).data(envelope(adapter, 0x2C)));
    goodAdapter(1);
    for (unsigned slot : {0U, 1U}) {
        machine.expect(pdFetch(0).on(slot).data(envelope(disk, 6)));
        machine.expect(pdFetch(1).on(slot).data(envelope(disk, 6)));
    }
    const std::string none = "Error code:0x6\nError code:0x6\nNo physical disk is found.\n";
    EXPECT_EQ(unlisted({"test", "-t", "1"}), (Outcome{0,
                                                      "[Time#0]\n=====Get all adapters====start\n"
                                                      "\nUnable to get info of Adapter, cmd_status:0x2c\n" +
                                                          last + "=====Get all pds=====start\n" + none + none}));
}

}  // namespace
