// The earlier `ns`.
#include "cli/Functions/storage/ns.h"

#include "api/src/interface/wire/ns.h"
#include "api/src/interface/wire/pd.h"
#include "api/src/interface/wire/vd.h"
#include "tests/unit/cli/typed_fixture.h"

namespace {

using namespace qrx::test;

class EarlierNs : public TypedTest {
protected:
    EarlierNs()
    {
        current().MaxVD = 3;
        current().MaxPD = 2;
        current().PortCount = 1;
        current().MaxNS = 4;
    }
    // The count of the VDs, of which the second is there.
    void expectVds()
    {
        pair.expect({226, 0}, header(0), {}, 7);
        pair.expect({226, 0}, header(1), listed(NVME_VD_Info{}));
        pair.expect({226, 0}, header(2), {}, 7);
    }
    void expectNoVds()
    {
        for (const QRX_U16 id : std::vector<QRX_U16>{0, 1, 2}) {
            pair.expect({226, 0}, header(id), {}, 7);
        }
    }
    static Command attachment(QRX_U32 nsid, QRX_U32 select, std::initializer_list<QRX_U16> ids)
    {
        Bytes list{static_cast<QRX_U8>(ids.size()), 0};
        for (const QRX_U16 id : ids) {
            list.push_back(static_cast<QRX_U8>(id & 0xFF));
            list.push_back(static_cast<QRX_U8>(id >> 8));
        }
        return Command::admin(21, nsid, {select}).sends(padded(list, 4096)).on(1);
    }
    static Command primary(QRX_U16 cntlid)
    {
        Bytes data = pattern(4096);
        data[0] = static_cast<QRX_U8>(cntlid & 0xFF);
        data[1] = static_cast<QRX_U8>(cntlid >> 8);
        return Command::admin(6, 0, {20}).receives(4096).carries(Bytes(4096)).on(1).data(data);
    }
};

TEST_F(EarlierNs, Help)
{
    const std::string page = helpPage(ns_sh, ns_help);
    EXPECT_EQ(unlisted({"ns"}), (Outcome{1, page}));
    EXPECT_EQ(unlisted({"ns", "-h"}), (Outcome{0, page}));
    EXPECT_EQ(unlisted({"ns", "-a", "attach", "--help"}), (Outcome{0, page}));
    EXPECT_EQ(unlisted({"ns", "-s", "x"}), (Outcome{0, page}));
}

TEST_F(EarlierNs, Attach)
{
    expectVds();
    machine.expect(attachment(5, 0, {0x0102, 7, 7}));
    EXPECT_EQ(unlisted({"ns", "-a", "attach", "-i", "5", "-d", "258,7,,7"}),
              (Outcome{0, "Attach namespace success\n"}));
}

TEST_F(EarlierNs, Detach)
{
    expectVds();
    machine.expect(attachment(0x12345, 1, {0}));
    EXPECT_EQ(unlisted({"ns", "--action=DETACH", "--nsid=74565", "--control id", "0"}),
              (Outcome{0, "Detach namespace success\n"}));
}

TEST_F(EarlierNs, AControllerIdOfMoreThanSixteenBitsIsNotCut)
{
    EXPECT_EQ(unlisted({"ns", "-a", "attach", "-i", "5", "-d", "0,65536"}),
              (Outcome{0, "invalid controller id '65536'\n"}));
}

TEST_F(EarlierNs, IdsAreNotShiftedInOneBasedMode)
{
    g_oneBaseMode = 1;
    expectVds();
    machine.expect(attachment(1, 0, {0, 1}));
    EXPECT_EQ(unlisted({"ns", "-a", "attach", "-i", "1", "-d", "0,1"}), (Outcome{0, "Attach namespace success\n"}));
}

TEST_F(EarlierNs, OfAFailureOnlyTheStatusTells)
{
    expectVds();
    machine.expect(attachment(5, 1, {0}).status(0x11A));
    EXPECT_EQ(unlisted({"ns", "-a", "detach", "-i", "5", "-d", "0"}),
              (Outcome{0x11A, "", "Namespace Not Attached (Status Code: 0x11a)\n"}));
}

TEST_F(EarlierNs, ThePrimaryController)
{
    for (const char* word : {"ctrl", "CTRL"}) {
        expectVds();
        machine.expect(primary(0x0305));
        EXPECT_EQ(unlisted({"ns", "-l", word}), (Outcome{0, "Primary Controller Id is 773\n"}));
    }
    expectVds();
    machine.expect(primary(9).status(0x4002));
    EXPECT_EQ(unlisted({"ns", "--list=ctrl"}).stream, "\nFailed to get primary controller.\n");
}

TEST_F(EarlierNs, AnActionGoesBeforeTheList)
{
    expectVds();
    machine.expect(attachment(5, 0, {0}));
    EXPECT_EQ(unlisted({"ns", "-l", "ctrl", "-a", "attach", "-i", "5", "-d", "0"}),
              (Outcome{0, "Attach namespace success\n"}));
}

TEST_F(EarlierNs, WithoutRaidPdsAreCounted)
{
    runAsJbof();
    pair.expect({225, 0}, header(0), {}, 6);
    pair.expect({225, 0}, header(1), listed(NVME_PD_Info{}));
    machine.expect(attachment(5, 1, {0}));
    EXPECT_EQ(unlisted({"ns", "-a", "detach", "-i", "5", "-d", "0"}), (Outcome{0, "Detach namespace success\n"}));
    pair.expect({225, 0}, header(0), {}, 6);
    pair.expect({225, 0}, header(1), {}, 6);
    EXPECT_EQ(unlisted({"ns", "-l", "ctrl"}), (Outcome{0, "No physical disk is found.\n"}));
}

TEST_F(EarlierNs, WhatTheControllerNeedsForIt)
{
    expectNoVds();
    EXPECT_EQ(unlisted({"ns", "-a", "attach"}), (Outcome{0, "No virtual disk is found.\n"}));
    current().MaxNS = 0;
    expectVds();
    EXPECT_EQ(unlisted({"ns", "-a", "attach"}), (Outcome{0, "Get MaxNS from NVMe Controller info fail.\n"}));
    current().Features &= ~kFeatureNamespace;
    EXPECT_EQ(unlisted({"ns", "-a", "attach"}), (Outcome{0, "Namespace management and attachment is not support.\n"}));
}

TEST_F(EarlierNs, WhatAnActionNeeds)
{
    EXPECT_EQ(unlisted({"ns", "-i", "1", "-d", "0"}), (Outcome{0, "ns: option -a is required\n"}));
    expectVds();
    EXPECT_EQ(unlisted({"ns", "-a", "attach", "-d", "0"}), (Outcome{0, "ns: option -i is required\n"}));
    expectVds();
    EXPECT_EQ(unlisted({"ns", "-a", "attach", "-i", "1"}), (Outcome{0, "ns: option -d is required\n"}));
}

TEST_F(EarlierNs, BadOptions)
{
    EXPECT_EQ(unlisted({"ns", "-a", "init"}), (Outcome{0, "-a : invalid action 'init'\n"}));
    EXPECT_EQ(unlisted({"ns", "-i", "1x"}), (Outcome{0, "-i: Namespace id should be a number\n"}));
    EXPECT_EQ(unlisted({"ns", "-i", "-1"}), (Outcome{0, "-i: Namespace id should be a number\n"}));
    EXPECT_EQ(unlisted({"ns", "-i", "0"}), (Outcome{0, "invalid namespace id 0\n"}));
    EXPECT_EQ(unlisted({"ns", "-l", "all"}), (Outcome{0, "-l : invalid list 'all'\n"}));
    EXPECT_EQ(unlisted({"ns", "-d", "0,x"}), (Outcome{0, "-d : controller ids should be a number\n"}));
    for (const char* letter : {"c", "m", "p", "q"}) {
        EXPECT_EQ(unlisted({"ns", std::string("-") + letter, "0"}),
                  (Outcome{0, "", "", std::string("ns: illegal option -- ") + letter + "\n"}));
    }
    for (auto words : {Line{"ns", "-a", "attach", "-a", "attach"}, Line{"ns", "-i", "1", "-i", "1"},
                       Line{"ns", "-d", "1", "-d", "1"}, Line{"ns", "-l", "ctrl", "-l", "ctrl"}}) {
        EXPECT_EQ(unlisted(words), (Outcome{0, "Duplicated option specified.\n"}));
    }
}

TEST_F(EarlierNs, AListOfControllersHasAnEnd)
{
    std::string ids = "1";
    for (int i = 1; i < 2048; ++i) {
        ids += ",1";
    }
    EXPECT_EQ(unlisted({"ns", "-d", ids}), (Outcome{0, "-d : at most 2047 controller ids\n"}));
}

}  // namespace
