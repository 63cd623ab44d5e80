// `ns`: options, and what is read before them.
#include "tests/unit/cli/ns_fixture.h"

namespace {

using namespace qrx::test;

class NsOptions : public NsTest {};

TEST_F(NsOptions, Help)
{
    EXPECT_EQ(ns({"ns"}), (Outcome{1, expected::kNsPage}));
    for (auto words :
         {Line{"ns", "-h"}, Line{"ns", "--unused"}, Line{"ns", "--table"}, Line{"ns", "-a", "init", "--help"}}) {
        EXPECT_EQ(ns(words), (Outcome{0, expected::kNsPage}));
    }
}

TEST_F(NsOptions, BadValues)
{
    EXPECT_EQ(ns({"ns", "-a", "delete"}), (Outcome{0, "-a : invalid action 'delete'.\n"}));
    EXPECT_EQ(ns({"ns", "-d", "1,x"}), (Outcome{0, "-d : controller ids should be a number\n"}));
    EXPECT_EQ(ns({"ns", "-c", "x"}), (Outcome{0, "-c: controller id should be a number\n"}));
    EXPECT_EQ(ns({"ns", "-l", "1G"}), (Outcome{0, "-l: Invalid NS size\n"}));
    EXPECT_EQ(ns({"ns", "-p", "disk"}), (Outcome{0, "-p : invalid value 'disk'\n"}));
    EXPECT_EQ(ns({"ns", "-s", "maybe"}), (Outcome{0, "-s : invalid option 'maybe'.\n"}));
    EXPECT_EQ(ns({"ns", "-n", "x"}), (Outcome{0, "-n: number of namespace should be a number\n"}));
    EXPECT_EQ(ns({"ns", "-e", "0050432538"}), (Outcome{0, "-e : invalid EUI64 '0050432538'.\n"}));
    EXPECT_EQ(ns({"ns", "-e", "00504325385b76012"}), (Outcome{0, "-e : invalid EUI64 '00504325385b76012'.\n"}));
    EXPECT_EQ(ns({"ns", "-i", "x"}), (Outcome{0, "-i: id should be a number\n"}));
    EXPECT_EQ(ns({"ns", "-z"}), (Outcome{0, "", "", "ns: illegal option -- z\n"}));
}

TEST_F(NsOptions, OneBasedZeros)
{
    g_oneBaseMode = 1;
    EXPECT_EQ(ns({"ns", "-d", "1,0"}), (Outcome{0, "invalid controller id '0'\n"}));
    EXPECT_EQ(ns({"ns", "-c", "0"}), (Outcome{0, "invalid controller id '0'\n"}));
    EXPECT_EQ(ns({"ns", "-a", "init", "-i", "0"}), (Outcome{0, "invalid id '0'\n"}));
    EXPECT_EQ(ns({"ns", "-a", "create", "-i", "0"}), (Outcome{0, "invalid id '0'\n"}));
    EXPECT_EQ(ns({"ns", "-a", "share", "-i", "0"}), (Outcome{0, "ns: option -s is required\n"}));
}

TEST_F(NsOptions, DuplicatesReturnZero)
{
    for (auto words :
         {Line{"ns", "-a", "init", "-a", "init"}, Line{"ns", "-i", "1", "-i", "1"}, Line{"ns", "-n", "1", "-n", "1"},
          Line{"ns", "-s", "no", "-s", "no"}, Line{"ns", "-c", "1", "-c", "1"}, Line{"ns", "-l", "1", "-l", "1"},
          Line{"ns", "-d", "1", "-d", "1"}, Line{"ns", "-p", "ctrl", "-p", "ctrl"}, Line{"ns", "--list", "--list"},
          Line{"ns", "-e", kEui64Text, "-e", kEui64Text}}) {
        EXPECT_EQ(ns(words), (Outcome{0, "Duplicated option specified.\n"}));
    }
}

TEST_F(NsOptions, NoActionIsAnError)
{
    EXPECT_EQ(ns({"ns", "-i", "0"}), (Outcome{1, "Error action!\n"}));
    EXPECT_EQ(ns({"ns", "--waiveconfirmation", "--waiveconfirmation"}), (Outcome{1, "Error action!\n"}));
    EXPECT_EQ(ns({"ns", "--output", "x"}), (Outcome{1, "Error action!\n"}));
}

TEST_F(NsOptions, TheStartFillsTheTable)
{
    const qrx::NsTable table;
    NVME_NS_Info first{.NSID = 5, .ID = 0x1234, .Status = 3, .SectorSize = 0x1000, .LBA = 0x123456789A};
    machine.expect(list().data(envelope(records({first, {}, {.NSID = 9, .Status = 4}, {.NSID = 10, .Status = 1}}))));
    machine.expect(identifyNs(5, kEui64));
    machine.expect(identifyNs(9, {1, 2, 3, 4, 5, 6, 7, 8}));
    initNSInfoStrcuture();
    EXPECT_EQ(gTotalNSs, 2);
    EXPECT_EQ(pGNSInfo[0].NSID, 5);
    EXPECT_EQ(bytesOf(pGNSInfo[0].EUI64), bytesOf(kEui64));
    EXPECT_EQ(pGNSInfo[0].Parent_PDID, 0x1234);
    EXPECT_EQ(pGNSInfo[0].Status, 3);
    EXPECT_EQ(pGNSInfo[0].SectorSize, 0x1000U);
    EXPECT_EQ(pGNSInfo[0].LBA, 0x123456789AU);
    EXPECT_EQ(pGNSInfo[1].Status, 0);
    EXPECT_EQ(pGNSInfo[2].NSID, 9);
    EXPECT_EQ(pGNSInfo[3].NSID, 0);  // behind MaxNS

    machine.expect(list().data(envelope(Bytes{})));
    initNSInfoStrcuture();
    EXPECT_EQ(gTotalNSs, 2);
}

TEST_F(NsOptions, AListWithoutSignatureOrWithARefusalIsPassedOver)
{
    Bytes answer = envelope(records({{.NSID = 5, .Status = 1}}));
    answer[1] = '?';
    machine.expect(list().data(answer));
    machine.expect(identifyHost(0));
    EXPECT_EQ(command({"ns", "-i", "0"}), (Outcome{1, "Error action!\n"}));
    machine.expect(list().data(envelope(records({{.NSID = 5, .Status = 1}}), 1)));
    machine.expect(identifyHost(0));
    EXPECT_EQ(command({"ns", "-i", "0"}), (Outcome{1, "Error action!\n"}));
}

TEST_F(NsOptions, ThePageEndsTheListWhereMaxNsIsMore)
{
    current().MaxNS = 255;
    Bytes all;
    for (QRX_U8 nsid = 1; nsid <= 42; ++nsid) {
        const Bytes one = records({{.NSID = nsid, .Status = 1}});
        all.insert(all.end(), one.begin(), one.end());
    }
    machine.expect(list().data(padded(envelope(all), 4096, 0xFF)));
    for (QRX_U8 nsid = 1; nsid <= 42; ++nsid) {
        machine.expect(identifyNs(nsid, kEui64));
    }
    machine.expect(identifyHost(0));
    EXPECT_EQ(command({"ns", "-i", "0"}), (Outcome{1, "Error action!\n"}));
    EXPECT_EQ(gTotalNSs, 42);
}

TEST_F(NsOptions, FailedIdentifiesAreTold)
{
    machine.expect(list().data(envelope(records({{.NSID = 5, .Status = 1}}))));
    machine.expect(identify(5, 0).status(0xB));
    machine.expect(identify(0, 1).status(2));
    gHostID = 7;
    EXPECT_EQ(
        command({"ns", "-i", "0"}),
        (Outcome{1, "\nFailed to get primary controller.\nError action!\n",
                 "Invalid Namespace or Format (Status Code: 0xb)\nInvalid Field in Command (Status Code: 0x2)\n"}));
    EXPECT_EQ(gHostID, 7);
}

TEST_F(NsOptions, WithoutMaxNsNothingIsRead)
{
    current().MaxNS = 0;
    EXPECT_EQ(command({"ns"}), (Outcome{1, expected::kNsPage}));
    EXPECT_EQ(command({"ns", "--list"}), (Outcome{0, "Get MaxNS from adapter info fail.\n"}));
    EXPECT_EQ(command({"ns", "-a", "attach", "-e", kEui64Text, "-d", "0"}),
              (Outcome{0, std::string("Get MaxNS from adapter info fail.\ninvalid EUI64 id: ") + kEui64Text + "\n"}));
}

TEST_F(NsOptions, DebugLinesOfTheStart)
{
    dbg_enable = 1;
    EXPECT_EQ(ns({"ns", "-i", "0"}), (Outcome{1, "CDW[0] : 0x000000e2\nCDW[12]: 0x000000e5\nError action!\n"}));
}

}  // namespace
