// The vendor commands: each with the record it answers with, and with each way it ends.
#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

// A controller with another value in every field.
constexpr std::string_view kDistinct = R"json({
  "controllers": [{
    "number": 0, "address": "0000:0b:0c.5", "serial": "SERIAL-OF-20-LETTERS",
    "adapter": {
      "uefi": {"major": 11, "minor": 12, "oem": 13, "build": 14},
      "firmware": {"major": 21, "minor": 22, "oem": 23, "build": 24},
      "subsystem_vendor_id": 4660, "subsystem_device_id": 22136,
      "stepping": ["stepping-b"], "stepping_number": 9,
      "ports": 31, "max_pd_per_vd": 32, "max_vd": 33, "max_pd": 34, "max_ns_per_vd": 35, "max_ns": 36,
      "visible_vf_host0": 37, "visible_vf_host1": 38, "flash_size": 3735928559, "buffer_size": 51966,
      "raid_modes": ["raid1", "raid60"], "cache": "on", "background": ["rebuild", "media-patrol"],
      "stripes": ["512KB"], "sku": "A", "features": ["raid", "nmic"], "oem_features": 305419896,
      "build_date": "TWELVEDIGITS",
      "pcie": [{"type": "end-point", "id": 41, "speed": "2.5Gb/s", "width": 42},
               {"type": "root-complex", "id": 43, "speed": 99, "width": 44}]
    },
    "config": {"auto_rebuild": 1, "rate": "low"},
    "settings": {
      "debug_dump": true, "flash_tools": false, "sriov": true, "vpd_in_spi": false, "errors_only": true, "dsp": false,
      "nguid_offset": 287454020, "fuse_id": 61, "max_vf": 62, "max_namespaces": 63, "virtual_namespaces": true,
      "firmware_slot": 64, "gpio_enable": 2864434397, "gpio_levels": 1432778632, "gpio_values": 252579084,
      "gpio_from_settings": true, "gpio_inverse": 65
    },
    "drives": [
      {"id": 3, "model": "MODEL THREE", "serial": "S3", "firmware": "F3", "sector_size": 4096, "sectors": 81985529216486895,
       "slot": 71, "nsid": 72, "temperature": 73, "critical_warning": 1, "failed": true, "importable": true},
      {"id": 5, "activity": {"type": "pd-media-patrol", "duration_ms": 1000, "elapsed_ms": 879}},
      {"id": 7}
    ],
    "virtual_disks": [
      {"id": 4, "name": "NAME FOUR", "status": "partially-optimal", "importable": true, "raid_mode": "raid60",
       "members": [3, 65535, 5], "parity_disks": 81, "stripe": 1024, "sectors": 72623859790382856, "sector_size": 4096,
       "activity": {"type": "migrate", "state": "paused", "duration_ms": 200000, "elapsed_ms": 183999}},
      {"id": 9, "raid_mode": "raid0", "members": []}
    ],
    "namespaces": [
      {"nsid": 6, "parent_id": 4, "sectors": 1311768467463790320, "sector_size": 4096, "waiting": true, "active": false,
       "owner": 91},
      {"nsid": 8, "parent": "pd", "parent_id": 7, "shared": true, "owner": 92}
    ]
  }]
})json";

TEST(VendorCommands, AdapterInfoIsTheWholeRecordBehindAnEnvelope)
{
    Rig rig = Rig::of_text(kDistinct);
    EXPECT_EQ(rig.vendor(0x00E0).status, kGood);
    NVME_Adapter_Info expected{};
    expected.UEFIVersion = {11, 12, 13, 14};
    expected.FirmwareVersion = {21, 22, 23, 24};
    expected.VID = 0x7A51;
    expected.SVID = 0x1234;
    expected.DID = 0x3317;
    expected.SDID = 0x5678;
    expected.RevisionID = 0x29;
    expected.PortCount = 31;
    expected.MaxPDPerVD = 32;
    expected.MaxVD = 33;
    expected.MaxPD = 34;
    expected.MaxNSPerVD = 35;
    expected.MaxNS = 36;
    expected.VisibleVfNum[0] = 37;
    expected.VisibleVfNum[1] = 38;
    expected.MaxFlashSize = 0xDEADBEEF;
    expected.MaxBufferSize = 0xCAFE;
    expected.SupportRAIDMode = 0x82;
    expected.Cache = 1;
    expected.SupportBGAFeature = 0x12;
    expected.StripeSizeSupported = 4;
    expected.SKUID = 3;
    expected.Features = 0x24;
    expected.OEMFeatures = 0x12345678;
    expected.PCIeInfo[0] = {0, 41, 1, 42};
    expected.PCIeInfo[1] = {1, 43, 99, 44};
    expected.PCIeInfo[2].Type = 255;
    std::memcpy(expected.BuildDate, "TWELVEDIGITS", 12);
    expected.FunctionNumber = 5;
    expected.DeviceNumber = 12;
    expected.BusNumber = 11;
    EXPECT_EQ(rig.bytes(0, 8), envelope(0));
    EXPECT_EQ(rig.bytes(8, sizeof(expected)), raw(expected));
    EXPECT_TRUE(rig.all_from(8 + sizeof(expected), 0));
}

TEST(VendorCommands, AdapterInfoTellsARoutingNumberAsOneNumber)
{
    Rig rig("gallery");
    EXPECT_EQ(rig.vendor(0x00E0, 0, 0, {1, 0}).status, kGood);
    const auto info = rig.at<NVME_Adapter_Info>(8);
    EXPECT_EQ(info.BusNumber, 0xC3);
    EXPECT_EQ(info.DeviceNumber, 0);
    EXPECT_EQ(info.FunctionNumber, 2 << 3 | 1);
    EXPECT_TRUE(std::all_of(std::begin(info.PCIeInfo), std::end(info.PCIeInfo),
                            [](const NVME_PCIe_Info& port) { return port.Type != kPcieEndOfList; }));
}

TEST(VendorCommands, ConfigIsReadAndWritten)
{
    Rig rig = Rig::of_text(kDistinct);
    EXPECT_EQ(rig.vendor(0x01E0).status, kGood);
    EXPECT_EQ(rig.bytes(0, 24), envelope(0) + std::string("\1\x20", 2) + std::string(14, '\0'));
    EXPECT_EQ(rig.vendor(0x02E0, 0x0200).status, kGood);
    EXPECT_TRUE(rig.all_from(0, kUntouched));
    EXPECT_EQ(rig.controller().config, (AdapterConfig{0, 2}));
    EXPECT_EQ(rig.vendor(0x02E0, 0x0001).status, kGood);
    EXPECT_EQ(rig.controller().config, (AdapterConfig{1, 0}));
}

TEST(VendorCommands, ConfigWithAnUnknownSettingIsAnInvalidParameter)
{
    Rig rig = Rig::of_text(kDistinct);
    EXPECT_EQ(rig.vendor(0x02E0, 0x0002).status, 0x704U);
    EXPECT_EQ(rig.vendor(0x02E0, 0x0301).status, 0x704U);
    EXPECT_EQ(rig.controller().config, (AdapterConfig{1, 32}));
}

TEST(VendorCommands, AnUnknownRateThatIsThePresentOneIsKept)
{
    Rig rig("gallery");
    EXPECT_EQ(rig.vendor(0x02E0, 0x0901, 0, {1, 0}).status, kGood);
    EXPECT_EQ(rig.controller(1).config, (AdapterConfig{1, 9}));
}

TEST(VendorCommands, AnUnknownAutoRebuildThatIsThePresentOneIsKept)
{
    Rig rig = Rig::of_text(R"({"controllers": [{"config": {"auto_rebuild": 2, "rate": "high"}}]})");
    EXPECT_EQ(rig.vendor(0x02E0, 0x2002).status, kGood);
    EXPECT_EQ(rig.controller().config, (AdapterConfig{2, 32}));
    EXPECT_EQ(rig.vendor(0x02E0, 0x2003).status, 0x704U);
    EXPECT_EQ(rig.vendor(0x02E0, 0x2001).status, kGood);
    EXPECT_EQ(rig.vendor(0x02E0, 0x2002).status, 0x704U) << "it is gone";
    EXPECT_EQ(rig.controller().config, (AdapterConfig{1, 32}));
}

TEST(VendorCommands, SetTimePutsItsThreePiecesTogether)
{
    Rig rig("raid");
    EXPECT_EQ(rig.vendor(0x03E0, 0x5678, 0x9ABC0001).status, kGood);
    EXPECT_TRUE(rig.all_from(0, kUntouched));
    EXPECT_EQ(rig.controller().clock.seconds(), 0x19ABC5678ULL);
}

TEST(VendorCommands, HbaInfoComesWithoutAnEnvelope)
{
    Rig rig = Rig::of_text(kDistinct);
    EXPECT_EQ(rig.vendor(0x0FE0).status, kGood);
    _hba_info expected{};
    std::memcpy(expected.header.signature, "HALIIMGF", 8);
    expected.header.version = 1;
    expected.header.section_hdr_size = 64;
    expected.header.section_table_offset = 64;
    expected.header.image_size = 456;
    expected.gpio.switch_setting = {};
    expected.gpio.switch_setting.enable = 0xAABBCCDD;
    expected.gpio.switch_setting.active_high_low = 0x55667788;
    expected.gpio.switch_setting.default_value = 0x0F0E0D0C;
    expected.gpio.switch_setting.set_default_from_hba_info = 1;
    expected.gpio.switch_setting.inversed_gpio_8_9_10_11 = 65;
    expected.raid.Raid_Setting.Auto_Rebuild_On = 1;
    expected.raid.Raid_Setting.RAID_Feature = 0x12;
    expected.raid.Raid_Setting.Bga_Rate = 32;
    expected.raid.Raid_Setting.RAID_Mode = 1;
    _hba_info_adapter_page& page = expected.adatper;
    page.debug_dump = 1;
    page.sriov_enable = 1;
    page.nguid_offset = 0x11223344;
    page.vendor_id = 0x7A51;
    page.device_id = 0x3317;
    page.subvendor_id = 0x1234;
    page.subdevice_id = 0x5678;
    std::memcpy(page.id_ctrl_sn, "SERIAL-OF-20-LETTERS", 20);
    page.fuse_id = 61;
    page.max_vf_num = 62;
    page.max_fe_ns_num = 63;
    page.support_vir_ns = 1;
    page.fw_log_level = 1;
    page.fwdl.slot_select = 64;
    const auto info = rig.at<_hba_info>(0);
    expected.header.chk_sum = info.header.chk_sum;
    EXPECT_EQ(raw(info), raw(expected));
    QRX_U32 sum = 0;
    for (std::size_t i = 0; i < sizeof(info); i += 4) {
        sum += rig.at<QRX_U32>(i);
    }
    EXPECT_EQ(sum, 0U);
    EXPECT_TRUE(rig.all_from(sizeof(info), 0));
    EXPECT_EQ(rig.page[450], 1) << "where the tool looks for SR-IOV";
}

TEST(VendorCommands, PdInfoIsTheWholeRecord)
{
    Rig rig = Rig::of_text(kDistinct);
    EXPECT_EQ(rig.vendor(0x00E1, 3).status, kGood);
    NVME_PD_Info expected{};
    expected.ID = 3;
    expected.Status = kPdAssigned | kPdImportable | kPdFailed | kPdSmartWarning;
    std::memcpy(expected.Model, "MODEL THREE                             ", 40);
    std::memcpy(expected.SerialNo, "S3                  ", 20);
    expected.SectorSize = 4096;
    std::memcpy(expected.FWVersion, "F3      ", 8);
    expected.LBA = 81985529216486895;
    expected.SSDAdapterID = 71;
    expected.SSDNSID = 72;
    expected.Temperature[0] = 73;
    EXPECT_EQ(rig.bytes(0, 8), envelope(0));
    EXPECT_EQ(rig.bytes(8, sizeof(expected)), raw(expected));
    EXPECT_TRUE(rig.all_from(8 + sizeof(expected), 0));
}

TEST(VendorCommands, PdStatusTellsUseAndPatrol)
{
    Rig rig = Rig::of_text(kDistinct);
    rig.vendor(0x00E1, 5);
    EXPECT_EQ(rig.at<NVME_PD_Info>(8).Status, kPdAssigned | kPdMediaPatrol);
    rig.vendor(0x00E1, 7);
    EXPECT_EQ(rig.at<NVME_PD_Info>(8).Status, 0);
    Rig pair("pair");
    pair.vendor(0x00E1, 3, 0, {3, 0});
    EXPECT_EQ(pair.at<NVME_PD_Info>(8).Status, kPdAssigned | kPdMediaPatrol) << "patrol of its virtual disk";
}

TEST(VendorCommands, AnAbsentPdIsTheFirmwaresVerdictAndNoNvmeError)
{
    Rig rig = Rig::of_text(kDistinct);
    for (const QRX_U32 id : {0U, 4U, 255U, 65535U, 0x10003U, 0xFFFFFFFFU}) {
        EXPECT_EQ(rig.vendor(0x00E1, id).status, kGood);
        EXPECT_EQ(rig.bytes(0, 8), envelope(6));
        EXPECT_TRUE(rig.all_from(8, 0));
    }
    EXPECT_EQ(rig.controller().errors.count, 0U);
}

TEST(VendorCommands, VdInfoIsTheWholeRecord)
{
    Rig rig = Rig::of_text(kDistinct);
    EXPECT_EQ(rig.vendor(0x00E2, 4).status, kGood);
    NVME_VD_Info expected{};
    expected.ID = 4;
    expected.Status = 5;
    expected.Importable = 1;
    expected.RaidMode = 0x60;
    expected.MemberCount = 3;
    expected.LBA = 72623859790382856;
    expected.PDIDs[0] = 3;
    expected.PDIDs[1] = 65535;
    expected.PDIDs[2] = 5;
    expected.NumParityDisk = 81;
    expected.StripBlockSize = 1024;
    expected.SectorSize = 4096;
    std::memcpy(expected.Name, "NAME FOUR", 9);
    expected.NSIDs[0] = 6;
    EXPECT_EQ(rig.bytes(0, 8), envelope(0));
    EXPECT_EQ(rig.bytes(8, sizeof(expected)), raw(expected));
    EXPECT_TRUE(rig.all_from(8 + sizeof(expected), 0));
}

TEST(VendorCommands, AnAbsentVdIsTheFirmwaresVerdict)
{
    Rig rig = Rig::of_text(kDistinct);
    for (const QRX_U32 cdw12 : {0x00E2U, 0x02E3U}) {
        for (const QRX_U32 id : {0U, 5U, 255U, 0x10004U}) {
            EXPECT_EQ(rig.vendor(cdw12, id).status, kGood);
            EXPECT_EQ(rig.bytes(0, 8), envelope(7));
            EXPECT_TRUE(rig.all_from(8, 0));
        }
    }
    EXPECT_EQ(rig.controller().errors.count, 0U);
}

TEST(VendorCommands, BackgroundStatusTellsTheActivityOrNone)
{
    Rig rig = Rig::of_text(kDistinct);
    EXPECT_EQ(rig.vendor(0x02E3, 4).status, kGood);
    EXPECT_EQ(rig.bytes(0, 16), envelope(0) + std::string("\0\5\4\x5b\2\0\0\0", 8));
    EXPECT_TRUE(rig.all_from(16, 0));
    EXPECT_EQ(rig.vendor(0x02E3, 9).status, kGood);
    EXPECT_EQ(rig.bytes(0, 16), envelope(0) + std::string("\0\0\x9\0\0\0\0\0", 8));
}

NVME_NS_Info expected_ns6()
{
    NVME_NS_Info ns{};
    ns.NSID = 6;
    ns.device_type = 1;
    ns.ID = 4;
    ns.Status = kNsValid | kNsWaitsForAttach;
    ns.VDStatus = 5;
    ns.LBADataSize = 12;
    ns.SectorSize = 4096;
    ns.LBA = 1311768467463790320;
    return ns;
}

NVME_NS_Info expected_ns8()
{
    NVME_NS_Info ns{};
    ns.NSID = 8;
    ns.ID = 7;
    ns.Status = kNsValid | kNsActive;
    ns.LBADataSize = 9;
    ns.SectorSize = 512;
    ns.LBA = 1875385008;
    return ns;
}

TEST(VendorCommands, NsListHoldsAllNamespaces)
{
    Rig rig = Rig::of_text(kDistinct);
    EXPECT_EQ(rig.vendor(0x00E5).status, kGood);
    EXPECT_EQ(rig.bytes(0, 8 + 2 * 96), envelope(0) + raw(expected_ns6()) + raw(expected_ns8()));
    EXPECT_TRUE(rig.all_from(8 + 2 * 96, 0));
}

TEST(VendorCommands, NsListOfAVdHoldsItsNamespacesAlone)
{
    Rig rig = Rig::of_text(kDistinct);
    for (const QRX_U32 vd : {4U, 255U}) {
        EXPECT_EQ(rig.vendor(vd << 16 | 0x01E5).status, kGood);
        EXPECT_EQ(rig.bytes(0, 8 + 96), envelope(0) + raw(expected_ns6()));
        EXPECT_TRUE(rig.all_from(8 + 96, 0));
    }
    EXPECT_EQ(rig.vendor(9 << 16 | 0x01E5).status, kGood);
    EXPECT_EQ(rig.bytes(0, 8), envelope(0));
    EXPECT_TRUE(rig.all_from(8, 0));
    EXPECT_EQ(rig.vendor(3 << 16 | 0x01E5).status, kGood);
    EXPECT_EQ(rig.bytes(0, 8), envelope(7));
}

TEST(VendorCommands, NsListFillsAPageWithItsMost)
{
    std::string text = R"({"controllers": [{"adapter": {"max_ns": 42}, "drives": [{"id": 0}],
        "virtual_disks": [{"id": 0, "members": [0]}], "namespaces": [)";
    for (int i = 1; i <= 42; ++i) {
        text += (i == 1 ? "" : ", ") + std::string("{\"nsid\": ") + std::to_string(i) + "}";
    }
    Rig rig = Rig::of_text(text + "]}]}");
    EXPECT_EQ(rig.vendor(0x00E5).status, kGood);
    EXPECT_EQ(rig.at<NVME_NS_Info>(8 + 41 * 96).NSID, 42);
    EXPECT_TRUE(rig.all_from(8 + 42 * 96, 0));
}

TEST(VendorCommands, NsSharingTellsTheOwnerOfAPrivateNamespace)
{
    Rig rig = Rig::of_text(kDistinct);
    EXPECT_EQ(rig.vendor(6 << 16 | 0x05E5).status, kGood);
    EXPECT_EQ(rig.bytes(0, 16), envelope(0) + std::string("\0\x5b\0\0\0\0\0\0", 8));
    EXPECT_EQ(rig.vendor(8 << 16 | 0x05E5).status, kGood);
    EXPECT_EQ(rig.bytes(0, 16), envelope(0) + std::string("\1\0\0\0\0\0\0\0", 8));
    EXPECT_EQ(rig.vendor(7 << 16 | 0x05E5).status, kGood);
    EXPECT_EQ(rig.bytes(0, 16), envelope(4) + std::string(8, '\0'));
}

TEST(VendorCommands, WithoutRaidTheRaidCommandsAreNotSupported)
{
    Rig rig("jbof");
    for (const QRX_U32 cdw12 : {0x01E0U, 0x00E2U, 0x02E3U, 0x01E5U}) {
        EXPECT_EQ(rig.vendor(cdw12).status, kGood);
        EXPECT_EQ(rig.bytes(0, 8), envelope(5)) << std::hex << cdw12;
        EXPECT_TRUE(rig.all_from(8, 0));
    }
    EXPECT_EQ(rig.vendor(0x02E0, 0x0201).status, 0x705U);
}

TEST(VendorCommands, UnknownOnesAreAnInvalidFieldAndTouchNothing)
{
    Rig rig("raid");
    for (const QRX_U32 cdw12 : {0x00U, 0x0CE0U, 0x00E6U, 0xFFFFU}) {
        EXPECT_EQ(rig.vendor(cdw12).status, 0x002U);
        EXPECT_TRUE(rig.all_from(0, kUntouched));
    }
    EXPECT_EQ(rig.controller().errors.count, 4U);
}

TEST(VendorCommands, UnknownVendorOpcodesAreInvalid)
{
    Rig rig("raid");
    for (const int opcode : {0xC0, 0xC6, 0xC4, 0xFF}) {
        nvme_admin_cmd command{};
        command.opcode = static_cast<QRX_U8>(opcode);
        EXPECT_EQ(rig.admin(command).status, 0x001U);
    }
}

TEST(VendorCommands, AnswersAreCutToTheHostsBuffer)
{
    Rig rig("raid");
    for (const std::size_t length : {std::size_t{0}, std::size_t{5}, std::size_t{8}, std::size_t{30}}) {
        rig.page.fill(kUntouched);
        nvme_admin_cmd command{};
        command.opcode = 0xE2;
        command.cdw12 = 0x00E0;
        EXPECT_EQ(rig.machine().admin({}, command, std::span(rig.page).first(length)).status, kGood);
        EXPECT_TRUE(rig.all_from(length, kUntouched));
    }
    EXPECT_EQ(rig.at<QRX_U16>(8 + 16), 0x7A51);
}

TEST(VendorCommands, AnSsdRefusesThemAll)
{
    Rig rig("foreign");
    EXPECT_EQ(rig.vendor(0x00E0, 0, 0, {0, 0}).status, 0x001U);
    EXPECT_TRUE(rig.all_from(0, kUntouched));
    EXPECT_EQ(rig.vendor(0x00E0, 0, 0, {1, 0}).status, kGood);
}

TEST(VendorCommands, ANodeThatIsNotThereIsNoDevice)
{
    Rig rig("raid");
    EXPECT_EQ(rig.vendor(0x00E0, 0, 0, {7, 0}).error, ENODEV);
    EXPECT_EQ(rig.vendor(0x00E0, 0, 0, {0, 3}).error, ENODEV);
    EXPECT_EQ(rig.vendor(0x00E0, 0, 0, {0, 2}).error, 0);
}

}  // namespace

}  // namespace qrx::sim
