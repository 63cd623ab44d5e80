// `info -o pd` and `info -o vd`.
#include <algorithm>

#include "tests/unit/cli/info_fixture.h"

namespace {

using namespace qrx::test;

NVME_PD_Info somePd()
{
    NVME_PD_Info pd{};
    pd.ID = 3;
    setText(pd.Model, "  Model M9");
    setText(pd.SerialNo, " SER-77");
    pd.SectorSize = 512;
    setText(pd.FWVersion, " FW1.2");
    pd.LBA = 3907029168;
    pd.SSDAdapterID = 5;
    pd.SSDNSID = 0x1234;
    pd.Status = 0;
    return pd;
}

const std::string kPdText =
    "Model:                           Model M9                              \n"
    "Serial:                          SER-77             \n"
    "Sector Size:                     512 bytes\n"
    "LBA:                             3907029168\n"
    "Size:                            1863 GB\n"
    "SSD backend RC/Slot ID:          5\n"
    "SSD backend Namespace ID:        4660\n"
    "Firmware version:                FW1.2  \n";
const std::string kPdPage = "PD ID:                           3\n" + kPdText +
                            "Status:                          Idle\n"
                            "Assigned:                        No\n"
                            "SMART Critical Warning:          No\n";

class InfoPd : public InfoTest {
protected:
    static std::string printed(const NVME_PD_Info& pd, bool isJBOF = false)
    {
        return outcomeOf([&] {
                   HD_PrintInfo(pd, isJBOF);
                   return 0;
               })
            .stream;
    }
    static std::string lineOf(const NVME_PD_Info& pd, const std::string& label)
    {
        const std::string page = "\n" + printed(pd, true);
        const std::size_t at = page.find("\n" + label);
        return page.substr(at + 34, page.find('\n', at + 1) - at - 34);
    }
};

TEST_F(InfoPd, OneDisk)
{
    machine.expect(pdFetch(3).data(envelope(somePd())));
    EXPECT_EQ(command({"info", "-o", "pd", "-i", "3"}), (Outcome{0, kPdPage}));
}

TEST_F(InfoPd, OneDiskThatCannotBeRead)
{
    const Outcome unable{0, "\nUnable to get info of PD\n"};
    machine.expect(pdFetch(3).data(envelope(somePd(), 4)));
    EXPECT_EQ(command({"info", "-o", "pd", "-i", "3"}), unable);
    machine.expect(pdFetch(3).status(2));  // a probe: no status text
    EXPECT_EQ(command({"info", "-o", "pd", "-i", "3"}), unable);
    Bytes unsignedPage = envelope(somePd());
    unsignedPage[2] = 'Z';
    machine.expect(pdFetch(3).data(unsignedPage));
    EXPECT_EQ(command({"info", "-o", "pd", "-i", "3"}), unable);
}

TEST_F(InfoPd, ThePageDecidesAndNotTheStatusOfTheCall)
{
    machine.expect(pdFetch(3).data(envelope(somePd())).status(2));
    EXPECT_EQ(command({"info", "-o", "pd", "-i", "3"}), (Outcome{0, kPdPage}));
}

TEST_F(InfoPd, ResultsOfOneFetch)
{
    machine.expect(pdFetch(1).data(envelope(somePd(), 9)));
    EXPECT_EQ(outcomeOf([] { return static_cast<int>(getOneHDInfoSA(1, false)); }), (Outcome{9, ""}));
    machine.expect(pdFetch(1));
    EXPECT_EQ(getOneHDInfoSA(1, false), 1U);
}

TEST_F(InfoPd, TheListProbesMaxPdTimesPortCount)
{
    records[0].MaxPD = 3;
    records[0].PortCount = 2;
    for (QRX_U32 id = 0; id < 6; ++id) {
        machine.expect(id == 1 || id == 4 ? pdFetch(id).data(envelope(somePd())) : pdFetch(id).status(2));
    }
    EXPECT_EQ(command({"info", "-o", "pd"}),
              (Outcome{0, "\n" + kPdPage + "\n" + kPdPage + "\nTotal # of PD:          2\n\n"}));
}

TEST_F(InfoPd, TheListIncludes255AndGoesOnAboveIt)
{
    records[0].MaxPD = 129;
    for (QRX_U32 id = 0; id < 258; ++id) {
        machine.expect(pdFetch(id));
    }
    EXPECT_EQ(command({"info", "-o", "pd"}), (Outcome{0, "\nNo physical disk is found.\n"}));
}

TEST_F(InfoPd, OfTheCurrentController)
{
    gCurrentAdapter = 1;
    records[1].MaxPD = 1;
    records[1].PortCount = 1;
    machine.expect(pdFetch(0).on(1));
    EXPECT_EQ(command({"info", "-o", "pd"}), (Outcome{0, "\nNo physical disk is found.\n"}));
}

TEST_F(InfoPd, WithoutARecordOfTheControllerThereIsNothingToList)
{
    g_pAdInfos = nullptr;
    EXPECT_EQ(command({"info", "-o", "pd"}), (Outcome{0, "\nNo physical disk is found.\n"}));
    EXPECT_EQ(command({"info", "-o", "vd"}), (Outcome{0, "\nNo virtual disk is found.\n"}));
    EXPECT_EQ(command({"info", "-o", "ns"}), (Outcome{0, "Get MaxNS from adapter info fail.\n"}));
    g_pAdInfos = records.data();
    gCurrentAdapter = 2;
    EXPECT_EQ(command({"info", "-o", "pd"}), (Outcome{0, "\nNo physical disk is found.\n"}));
}

TEST_F(InfoPd, JbofShowsImportable)
{
    records[0].Features = 0;
    NVME_PD_Info pd = somePd();
    pd.Status = 0x29;
    machine.expect(pdFetch(0).data(envelope(pd)));
    EXPECT_EQ(command({"info", "-o", "pd", "-i", "0"}), (Outcome{0, "PD ID:                           3\n" + kPdText +
                                                                        "Status:                          Idle\n"
                                                                        "Assigned:                        Yes\n"
                                                                        "Importable:                      Yes\n"
                                                                        "SMART Critical Warning:          Yes\n"}));
    EXPECT_EQ(lineOf(somePd(), "Importable:"), "No");
}

TEST_F(InfoPd, StatusBits)
{
    NVME_PD_Info pd = somePd();
    const std::pair<QRX_U8, const char*> rows[] = {
        {0xEC, "Idle"}, {0x02, "Media Patrol Executing"}, {0x10, "Fail"}, {0x12, "Fail"}};
    for (const auto& [status, word] : rows) {
        pd.Status = status;
        EXPECT_EQ(lineOf(pd, "Status:"), word);
    }
    pd.Status = 0xFE;
    EXPECT_EQ(lineOf(pd, "Assigned:"), "No");
    pd.Status = 0xDF;
    EXPECT_EQ(lineOf(pd, "SMART Critical Warning:"), "No");
    pd.Status = 0xF7;
    EXPECT_EQ(lineOf(pd, "Importable:"), "No");
}

TEST_F(InfoPd, FullTextsAreShownWhole)
{
    NVME_PD_Info pd = somePd();
    setText(pd.Model, std::string(39, 'm') + "M");
    setText(pd.SerialNo, std::string(19, 's') + "S");
    setText(pd.FWVersion, "12345678");
    EXPECT_EQ(lineOf(pd, "Model:"), std::string(39, 'm') + "M");
    EXPECT_EQ(lineOf(pd, "Serial:"), std::string(19, 's') + "S");
    EXPECT_EQ(lineOf(pd, "Firmware version:"), "12345678");
}

TEST_F(InfoPd, LeadingBlanksAreLimited)
{
    NVME_PD_Info pd = somePd();
    setText(pd.Model, std::string(16, ' ') + "text", '\0');
    EXPECT_EQ(lineOf(pd, "Model:"), " text");
    setText(pd.Model, "");
    EXPECT_EQ(lineOf(pd, "Model:"), std::string(25, ' '));
    setText(pd.SerialNo, std::string(19, ' ') + "x");
    EXPECT_EQ(lineOf(pd, "Serial:"), "x");
    setText(pd.SerialNo, "");
    EXPECT_EQ(lineOf(pd, "Serial:"), "");
    setText(pd.FWVersion, "       8");
    EXPECT_EQ(lineOf(pd, "Firmware version:"), "8");
    setText(pd.FWVersion, "");
    EXPECT_EQ(lineOf(pd, "Firmware version:"), "");
}

TEST_F(InfoPd, ControlCharactersDoNotReachTheTerminal)
{
    NVME_PD_Info pd = somePd();
    setText(pd.Model, "  \x1b[2Jdisk\x9b", '\0');
    setText(pd.SerialNo, "\x07S\r", '\0');
    setText(pd.FWVersion, " F\n\x7f", '\0');
    EXPECT_EQ(lineOf(pd, "Model:"), "?[2Jdisk?");
    EXPECT_EQ(lineOf(pd, "Serial:"), "?S?");
    EXPECT_EQ(lineOf(pd, "Firmware version:"), "F??");
}

TEST_F(InfoPd, NumbersAtTheirEnds)
{
    NVME_PD_Info pd = somePd();
    pd.ID = 65535;
    pd.SSDAdapterID = 65535;
    pd.SSDNSID = 65535;
    pd.SectorSize = 0xFFFFFFFF;
    pd.LBA = 0x1'2345'6789;
    EXPECT_EQ(lineOf(pd, "PD ID:"), "65535");
    EXPECT_EQ(lineOf(pd, "LBA:"), std::to_string(0x23456789));
    EXPECT_EQ(lineOf(pd, "Sector Size:"), "-1 bytes");
    pd.SectorSize = 4096;
    EXPECT_EQ(lineOf(pd, "Size:"), "18641 GB");
    g_oneBaseMode = 1;
    EXPECT_EQ(lineOf(pd, "PD ID:"), "65536");
    EXPECT_EQ(lineOf(pd, "SSD backend RC/Slot ID:"), "65536");
    EXPECT_EQ(lineOf(pd, "SSD backend Namespace ID:"), "65535");
}

TEST_F(InfoPd, DebugLines)
{
    dbg_enable = 1;
    machine.expect(pdFetch(3).data(envelope(somePd(), 0xAB)));
    EXPECT_EQ(command({"info", "-o", "pd", "-i", "3"}),
              (Outcome{0,
                       "CDW[0] : 0x000000e2\nCDW[12]: 0x000000e1\nCDW[14]: 0x00000003\ncmd_status: 0xab\n"
                       "\nUnable to get info of PD\n"}));
    machine.expect(pdFetch(3));
    EXPECT_EQ(command({"info", "-o", "pd", "-i", "3"}),
              (Outcome{0,
                       "CDW[0] : 0x000000e2\nCDW[12]: 0x000000e1\nCDW[14]: 0x00000003\ncmd_status: 0x0\n"
                       "receive sign get 0x0 0x0 0x0 expect 0x51 0x52 0x58\n"
                       "\nUnable to get info of PD\n"}));
}

NVME_VD_Info someVd()
{
    NVME_VD_Info vd{};
    vd.ID = 6;
    vd.Status = 0;
    vd.Importable = 1;
    vd.RaidMode = 1;
    vd.MemberCount = 3;
    vd.LBA = 4294967296;
    vd.PDIDs[0] = 2;
    vd.PDIDs[1] = 65535;
    vd.PDIDs[2] = 300;
    vd.NumParityDisk = 2;
    vd.StripBlockSize = 256;
    vd.SectorSize = 512;
    setText(vd.Name, "data", '\0');
    return vd;
}

const std::string kVdPage =
    "VD ID:               6\n"
    "Name:                data\n"
    "Status:              Functional\n"
    "Importable:          Yes\n"
    "RAID Mode:           RAID1\n"
    "size:                2048 GB\n"
    "PD Count:            3\n"
    "PDs:                 2 ? 300 \n"
    "Stripe Block Size:   128K\n"
    "Sector Size:         512 bytes\n";

class InfoVd : public InfoTest {
protected:
    static std::string printed(const NVME_VD_Info& vd)
    {
        return outcomeOf([&] {
                   LD_PrintInfo(vd);
                   return 0;
               })
            .stream;
    }
    static std::string lineOf(const NVME_VD_Info& vd, const std::string& label)
    {
        const std::string page = "\n" + printed(vd);
        const std::size_t at = page.find("\n" + label);
        return at == std::string::npos ? "none" : page.substr(at + 22, page.find('\n', at + 1) - at - 22);
    }
    static NVME_BGA_STATUS bga(QRX_U8 type, QRX_U8 percentage, QRX_U8 status)
    {
        NVME_BGA_STATUS record{};
        record.BgaType = type;
        record.ID = 99;
        record.Percentage = percentage;
        record.BgaStatus = status;
        return record;
    }
};

TEST_F(InfoVd, OneDiskAndItsActivity)
{
    machine.expect(vdFetch(1).data(envelope(someVd())));
    machine.expect(bgaFetch(1).data(envelope(bga(3, 42, 1))));
    EXPECT_EQ(command({"info", "-o", "vd", "-i", "1"}),
              (Outcome{0, kVdPage + "BGA progress:        Rebuilding is running in 42%\n"}));
}

TEST_F(InfoVd, OneDiskThatCannotBeRead)
{
    const Outcome unable{0, "\nUnable to get info of VD\n"};
    machine.expect(vdFetch(1).data(envelope(someVd(), 4)));
    EXPECT_EQ(command({"info", "-o", "vd", "-i", "1"}), unable);
    machine.expect(vdFetch(1).status(2));
    EXPECT_EQ(command({"info", "-o", "vd", "-i", "1"}), unable);
    Bytes unsignedPage = envelope(someVd());
    unsignedPage[0] = 0;
    machine.expect(vdFetch(1).data(unsignedPage));
    EXPECT_EQ(command({"info", "-o", "vd", "-i", "1"}), unable);
}

TEST_F(InfoVd, AnActivityThatCannotBeReadMakesTheDiskUncounted)
{
    machine.expect(vdFetch(1).data(envelope(someVd())));
    machine.expect(bgaFetch(1).data(envelope(bga(3, 42, 1), 7)));
    EXPECT_EQ(command({"info", "-o", "vd", "-i", "1"}), (Outcome{0, kVdPage + "\nUnable to get info of VD\n"}));
    machine.expect(vdFetch(0).data(envelope(someVd())));
    machine.expect(bgaFetch(0).data(envelope(Bytes{}, 7)));
    machine.expect(vdFetch(1));
    EXPECT_EQ(command({"info", "-o", "vd"}), (Outcome{0, "\n" + kVdPage + "No virtual disk is found.\n"}));
}

TEST_F(InfoVd, ARefusedActivityFetchPrintsItsStatusAndCounts)
{
    machine.expect(vdFetch(1).data(envelope(someVd())));
    machine.expect(bgaFetch(1).status(2));
    EXPECT_EQ(command({"info", "-o", "vd", "-i", "1"}),
              (Outcome{0, kVdPage, "Invalid Field in Command (Status Code: 0x2)\n"}));
}

TEST_F(InfoVd, TheListProbesPortCountIndices)
{
    for (QRX_U32 id = 0; id < 2; ++id) {
        machine.expect(vdFetch(id).data(envelope(someVd())));
        machine.expect(bgaFetch(id).data(envelope(bga(0, 0, 0))));
    }
    EXPECT_EQ(command({"info", "-o", "vd"}),
              (Outcome{0, "\n" + kVdPage + "\n" + kVdPage + "\nTotal # of VD:       2\n\n"}));
}

TEST_F(InfoVd, StatusWords)
{
    const char* const words[] = {
        "Functional",        "Degrade",        "Deleted",    "Missing",        "Offline",
        "Partially Optimal", "Foreign",        "Importable", "Not Importable", "Initialization",
        "Rebuilding",        "Error Handling", "N/A"};
    NVME_VD_Info vd = someVd();
    for (QRX_U8 status = 0; status < 13; ++status) {
        vd.Status = status;
        EXPECT_EQ(lineOf(vd, "Status:"), words[status]);
    }
    vd.Status = 255;
    EXPECT_EQ(lineOf(vd, "Status:"), "N/A");
}

TEST_F(InfoVd, RaidModesStripesAndParity)
{
    NVME_VD_Info vd = someVd();
    vd.RaidMode = 2;
    EXPECT_EQ(lineOf(vd, "RAID Mode:"), "unknown");
    EXPECT_EQ(lineOf(vd, "Parity Disk Number:"), "none");
    for (const QRX_U8 mode : {kRaid6, kRaid60}) {
        vd.RaidMode = mode;
        EXPECT_EQ(lineOf(vd, "Parity Disk Number:"), "2");
    }
    const std::pair<QRX_U16, const char*> stripes[] = {{256, "128K"}, {512, "256K"}, {1024, "512K"}, {0, "Unknown"}};
    for (const auto& [sectors, word] : stripes) {
        vd.StripBlockSize = sectors;
        EXPECT_EQ(lineOf(vd, "Stripe Block Size:"), word);
    }
    vd.SectorSize = 0;
    EXPECT_EQ(lineOf(vd, "Sector Size:"), "none");
    EXPECT_EQ(lineOf(vd, "size:"), "0 GB");
}

TEST_F(InfoVd, OnlyOneIsImportable)
{
    NVME_VD_Info vd = someVd();
    for (const QRX_U8 value : {QRX_U8{0}, QRX_U8{2}, QRX_U8{255}}) {
        vd.Importable = value;
        EXPECT_EQ(lineOf(vd, "Importable:"), "No");
    }
}

TEST_F(InfoVd, AFullNameIsShownWhole)
{
    NVME_VD_Info vd = someVd();
    setText(vd.Name, "0123456789abcdef");
    vd.NSIDs[0] = 'X';
    EXPECT_EQ(lineOf(vd, "Name:"), "0123456789abcdef");
    setText(vd.Name, "  two", '\0');
    EXPECT_EQ(lineOf(vd, "Name:"), "  two");
    setText(vd.Name, "\x1b]0;x\x07", '\0');
    EXPECT_EQ(lineOf(vd, "Name:"), "?]0;x?");
}

TEST_F(InfoVd, MoreMembersThanTheRecordHoldsEndWithIt)
{
    NVME_VD_Info vd = someVd();
    vd.MemberCount = 255;
    for (QRX_U16 i = 0; i < 32; ++i) {
        vd.PDIDs[i] = i;
    }
    std::string all;
    for (int i = 0; i < 32; ++i) {
        all += std::to_string(i) + " ";
    }
    EXPECT_EQ(lineOf(vd, "PDs:"), all);
    EXPECT_EQ(lineOf(vd, "PD Count:"), "255");
    vd.MemberCount = 0;
    EXPECT_EQ(lineOf(vd, "PDs:"), "");
}

TEST_F(InfoVd, OneBasedIds)
{
    g_oneBaseMode = 1;
    EXPECT_EQ(lineOf(someVd(), "VD ID:"), "7");
    EXPECT_EQ(lineOf(someVd(), "PDs:"), "3 ? 301 ");
}

TEST_F(InfoVd, ActivityWords)
{
    const auto line = [](const NVME_BGA_STATUS& record) {
        return outcomeOf([&] {
                   VD_PrintBGAStatus(record);
                   return 0;
               })
            .stream;
    };
    const char* const words[] = {"unknown BGA action", "Initializing",  "Initializing",
                                 "Rebuilding",         "Synchronizing", "Migrating",
                                 "unknown BGA action", "Media Patrol",  "unknown BGA action"};
    for (QRX_U8 type = 0; type < 9; ++type) {
        EXPECT_EQ(line(bga(type, 7, 1)), std::string("BGA progress:        ") + words[type] + " is running in 7%\n");
        EXPECT_EQ(line(bga(type, 255, 2)), std::string("BGA progress:        ") + words[type] + " is pause in 255%\n");
    }
    EXPECT_EQ(line(bga(1, 7, 0)), "");
    EXPECT_EQ(line(bga(1, 7, 3)), "");
}

TEST_F(InfoVd, DebugLines)
{
    dbg_enable = 1;
    machine.expect(vdFetch(1).data(envelope(someVd())));
    machine.expect(bgaFetch(1).data(envelope(bga(1, 1, 0))));
    EXPECT_EQ(command({"info", "-o", "vd", "-i", "1"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000000e2\nCDW[14]: 0x00000001\ncmd_status: 0x0\n" + kVdPage +
                  "CDW[0] : 0x000000e2\nCDW[12]: 0x000002e3\nCDW[14]: 0x00000001\ncmd_status: 0x0\n");
}

}  // namespace
