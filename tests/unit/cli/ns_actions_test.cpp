// `ns`: its actions.
#include "tests/unit/cli/ns_fixture.h"

namespace {

using namespace qrx::test;

class NsActions : public NsTest {
protected:
    static Command attachment(QRX_U32 nsid, QRX_U32 select, const std::vector<QRX_U16>& ids)
    {
        Bytes page{static_cast<QRX_U8>(ids.size() & 0xFF), static_cast<QRX_U8>(ids.size() >> 8)};
        for (const QRX_U16 id : ids) {
            page.push_back(static_cast<QRX_U8>(id & 0xFF));
            page.push_back(static_cast<QRX_U8>(id >> 8));
        }
        return Command::admin(21, nsid, {select}).sends(padded(page, 4096)).on(1);
    }
    static Command init(QRX_U32 pd, QRX_U32 count) { return plain(0x02E5 | pd << 16, 0x5001).word(14, count); }
    static Command share(QRX_U32 nsid, QRX_U32 nmic) { return plain(0x03E5 | nsid << 16, 0x5001).word(14, nmic); }
    static Command create(QRX_U32 unit, QRX_U64 sectors)
    {
        return plain(0x04E5 | unit << 16, 0xF001)
            .word(13, static_cast<QRX_U32>(sectors))
            .word(14, static_cast<QRX_U32>(sectors >> 32));
    }
    static Command pdFetch(QRX_U32 id) { return page(0x00E1, 0x5001).word(14, id); }
    static Command pd(QRX_U32 id, QRX_U32 sectorSize)
    {
        NVME_PD_Info info{};
        info.SectorSize = sectorSize;
        return pdFetch(id).data(envelope(info));
    }
};

TEST_F(NsActions, Init)
{
    expectStart();
    machine.expect(init(3, 4));
    EXPECT_EQ(command({"ns", "-a", "init", "-i", "3", "-n", "4"}), (Outcome{0, "\nInitial NS successfully\n"}));
    expectStart(1);
    machine.expect(init(0xABCD, 44));
    EXPECT_EQ(command({"ns", "--action", "INIT", "--id", "43981", "--nn=300"}),
              (Outcome{0, "\nInitial NS successfully\n"}));
    expectStart();
    machine.expect(init(0, 1).status(0x706));
    EXPECT_EQ(command({"ns", "-a", "init", "-i", "0", "-n", "1"}),
              (Outcome{0x706, "\nUnable to initial NS\n", "Invalid HD ID (Status Code: 0x706)\n"}));
    EXPECT_EQ(ns({"ns", "-a", "init"}), (Outcome{0, "ns: option -i is required\n"}));
    EXPECT_EQ(ns({"ns", "-a", "init", "-i", "0"}), (Outcome{0, "ns: option -n is required\n"}));
}

TEST_F(NsActions, InOneBasedModeAnIdIsShiftedWhereItsActionCameFirst)
{
    g_oneBaseMode = 1;
    expectStart();
    machine.expect(init(0, 1));
    EXPECT_EQ(command({"ns", "-a", "init", "-i", "1", "-n", "1"}).result, 0);
    expectStart();
    machine.expect(init(1, 1));
    EXPECT_EQ(command({"ns", "-i", "1", "-a", "init", "-n", "1"}).result, 0);
    expectStart();
    machine.expect(share(1, 1));
    EXPECT_EQ(command({"ns", "-a", "share", "-i", "1", "-s", "yes"}).result, 0);
    expectStart();
    machine.expect(attachment(1, 0, {0, 6}));
    EXPECT_EQ(command({"ns", "-a", "attach", "-i", "1", "-d", "1,7"}).result, 0);
    expectStart();
    machine.expect(pd(1, 512));
    machine.expect(create(0x0402, 2097152));
    EXPECT_EQ(command({"ns", "-a", "create", "-i", "2", "-c", "5", "-l", "1"}).result, 0);
}

TEST_F(NsActions, AVirtualFunctionMayNotChangeTheLayout)
{
    expectStart(2);
    EXPECT_EQ(command({"ns", "-a", "init", "-i", "0", "-n", "1"}),
              (Outcome{0, "Init action is not allowed in VF mode\n"}));
    expectStart(33);
    EXPECT_EQ(command({"ns", "-a", "share", "-i", "0", "-s", "no"}),
              (Outcome{0, "Share action is not allowed in VF mode\n"}));
    expectStart(0x100);
    EXPECT_EQ(command({"ns", "-a", "create", "-i", "0", "-c", "0", "-l", "1"}),
              (Outcome{0, "Create action is not allowed in VF mode\n"}));
    expectStart(2);
    machine.expect(attachment(5, 1, {2}));
    EXPECT_EQ(command({"ns", "-a", "detach", "-i", "5", "-d", "2"}), (Outcome{0, "Detach namespace success\n"}));
}

TEST_F(NsActions, RequiredOptionsComeBeforeTheFunction)
{
    expectStart(2);
    EXPECT_EQ(command({"ns", "-a", "init", "-i", "0"}), (Outcome{0, "ns: option -n is required\n"}));
    expectStart(2);
    EXPECT_EQ(command({"ns", "-a", "share", "-i", "0"}), (Outcome{0, "ns: option -s is required\n"}));
    expectStart(2);
    EXPECT_EQ(command({"ns", "-a", "create", "-i", "0", "-c", "0"}), (Outcome{0, "ns: option -l is required\n"}));
}

TEST_F(NsActions, Share)
{
    expectStart();
    machine.expect(share(0xABCD, 1));
    EXPECT_EQ(command({"ns", "-a", "share", "-i", "43981", "-s", "YES", "-c", "7"}),
              (Outcome{0, "\nSet sharing NS successfully\n"}));
    expectStart();
    machine.expect(share(1, 256));
    EXPECT_EQ(command({"ns", "-a", "share", "-i", "1", "-s", "no", "-c", "1"}),
              (Outcome{0, "\nSet sharing NS successfully\n"}));
    expectStart();
    machine.expect(share(1, 0));
    EXPECT_EQ(command({"ns", "-a", "share", "-i", "1", "--sharing", "No"}),
              (Outcome{0, "\nSet sharing NS successfully\n"}));
    expectStart();
    machine.expect(share(1, 0xFF00));
    EXPECT_EQ(command({"ns", "-a", "share", "-i", "1", "-s", "no", "--cid=255"}).result, 0);
    expectStart();
    machine.expect(share(1, 0).status(0x119));
    EXPECT_EQ(command({"ns", "-a", "share", "-i", "1", "-s", "no"}),
              (Outcome{0x119, "\nUnable to set sharing NS\n", "Namespace Is Private (Status Code: 0x119)\n"}));
    EXPECT_EQ(ns({"ns", "-a", "share", "-s", "no"}), (Outcome{0, "ns: option -i or -e is required\n"}));
}

TEST_F(NsActions, ShareByEui64)
{
    expectStartWithTwo({1}, kEui64);
    machine.expect(share(9, 1));
    EXPECT_EQ(command({"ns", "-a", "share", "-i", "1", "-e", kEui64Text, "-s", "yes"}),
              (Outcome{0, "\nSet sharing NS successfully\n"}));
    EXPECT_EQ(ns({"ns", "-a", "share", "-e", kEui64Text, "-s", "yes"}),
              (Outcome{0, std::string("invalid EUI64 id: ") + kEui64Text + "\n"}));
}

TEST_F(NsActions, CreateCountsInSectorsOfThePd)
{
    expectStart();
    machine.expect(pd(0, 512));
    machine.expect(create(0x0001, 2097152));
    EXPECT_EQ(command({"ns", "-a", "create", "-i", "0", "-c", "0", "-l", "1"}),
              (Outcome{0, "\nCreate NS successfully\n"}));
    expectStart();
    machine.expect(pd(4, 4096));
    machine.expect(create(0x0705, 0xFFFFFFFFULL << 18));  // what is typed saturates
    EXPECT_EQ(command({"ns", "-a", "create", "-i", "4", "-c", "7", "-l", "99999999999"}).result, 0);
    expectStart();
    machine.expect(pd(254, 1));
    machine.expect(create(0xFFFF, 4ULL << 30));
    EXPECT_EQ(command({"ns", "-a", "create", "-i", "254", "--cid", "255", "--size", "4"}).result, 0);
    expectStart();
    machine.expect(pd(0, 512));
    machine.expect(create(0x0001, 0).status(0x741));
    EXPECT_EQ(command({"ns", "-a", "create", "-i", "0", "-c", "0", "-l", "0"}),
              (Outcome{0x741, "\nUnable to create NS\n", "Create namespace cap out of range (Status Code: 0x741)\n"}));
}

TEST_F(NsActions, AnIdThatItsFieldDoesNotHoldIsNotCut)
{
    for (const std::string id : {"65536", "65539", "99999999999"}) {
        EXPECT_EQ(ns({"ns", "-a", "init", "-i", id, "-n", "1"}), (Outcome{0, "invalid id '" + id + "'\n"}));
        EXPECT_EQ(ns({"ns", "-a", "share", "-i", id, "-s", "yes"}), (Outcome{0, "invalid id '" + id + "'\n"}));
        EXPECT_EQ(ns({"ns", "-a", "attach", "-i", "1", "-d", "0," + id}),
                  (Outcome{0, "invalid controller id '" + id + "'\n"}));
    }
    for (const std::string id : {"256", "511", "99999999999"}) {
        EXPECT_EQ(ns({"ns", "-a", "create", "-i", "0", "-c", id, "-l", "1"}),
                  (Outcome{0, "invalid controller id '" + id + "'\n"}));
    }
    // The id plus 1 goes into 8 bits.
    for (const std::string id : {"255", "256", "65536", "2147483647"}) {
        EXPECT_EQ(ns({"ns", "-a", "create", "-i", id, "-c", "0", "-l", "1"}),
                  (Outcome{0, "\nInvalid PD ID: " + id + "\n"}));
    }
}

TEST_F(NsActions, CreateOnADiskThatCannotBeReadSendsNothing)
{
    const Outcome invalid{0, "\nInvalid PD ID: 6\n"};
    const Line words{"ns", "-a", "create", "-i", "6", "-c", "0", "-l", "1"};
    expectStart();
    machine.expect(pd(6, 0));
    EXPECT_EQ(command(words), invalid);
    expectStart();
    machine.expect(pdFetch(6).data(envelope(NVME_PD_Info{.SectorSize = 512}, 6)));
    EXPECT_EQ(command(words), invalid);
    expectStart();
    Bytes answer = envelope(NVME_PD_Info{.SectorSize = 512});
    answer[2] = '?';
    machine.expect(pdFetch(6).data(answer));
    EXPECT_EQ(command(words), invalid);
    expectStart();
    machine.expect(pdFetch(6).status(0x706));
    EXPECT_EQ(command(words), (Outcome{0, "\nInvalid PD ID: 6\n", "Invalid HD ID (Status Code: 0x706)\n"}));
}

TEST_F(NsActions, TheResultsOfASectorSize)
{
    QRX_U32 size = 77;
    machine.expect(pd(3, 4096));
    EXPECT_EQ(GetSectorSizeFromPD(3, &size), 0);
    EXPECT_EQ(size, 4096U);
    machine.expect(pdFetch(3).data(envelope(NVME_PD_Info{.SectorSize = 512}, 6)));
    EXPECT_EQ(GetSectorSizeFromPD(3, &size), 6);
    machine.expect(pdFetch(3));
    EXPECT_EQ(GetSectorSizeFromPD(3, &size), 1);
    EXPECT_EQ(size, 4096U);
}

TEST_F(NsActions, CreateNeedsThreeOptions)
{
    EXPECT_EQ(ns({"ns", "-a", "create"}), (Outcome{0, "ns: option -i is required\n"}));
    EXPECT_EQ(ns({"ns", "-a", "create", "-i", "0"}), (Outcome{0, "ns: option -c is required\n"}));
    EXPECT_EQ(ns({"ns", "-a", "create", "-i", "0", "-c", "0"}), (Outcome{0, "ns: option -l is required\n"}));
}

TEST_F(NsActions, AttachAndDetachById)
{
    expectStart();
    machine.expect(attachment(1, 0, {0}));
    EXPECT_EQ(command({"ns", "-a", "attach", "-i", "1", "-d", "0"}), (Outcome{0, "Attach namespace success\n"}));
    expectStart();
    machine.expect(attachment(0x7FFFFFFF, 1, {0, 1, 0, 0xFFFF}));
    EXPECT_EQ(command({"ns", "-a", "DETACH", "-i", "99999999999", "--ctrllist=0,1,0,65535"}),
              (Outcome{0, "Detach namespace success\n"}));
    expectStart();
    machine.expect(attachment(1, 0, {0}).status(0x118));
    EXPECT_EQ(command({"ns", "-a", "attach", "-i", "1", "-d", "0"}),
              (Outcome{0x118, "Attach namespace failed\n", "Namespace Already Attached (Status Code: 0x118)\n"}));
    expectStart();
    machine.expect(attachment(1, 1, {0}).error(5));
    EXPECT_EQ(command({"ns", "-a", "detach", "-i", "1", "-d", "0"}),
              (Outcome{-1, "Detach namespace failed\n", "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(NsActions, EmptyElementsOfTheControllerListAreDropped)
{
    expectStart();
    machine.expect(attachment(1, 0, {3, 4}));
    EXPECT_EQ(command({"ns", "-a", "attach", "-i", "1", "-d", ",3,,4,"}).result, 0);
    expectStart();
    machine.expect(attachment(1, 0, {}));
    EXPECT_EQ(command({"ns", "-a", "attach", "-i", "1", "-d", ","}).result, 0);
}

TEST_F(NsActions, TheControllerListHolds2047Ids)
{
    std::string ids;
    std::vector<QRX_U16> all;
    for (QRX_U16 id = 0; id < 2047; ++id) {
        ids += std::to_string(id) + ",";
        all.push_back(id);
    }
    expectStart();
    machine.expect(attachment(1, 0, all));
    EXPECT_EQ(command({"ns", "-a", "attach", "-i", "1", "-d", ids}), (Outcome{0, "Attach namespace success\n"}));
    EXPECT_EQ(ns({"ns", "-a", "attach", "-i", "1", "-d", ids + "1"}),
              (Outcome{0, "-d : at most 2047 controller ids\n"}));
    EXPECT_EQ(ns({"ns", "-a", "attach", "-i", "1", "-d", ids, "-d", "1"}),
              (Outcome{0, "-d : at most 2047 controller ids\n"}));
}

TEST_F(NsActions, AttachByEui64)
{
    expectStartWithTwo({1}, kEui64);
    machine.expect(attachment(9, 0, {0, 1}));
    EXPECT_EQ(command({"ns", "-a", "attach", "--EUI64", kEui64Text, "-d", "0,1"}),
              (Outcome{0, "Attach namespace success\n"}));
    expectStartWithTwo(kEui64, kEui64);  // the first one counts, and not -i
    machine.expect(attachment(5, 0, {0}));
    EXPECT_EQ(command({"ns", "-a", "attach", "-e", kEui64Text, "-i", "1", "-d", "0"}).result, 0);
}

TEST_F(NsActions, AnEui64InCapitalsOrOfZerosIsNotFound)
{
    expectStartWithTwo({}, kEui64);
    EXPECT_EQ(command({"ns", "-a", "attach", "-e", "00504325385B7601", "-d", "0"}),
              (Outcome{0, "invalid EUI64 id: 00504325385B7601\n"}));
    expectStartWithTwo({}, kEui64);
    EXPECT_EQ(command({"ns", "-a", "detach", "-e", "0000000000000000", "-d", "0"}),
              (Outcome{0, "invalid EUI64 id: 0000000000000000\n"}));
}

TEST_F(NsActions, WhatAttachNeeds)
{
    EXPECT_EQ(ns({"ns", "-a", "attach", "-d", "0"}), (Outcome{0, "ns: option -i or -e is required\n"}));
    EXPECT_EQ(ns({"ns", "-a", "attach", "-i", "1"}), (Outcome{0, "ns: option -d is required\n"}));
    EXPECT_EQ(ns({"ns", "-a", "detach", "-e", kEui64Text}), (Outcome{0, "ns: option -d is required\n"}));
    EXPECT_EQ(ns({"ns", "-a", "attach", "-i", "1", "-d", "0", "-c", "0"}),
              (Outcome{0, "ns: option -c is not allowed\n"}));
    current().Features &= ~kFeatureNamespace;
    EXPECT_EQ(ns({"ns", "-a", "detach"}), (Outcome{0, "Namespace management and attachment is not support.\n"}));
}

TEST_F(NsActions, ThePrimaryController)
{
    expectStart();
    machine.expect(identifyHost(0x1234));
    EXPECT_EQ(command({"ns", "-p", "CTRL"}), (Outcome{0, "Primary Controller Id is 4660\n"}));
    expectStart();
    machine.expect(identify(0, 1).status(2));
    EXPECT_EQ(command({"ns", "--primary", "ctrl"}),
              (Outcome{2, "\nFailed to get primary controller.\n", "Invalid Field in Command (Status Code: 0x2)\n"}));
    g_oneBaseMode = 1;
    expectStart();
    machine.expect(identifyHost(1));
    EXPECT_EQ(command({"ns", "-p", "ctrl", "--list"}), (Outcome{0, "Primary Controller Id is 1\n"}));
}

TEST_F(NsActions, List)
{
    const Bytes two = records({{.NSID = 5, .device_type = 1, .ID = 3, .Status = 5, .SectorSize = 512, .LBA = 1 << 22},
                               {},
                               {.NSID = 9, .device_type = 1, .Status = 2}});
    expectStart();
    machine.expect(list().data(envelope(two)));
    EXPECT_EQ(command({"ns", "--list"}), (Outcome{0,
                                                  "NS ID:               5\n"
                                                  "Size:                2 GB\n"
                                                  "Parent VD ID:        3\n"
                                                  "Valid:               Yes\n"
                                                  "Active:              Yes\n"
                                                  "VD status:           Healthy\n\n"
                                                  "NS ID:               9\n"
                                                  "Size:                0 GB\n"
                                                  "Parent VD ID:        0\n"
                                                  "Valid:               No\n"
                                                  "Active:              No\n"
                                                  "VD status:           Healthy\n\n"
                                                  "Total # of NS:       2\n\n"}));
    runAsJbof();
    g_oneBaseMode = 1;
    expectStart();
    machine.expect(list().data(envelope(records({{.NSID = 5, .ID = 3, .Status = 1}}))));
    EXPECT_EQ(command({"ns", "--list"}), (Outcome{0,
                                                  "NS ID:               5\n"
                                                  "Size:                0 GB\n"
                                                  "Parent PD ID:        4\n"
                                                  "Valid:               Yes\n"
                                                  "Active:              No\n\n"
                                                  "Total # of NS:       1\n\n"}));
}

TEST_F(NsActions, AListThatIsEmptyOrCannotBeRead)
{
    expectStart();
    machine.expect(list().data(envelope(Bytes{})));
    EXPECT_EQ(command({"ns", "--list"}), (Outcome{0, "No Namespace Info Exist.\n"}));
    expectStart();
    machine.expect(list().data(envelope(Bytes{}, 1)));
    EXPECT_EQ(command({"ns", "--list"}), (Outcome{0, "\nUnable to get info of NS\n"}));
    expectStart();
    machine.expect(list().status(0x701));
    EXPECT_EQ(command({"ns", "--list"}), (Outcome{0, "\nUnable to get info of NS\n", "Failed (Status Code: 0x701)\n"}));
}

TEST_F(NsActions, TheActionComesBeforeThePrimaryAndTheList)
{
    expectStart();
    machine.expect(init(0, 1));
    EXPECT_EQ(command({"ns", "--list", "-p", "ctrl", "-a", "init", "-i", "0", "-n", "1"}).result, 0);
}

TEST_F(NsActions, DebugLines)
{
    dbg_enable = 1;
    const std::string head = "CDW[0] : 0x000000e2\nCDW[12]: 0x000000e5\n";
    expectStart();
    machine.expect(pd(2, 512));
    machine.expect(create(0x0703, 5ULL << 21));
    EXPECT_EQ(command({"ns", "-a", "create", "-i", "2", "-c", "7", "-l", "5"}).stream,
              head +
                  "CDW[0] : 0x000000e2\nCDW[12]: 0x000000e1\nCDW[14]: 0x00000002\ncmd_status: 0x0\n"
                  "CDW[0] : 0x000000e2\nCDW[12]: 0x070304e5\nCDW[13]: 0x00a00000\nCDW[14]: 0x00000000\n"
                  "CDW[15]: 0x00000000\n\nCreate NS successfully\n");
    expectStart();
    machine.expect(init(2, 3));
    EXPECT_EQ(command({"ns", "-a", "init", "-i", "2", "-n", "3"}).stream,
              head + "CDW[0] : 0x000000e2\nCDW[12]: 0x000202e5\nCDW[14]: 0x00000003\n\nInitial NS successfully\n");
    expectStart();
    machine.expect(list().data(envelope(Bytes{})));
    EXPECT_EQ(command({"ns", "--list"}).stream, head + head + "No Namespace Info Exist.\n");
}

}  // namespace
