// `info -o hba`: the page of a controller.
#include <cstring>

#include "tests/unit/cli/info_fixture.h"

namespace {

using namespace qrx::test;

NVME_Adapter_Info someAdapter()
{
    NVME_Adapter_Info info{};
    info.UEFIVersion = {91, 92, 93, 94};
    info.FirmwareVersion = {1, 20, 3, 45};
    info.VID = 0x7A51;
    info.SVID = 0xA0B1;
    info.DID = 0x3317;
    info.SDID = 0xC2D3;
    info.RevisionID = 0x13;
    info.PortCount = 4;
    info.MaxPDPerVD = 32;
    info.MaxVD = 16;
    info.MaxPD = 8;
    info.MaxNSPerVD = 12;
    info.MaxNS = 64;
    info.VisibleVfNum[0] = 3;
    info.VisibleVfNum[1] = 1;
    info.SupportRAIDMode = 0xFF;
    info.Cache = 1;
    info.SupportBGAFeature = 0x1F;
    info.StripeSizeSupported = 7;
    info.SKUID = 0;
    info.Features = 0x3E;
    info.PCIeInfo[0] = {kPcieEndPoint, 0, 3, 8};
    info.PCIeInfo[1] = {kPcieRootComplex, 2, 2, 4};
    info.PCIeInfo[2] = {7, 9, 1, 1};
    info.PCIeInfo[3] = {kPcieRootComplex, 5, 1, 3};
    info.PCIeInfo[4] = {kPcieEndOfList, 0, 0, 0};
    info.PCIeInfo[5] = {kPcieEndPoint, 1, 1, 1};
    info.FunctionNumber = 6;
    info.DeviceNumber = 0x1A;
    info.BusNumber = 0x2B;
    return info;
}

// The page of someAdapter() at /dev/nvme1 in pieces, so that each test says what it changes.
const std::string kHead =
    "NVMe Controller ID                   1\n"
    "Bus Device Fun:                      03:00.00\n";
const std::string kDevice = "Device:                              /dev/nvme1\n";
const std::string kIdentity =
    "Firmware Version:                    1.20.3.0045\n"
    "VID:                                 0x7a51\n"
    "SVID:                                0xa0b1\n"
    "DID:                                 0x3317\n"
    "SDID:                                0xc2d3\n"
    "RevisionID:                          A3V\n"
    "Port Count:                          4\n";
const std::string kRaidLimits =
    "Max PD of Per VD:                    32\n"
    "Max VD:                              16\n"
    "Max PD:                              8\n"
    "Max NS of Per VD:                    12\n"
    "Max NS:                              64\n";
const std::string kRaidFeatures =
    "Supported RAID Mode:                 RAID0 RAID1 RAID5 RAID6 RAID10 RAID50 RAID60 JBOD \n"
    "Cache:                               On \n"
    "Supported BGA Features:              Initialization Rebuild Sync Migrate MediaPatrol \n"
    "Support Stripe Size:                 128KB 256KB 512KB \n"
    "Supported Features:                  Import RAID Namespace Dump NMIC \n";
const std::string kPorts =
    "End Point:                           0\n"
    "  Link width:                        8x\n"
    "  PCIe speed:                        8Gb/s\n"
    "Root Complex:                        2\n"
    "  Link width:                        4x\n"
    "  PCIe speed:                        5Gb/s\n"
    "Root Complex:                        5\n"
    "  Link width:                        Unknown\n"
    "  PCIe speed:                        2.5Gb/s\n";

std::string hostLine(int id)
{
    return "Host ID:                             " + std::to_string(id) + "\n";
}

class InfoAdapter : public InfoTest {
protected:
    // Expects what the page of a controller asks for besides its record, without SR-IOV.
    void expectPlainPage(unsigned slot = 0)
    {
        machine.expect(settingsFetch().data(sriov(0)));
        machine.expect(identify().on(slot).data(hostId(0x0102)));
    }
    // One controller's page printed from `info` as it comes.
    std::string printed(const NVME_Adapter_Info& info, bool all = false)
    {
        return outcomeOf([&] {
                   Adapter_PrintInfo(0, info, all);
                   return 0;
               })
            .stream;
    }
    // The line of the page that begins with `label`.
    std::string lineOf(const NVME_Adapter_Info& info, const std::string& label)
    {
        expectPlainPage();
        const std::string page = printed(info);
        const std::size_t at = page.find("\n" + label);
        return at == std::string::npos ? "" : page.substr(at + 1, page.find('\n', at + 1) - at - 1);
    }
};

TEST_F(InfoAdapter, ListsEveryControllerAndTheTotal)
{
    machine.expect(adapterFetch().data(envelope(someAdapter())));
    expectPlainPage(0);
    machine.expect(adapterFetch().on(1).data(envelope(someAdapter())));
    expectPlainPage(1);
    const std::string tail = kIdentity + kRaidLimits + hostLine(0x0102) + kRaidFeatures + kPorts + "\n";
    EXPECT_EQ(command({"info", "-o", "hba"}), (Outcome{0, kHead + kDevice + tail +
                                                              "NVMe Controller ID                   3\n"
                                                              "Bus Device Fun:                      04:00.00\n"
                                                              "Device:                              /dev/nvme3\n" +
                                                              tail + "Total # of HBA:      2\n\n"}));
}

TEST_F(InfoAdapter, TheControllerNamedAtStartIsShownAloneWithoutATotal)
{
    gSpecificAdapterFlag = 1;
    gCurrentAdapter = 1;
    machine.expect(adapterFetch().on(1).data(envelope(someAdapter())));
    machine.expect(settingsFetch().on(1).data(sriov(0)));
    machine.expect(identify().on(1).data(hostId(1)));
    EXPECT_EQ(command({"info", "-o", "hba"}),
              (Outcome{0,
                       "NVMe Controller ID                   3\n"
                       "Bus Device Fun:                      04:00.00\n"
                       "Device:                              /dev/nvme3\n" +
                           kIdentity + kRaidLimits + hostLine(1) + kRaidFeatures + kPorts}));
}

TEST_F(InfoAdapter, FailuresInTheListAreToldAndStillCounted)
{
    machine.expect(adapterFetch().status(2));
    machine.expect(adapterFetch().on(1).data(envelope(someAdapter(), 0x1F)));
    EXPECT_EQ(command({"info", "-o", "hba"}), (Outcome{0,
                                                       "\nUnable to get info of NVMe Controller 0, BDF:03:00.00\n"
                                                       "\nUnable to get info of Adapter, cmd_status:0x1f\n"
                                                       "Total # of HBA:      2\n\n",
                                                       "Invalid Field in Command (Status Code: 0x2)\n"}));
}

TEST_F(InfoAdapter, FailuresOfTheControllerNamedAtStart)
{
    gSpecificAdapterFlag = 1;
    machine.expect(adapterFetch().status(2));
    EXPECT_EQ(command({"info", "-o", "hba"}).stream, "\nUnable to get info of NVMe Controller, BDF:03:00.00\n\n");
    machine.expect(adapterFetch().data(envelope(someAdapter(), 3)));
    EXPECT_EQ(command({"info", "-o", "hba"}).stream, "\nUnable to get info of Adapter, cmd_status:0x3\n");
    gCurrentAdapter = 1;
    machine.expect(adapterFetch().on(1).error(5));
    EXPECT_EQ(command({"info", "-o", "hba"}).stream, "\nUnable to get info of NVMe Controller, BDF:Not found\n\n");
    gCurrentAdapter = 2;
    EXPECT_EQ(command({"info", "-o", "hba"}), (Outcome{0, "\nUnable to get info of NVMe Controller\n"}));
    gCurrentAdapter = 255;
    EXPECT_EQ(command({"info", "-o", "hba"}), (Outcome{0, "\nUnable to get info of NVMe Controller\n"}));
}

TEST_F(InfoAdapter, TheSignatureIsNotLookedAt)
{
    gSpecificAdapterFlag = 1;
    Bytes page = envelope(someAdapter());
    page[0] = 'x';
    machine.expect(adapterFetch().data(page));
    expectPlainPage();
    EXPECT_EQ(command({"info", "-o", "hba"}).stream.substr(0, kHead.size()), kHead);
}

TEST_F(InfoAdapter, JbofHasItsOwnLines)
{
    NVME_Adapter_Info info = someAdapter();
    info.Features = 0;
    expectPlainPage();
    EXPECT_EQ(printed(info), kHead + kDevice + kIdentity +
                                 "Max PD:                              8\n"
                                 "Max NS of Per PD:                    12\n"
                                 "Max NS:                              64\n" +
                                 hostLine(0x0102) +
                                 "Supported RAID Mode:                 Not Support\n"
                                 "Cache:                               On \n"
                                 "Supported Features:                  JBOF \n" +
                                 kPorts);
}

TEST_F(InfoAdapter, TheHostIdIsShiftedAndAFailureIsTold)
{
    g_oneBaseMode = 1;
    machine.expect(settingsFetch().data(sriov(0)));
    machine.expect(identify().data(hostId(7)));
    EXPECT_NE(printed(someAdapter()).find("\n" + hostLine(8)), std::string::npos);

    g_oneBaseMode = 0;
    machine.expect(settingsFetch().data(sriov(0)));
    machine.expect(identify().status(6).data(hostId(7)));
    EXPECT_NE(printed(someAdapter())
                  .find("Max NS:                              64\n\nFailed to get controller.\n" + hostLine(0)),
              std::string::npos);
}

TEST_F(InfoAdapter, VirtualFunctionsOfHostZero)
{
    machine.expect(settingsFetch().data(sriov(1)));
    machine.expect(identify().data(hostId(0)));
    machine.expect(identify().data(hostId(0)));
    machine.expect(identify().data(hostId(0)));
    EXPECT_EQ(printed(someAdapter()).substr(0, kHead.size() + 38 + std::size_t{3} * 46 + kDevice.size()),
              (kHead +
               "Visible VF Num:                      3\n"
               "   VF BDF:                           2b:1a.07\n"
               "   VF BDF:                           2b:01.00\n"
               "   VF BDF:                           2b:01.01\n" +
               kDevice + kIdentity)
                  .substr(0, kHead.size() + 38 + std::size_t{3} * 46 + kDevice.size()));
}

TEST_F(InfoAdapter, VirtualFunctionsOfTheCurrentControllersHostOne)
{
    gCurrentAdapter = 1;
    machine.expect(settingsFetch().on(1).data(sriov(1)));
    machine.expect(identify().on(1).data(hostId(1)));
    machine.expect(identify().on(1).data(hostId(1)));
    machine.expect(identify().on(0).data(hostId(1)));
    EXPECT_NE(printed(someAdapter())
                  .find("Bus Device Fun:                      03:00.00\n"
                        "Visible VF Num:                      1\n"
                        "   VF BDF:                           2b:1a.07\n"
                        "Device:"),
              std::string::npos);
}

TEST_F(InfoAdapter, OtherHostsShowNoVirtualFunctions)
{
    machine.expect(settingsFetch().data(sriov(1)));
    for (int i = 0; i < 3; ++i) {
        machine.expect(identify().data(hostId(2)));
    }
    EXPECT_EQ(printed(someAdapter()).find("VF"), std::string::npos);
}

TEST_F(InfoAdapter, BothHostTestsAskAnew)
{
    machine.expect(settingsFetch().data(sriov(1)));
    machine.expect(identify().data(hostId(0)));
    machine.expect(identify().data(hostId(1)));
    machine.expect(identify().data(hostId(1)));
    NVME_Adapter_Info info = someAdapter();
    info.VisibleVfNum[0] = 0;
    EXPECT_NE(printed(info).find("Visible VF Num:                      0\n"
                                 "Visible VF Num:                      1\n"
                                 "   VF BDF:                           2b:1a.07\n"
                                 "Device:"),
              std::string::npos);
}

TEST_F(InfoAdapter, TheMostVirtualFunctions)
{
    machine.expect(settingsFetch().data(sriov(1)));
    for (int i = 0; i < 3; ++i) {
        machine.expect(identify().data(hostId(0)));
    }
    NVME_Adapter_Info info = someAdapter();
    info.FunctionNumber = 255;
    info.VisibleVfNum[0] = 255;
    const std::string page = printed(info);
    EXPECT_NE(page.find("Visible VF Num:                      255\n"
                        "   VF BDF:                           2b:20.00\n"),
              std::string::npos);
    EXPECT_NE(page.find("   VF BDF:                           2b:3f.06\nDevice:"), std::string::npos);
}

TEST_F(InfoAdapter, NoVirtualFunctionsWithoutSriovOrOnAnotherSku)
{
    NVME_Adapter_Info info = someAdapter();
    machine.expect(settingsFetch().data(sriov(2)));
    machine.expect(identify());
    EXPECT_EQ(printed(info).find("VF"), std::string::npos);
    machine.expect(settingsFetch().data(sriov(1)).status(2));
    machine.expect(identify());
    EXPECT_EQ(printed(info).find("VF"), std::string::npos);
    info.SKUID = 1;
    machine.expect(settingsFetch().data(sriov(1)));
    machine.expect(identify());
    EXPECT_EQ(printed(info).find("VF"), std::string::npos);
}

TEST_F(InfoAdapter, TheSubnqnOnlyWithAll)
{
    expectPlainPage();
    EXPECT_EQ(printed(someAdapter(), false).find("SUBNQN"), std::string::npos);
    machine.expect(adapterFetch().data(envelope(someAdapter())));
    expectPlainPage();
    gSpecificAdapterFlag = 1;
    EXPECT_EQ(command({"info", "-o", "hba", "--all"}).stream,
              kHead + kDevice + "SUBNQN:                              nqn.one\n" + kIdentity + kRaidLimits +
                  hostLine(0x0102) + kRaidFeatures + kPorts);
}

TEST_F(InfoAdapter, AnUnprintableSubnqnIsNotShown)
{
    ScriptedMachine bare;
    bare.addController({.path = "/dev/nvme1", .bdf = "03:00.00", .subnqn = "\x01text"});
    records[0].MaxPD = 2;
    const auto shown = [&] {
        bare.expect(identify().data(hostId(0)));
        const std::string page = printed(someAdapter(), true);
        const std::size_t at = page.find("SUBNQN:");
        return page.substr(at, page.find('\n', at) - at);
    };
    bare.expect(settingsFetch().data(sriov(0)));
    bare.expect(pdFetch(0).status(2));
    bare.expect(pdFetch(1).data(envelope(Bytes{}, 1)));
    EXPECT_EQ(shown(), "SUBNQN:                              Not found, make sure SSD is already installed");
    bare.expect(settingsFetch().data(sriov(0)));
    bare.expect(pdFetch(0));
    bare.expect(pdFetch(1).data(envelope(Bytes{})));
    EXPECT_EQ(shown(), "SUBNQN:                              Not found");
}

TEST_F(InfoAdapter, ASubnqnIsShownWithoutItsControlCharacters)
{
    ScriptedMachine bare;
    bare.addController({.path = "/dev/nvme1", .bdf = "03:00.00", .subnqn = "nqn\x1b[2J\x9b."});
    bare.expect(settingsFetch().data(sriov(0)));
    bare.expect(identify().data(hostId(0)));
    EXPECT_NE(printed(someAdapter(), true).find("SUBNQN:                              nqn?[2J?.\n"), std::string::npos);
}

TEST_F(InfoAdapter, CountsPdsOfAControllerInTheRangeOfTheCurrentOne)
{
    gCurrentAdapter = 1;
    records[1].MaxPD = 3;
    machine.expect(pdFetch(0).on(0).data(envelope(Bytes{})));
    machine.expect(pdFetch(1).on(0).data(Bytes{'Q', 'R', 'Y'}));
    machine.expect(pdFetch(2).on(0).data(envelope(Bytes{})));
    EXPECT_EQ(getTotoalPDCnt(0), 2);
    records[1].Features = 0;
    records[1].MaxNSPerVD = 1;
    machine.expect(pdFetch(0).on(0).data(envelope(Bytes{})));
    EXPECT_EQ(getTotoalPDCnt(0), 1);
    machine.expect(pdFetch(300).on(1).data(envelope(Bytes{})));
    EXPECT_EQ(checkHDExist(300, true, 1), 1);
}

TEST_F(InfoAdapter, DebugLinesOfAPdThatIsCounted)
{
    dbg_enable = 1;
    machine.expect(pdFetch(3).on(0).data(envelope(Bytes{})));
    EXPECT_EQ(outcomeOf([] { return int{checkHDExist(3, false, 0)}; }),
              (Outcome{1, "CDW[0] : 0x000000e2\nCDW[12]: 0x000000e1\nCDW[14]: 0x00000003\ncmd_status: 0x0\n"}));
}

TEST_F(InfoAdapter, Revisions)
{
    NVME_Adapter_Info info = someAdapter();
    struct Row {
        QRX_U8 revision;
        QRX_U8 sku;
        const char* text;
    };
    for (const Row& row : {Row{0x10, 0, "A0V"},
                           {0x1F, 1, "A15D"},
                           {0x2A, 2, "B10B"},
                           {0x31, 3, "A1A"},
                           {0xC5, 3, "A"},
                           {0x05, 4, ""},
                           {0x25, 255, "B5"}}) {
        info.RevisionID = row.revision;
        info.SKUID = row.sku;
        EXPECT_EQ(lineOf(info, "RevisionID:"), std::string("RevisionID:                          ") + row.text);
    }
}

TEST_F(InfoAdapter, EachBitHasItsWord)
{
    NVME_Adapter_Info info = someAdapter();
    const auto value = [&](const std::string& label) {
        const std::string line = lineOf(info, label);
        return line.size() > 37 ? line.substr(37) : "";
    };
    const char* const modes[] = {"RAID0 ", "RAID1 ", "JBOD ", "RAID10 ", "RAID5 ", "RAID50 ", "RAID6 ", "RAID60 ", ""};
    for (unsigned bit = 0; bit < 9; ++bit) {
        info.SupportRAIDMode = static_cast<QRX_U16>(1U << bit);
        EXPECT_EQ(value("Supported RAID Mode:"), modes[bit]);
    }
    const char* const activities[] = {"Initialization ", "Rebuild ", "Sync ", "Migrate ", "MediaPatrol ", ""};
    for (unsigned bit = 0; bit < 6; ++bit) {
        info.SupportBGAFeature = static_cast<QRX_U8>(1U << bit);
        EXPECT_EQ(value("Supported BGA Features:"), activities[bit]);
    }
    const char* const stripes[] = {"128KB ", "256KB ", "512KB ", ""};
    for (unsigned bit = 0; bit < 4; ++bit) {
        info.StripeSizeSupported = static_cast<QRX_U8>(1U << bit);
        EXPECT_EQ(value("Support Stripe Size:"), stripes[bit]);
    }
    const char* const features[] = {"JBOF ",      "Import JBOF ", "RAID ", "JBOF Namespace ",
                                    "JBOF Dump ", "JBOF NMIC ",   "JBOF "};
    for (unsigned bit = 0; bit < 7; ++bit) {
        info.Features = 1U << bit;
        EXPECT_EQ(value("Supported Features:"), features[bit]);
    }
    const char* const caches[] = {"Off ", "On ", "Unknown"};
    for (QRX_U8 cache = 0; cache < 3; ++cache) {
        info.Cache = cache;
        EXPECT_EQ(value("Cache:"), caches[cache]);
    }
}

TEST_F(InfoAdapter, LinkWords)
{
    NVME_Adapter_Info info = someAdapter();
    std::memset(info.PCIeInfo, 0xFF, sizeof(info.PCIeInfo));
    const auto words = [&](QRX_U8 speed, QRX_U8 width) {
        info.PCIeInfo[0] = {kPcieEndPoint, 0, speed, width};
        expectPlainPage();
        const std::string page = printed(info);
        return page.substr(page.find("  Link width:"));
    };
    const auto lines = [](const std::string& width, const std::string& speed) {
        return "  Link width:                        " + width + "\n  PCIe speed:                        " + speed +
               "\n";
    };
    EXPECT_EQ(words(1, 1), lines("1x", "2.5Gb/s"));
    EXPECT_EQ(words(2, 2), lines("2x", "5Gb/s"));
    EXPECT_EQ(words(3, 4), lines("4x", "8Gb/s"));
    EXPECT_EQ(words(0, 8), lines("8x", "Unknown"));
    EXPECT_EQ(words(4, 16), lines("Unknown", "Unknown"));
}

TEST_F(InfoAdapter, SixteenPortsAreAll)
{
    NVME_Adapter_Info info = someAdapter();
    for (QRX_U8 i = 0; i < 16; ++i) {
        info.PCIeInfo[i] = {kPcieRootComplex, i, 1, 1};
    }
    std::memset(info.BuildDate, 1, sizeof(info.BuildDate));  // the next bytes would read as one more port
    expectPlainPage();
    const std::string page = printed(info);
    std::size_t ports = 0;
    for (std::size_t at = 0; (at = page.find("Root Complex:", at)) != std::string::npos; ++at) {
        ++ports;
    }
    EXPECT_EQ(ports, 16U);
    EXPECT_NE(page.find("Root Complex:                        15\n  Link width:                        1x\n"
                        "  PCIe speed:                        2.5Gb/s\n"),
              std::string::npos);
}

TEST_F(InfoAdapter, DebugLines)
{
    dbg_enable = 1;
    gSpecificAdapterFlag = 1;
    Bytes page = envelope(someAdapter());
    page[1] = 'r';
    machine.expect(adapterFetch().data(page));
    expectPlainPage();
    EXPECT_EQ(command({"info", "-o", "hba"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000000e0\nCDW[14]: 0x00000000\ncmd_status: 0x0\n"
              "receive sign get 0x51 0x72 0x58 expect 0x51 0x52 0x58\n" +
                  kHead + "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x00000fe0\n" + kDevice + kIdentity +
                  kRaidLimits + hostLine(0x0102) + kRaidFeatures + kPorts);
}

}  // namespace
