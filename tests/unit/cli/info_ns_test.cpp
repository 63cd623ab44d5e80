// `info -o ns`, and the sharing state of a namespace.
#include "tests/unit/cli/info_fixture.h"

namespace {

using namespace qrx::test;

NVME_NS_Info ns(QRX_U8 nsid, QRX_U8 status, QRX_U8 vdStatus = 0)
{
    NVME_NS_Info record{};
    record.NSID = nsid;
    record.device_type = 1;
    record.ID = 12;
    record.Status = status;
    record.VDStatus = vdStatus;
    record.SectorSize = 4096;
    record.LBA = 0x1'0000'0000;
    return record;
}

Bytes listOf(std::initializer_list<NVME_NS_Info> records)
{
    Bytes bytes;
    for (const NVME_NS_Info& record : records) {
        const Bytes one = bytesOf(record);
        bytes.insert(bytes.end(), one.begin(), one.end());
    }
    return envelope(bytes);
}

std::string page(int nsid, const char* valid, const char* active, const char* health = "Healthy")
{
    std::string text = "NS ID:               " + std::to_string(nsid) + "\nSize:                16384 GB\n";
    text += "Parent VD ID:        12\nValid:               ";
    text += valid;
    text += "\nActive:              ";
    text += active;
    text += "\nVD status:           ";
    text += health;
    return text + "\n\n";
}

class InfoNs : public InfoTest {};

TEST_F(InfoNs, ListsEverySlotThatIsNotEmpty)
{
    machine.expect(nsFetch().data(listOf({ns(1, 5), ns(2, 0), ns(3, 2)})));
    EXPECT_EQ(command({"info", "-o", "ns"}),
              (Outcome{0, page(1, "Yes", "Yes") + page(3, "No", "No") + "Total # of NS:       2\n\n"}));
}

TEST_F(InfoNs, OfAVdListsTheValidOnes)
{
    machine.expect(nsOfVdFetch(7).data(listOf({ns(1, 4), ns(2, 1), ns(3, 3)})));
    EXPECT_EQ(command({"info", "-o", "ns", "-t", "vd", "-v", "7"}),
              (Outcome{0, page(2, "Yes", "No") + page(3, "Yes", "No") + "Total # of NS:       2\n\n"}));
}

TEST_F(InfoNs, OneNamespaceByItsId)
{
    machine.expect(nsFetch().data(listOf({ns(1, 5), ns(2, 0), ns(2, 4)})));
    EXPECT_EQ(command({"info", "-o", "ns", "-i", "2"}), (Outcome{0, page(2, "No", "Yes")}));
    machine.expect(nsOfVdFetch(255).data(listOf({ns(9, 4)})));
    EXPECT_EQ(command({"info", "-o", "ns", "-t", "vd", "-i", "9"}), (Outcome{0, page(9, "No", "Yes")}));
}

TEST_F(InfoNs, NoneFound)
{
    machine.expect(nsFetch().data(listOf({ns(1, 5)})));
    EXPECT_EQ(command({"info", "-o", "ns", "-i", "2"}), (Outcome{0, "\nUnable to get info of NS\n"}));
    machine.expect(nsOfVdFetch(0).data(listOf({ns(1, 5)})));
    EXPECT_EQ(command({"info", "-o", "ns", "-t", "vd", "-v", "0", "-i", "2"}),
              (Outcome{0, "\nUnable to get info of NS\n"}));
    machine.expect(nsFetch().data(listOf({ns(1, 5)})));
    EXPECT_EQ(command({"info", "-o", "ns", "-i", "257"}), (Outcome{0, "\nUnable to get info of NS\n"}));
    machine.expect(nsFetch().data(listOf({})));
    EXPECT_EQ(command({"info", "-o", "ns"}), (Outcome{0, "No Namespace Info Exist.\n"}));
    machine.expect(nsOfVdFetch(0).data(listOf({ns(1, 4)})));
    EXPECT_EQ(command({"info", "-o", "ns", "-t", "vd", "-v", "0"}), (Outcome{0, "No Namespace Info Exist.\n"}));
}

TEST_F(InfoNs, RecordsBehindMaxNsAreNotLookedAt)
{
    records[0].MaxNS = 1;
    machine.expect(nsFetch().data(listOf({ns(1, 0), ns(2, 5)})));
    EXPECT_EQ(command({"info", "-o", "ns"}), (Outcome{0, "No Namespace Info Exist.\n"}));
}

TEST_F(InfoNs, MoreNamespacesThanThePageHolds)
{
    records[0].MaxNS = 255;
    Bytes bytes;
    std::string all;
    for (QRX_U8 i = 1; i <= 43; ++i) {
        const Bytes one = bytesOf(ns(i, 5));
        bytes.insert(bytes.end(), one.begin(), one.end());
        if (i <= 42) {
            all += page(i, "Yes", "Yes");
        }
    }
    machine.expect(nsFetch().data(padded(envelope(bytes), 4096)));
    EXPECT_EQ(command({"info", "-o", "ns"}), (Outcome{0, all + "Total # of NS:       42\n\n"}));
}

TEST_F(InfoNs, AControllerWithoutNamespaces)
{
    records[0].MaxNS = 0;
    EXPECT_EQ(command({"info", "-o", "ns"}), (Outcome{0, "Get MaxNS from adapter info fail.\n"}));
    machine.expect(nsOfVdFetch(3).data(listOf({ns(1, 5)})));
    EXPECT_EQ(command({"info", "-o", "ns", "-t", "vd", "-v", "3"}), (Outcome{0, "No Namespace Info Exist.\n"}));
}

TEST_F(InfoNs, BadAnswers)
{
    Bytes refused = listOf({ns(1, 5)});
    refused[4] = 1;
    Bytes unsignedPage = listOf({ns(1, 5)});
    unsignedPage[1] = 'r';
    for (const Bytes& answer : {refused, unsignedPage, Bytes{}}) {
        machine.expect(nsFetch().data(answer));
        EXPECT_EQ(command({"info", "-o", "ns"}), (Outcome{0, "\nUnable to get info of NS\n"}));
        machine.expect(nsOfVdFetch(255).data(answer));
        EXPECT_EQ(command({"info", "-o", "ns", "-t", "vd"}), (Outcome{0, "\nUnable to get info of VD\n"}));
    }
    machine.expect(nsFetch().status(2));
    EXPECT_EQ(command({"info", "-o", "ns"}),
              (Outcome{0, "\nUnable to get info of NS\n", "Invalid Field in Command (Status Code: 0x2)\n"}));
}

TEST_F(InfoNs, OnlyADegradedOrRebuildingParentIsUnhealthy)
{
    for (QRX_U8 code = 0; code < 13; ++code) {
        machine.expect(nsFetch().data(listOf({ns(1, 5, code)})));
        EXPECT_EQ(command({"info", "-o", "ns", "-i", "1"}).stream,
                  page(1, "Yes", "Yes", code == 1 || code == 10 ? "Unhealthy" : "Healthy"));
    }
}

TEST_F(InfoNs, JbofNamesThePdAndNoHealth)
{
    records[0].Features = 0;
    g_oneBaseMode = 1;
    machine.expect(nsFetch().data(listOf({ns(1, 1, 1)})));
    EXPECT_EQ(command({"info", "-o", "ns"}).stream,
              "NS ID:               1\nSize:                16384 GB\nParent PD ID:        13\n"
              "Valid:               Yes\nActive:              No\n\nTotal # of NS:       1\n\n");
}

TEST_F(InfoNs, DebugLinesNameNoCdw14)
{
    dbg_enable = 1;
    machine.expect(nsFetch().data(listOf({})));
    EXPECT_EQ(command({"info", "-o", "ns"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000000e5\ncmd_status: 0x0\nNo Namespace Info Exist.\n");
    machine.expect(nsOfVdFetch(5));
    EXPECT_EQ(command({"info", "-o", "ns", "-t", "vd", "-v", "5"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000501e5\ncmd_status: 0x0\n"
              "receive sign get 0x0 0x0 0x0 expect 0x51 0x52 0x58\n\nUnable to get info of VD\n");
}

TEST_F(InfoNs, SharingState)
{
    const auto shown = [&](const Bytes& answer, QRX_U32 status = 0) {
        machine.expect(fetch(0x0005'05E5, 0x1001).data(answer).status(status));
        return outcomeOf([] {
            getNMIC(5);
            return 0;
        });
    };
    EXPECT_EQ(shown(envelope(NMIC_Data{0, 9, {}})), (Outcome{0, "Private for controller ID: 9\n\n"}));
    EXPECT_EQ(shown(envelope(NMIC_Data{1, 9, {}})), (Outcome{0, ""}));
    EXPECT_EQ(shown(envelope(NMIC_Data{0, 9, {}}, 1)), (Outcome{0, "Unable to get NMIC\n\n"}));
    EXPECT_EQ(shown(Bytes(16)), (Outcome{0, "Unable to get NMIC\n\n"}));
    EXPECT_EQ(shown(envelope(NMIC_Data{0, 9, {}}), 2),
              (Outcome{0, "Unable to get NMIC\n\n", "Invalid Field in Command (Status Code: 0x2)\n"}));
}

}  // namespace
