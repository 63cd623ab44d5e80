// The OEM store, and all that shows what it holds.
#include <cstring>

#include "api/src/interface/wire/adapter.h"
#include "api/src/interface/wire/hba_info.h"
#include "api/src/interface/wire/nvme.h"
#include "api/src/interface/wire/oem.h"
#include "sim/firmware/text.h"
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

constexpr std::string_view kMachine = R"json({
  "controllers": [{
    "serial": "FACTORY-SN", "model": "FACTORY MODEL",
    "adapter": {"subsystem_vendor_id": 4660, "subsystem_device_id": 22136}
  }]
})json";

std::string padded(std::string text, std::size_t length)
{
    text.resize(length, ' ');
    return text;
}

QRX_U32 sum_of(const QRX_U8* bytes, std::size_t length)
{
    QRX_U32 sum = 0;
    for (std::size_t i = 0; i + 4 <= length; i += 4) {
        sum += bytes[i] | QRX_U32{bytes[i + 1]} << 8 | QRX_U32{bytes[i + 2]} << 16 | QRX_U32{bytes[i + 3]} << 24;
    }
    return sum;
}

class OemData : public testing::Test {
protected:
    void read_store() { EXPECT_EQ(rig.vendor(0x04E0).status, kGood); }
    // Sends the page as it is.
    QRX_U32 write_store(QRX_U32 cdw10 = 1023, QRX_U32 cdw12 = 0x13E0)
    {
        nvme_admin_cmd command{};
        command.opcode = 0xC7;
        command.cdw10 = cdw10;
        command.cdw12 = cdw12;
        return rig.machine().admin({}, command, rig.page).status;
    }
    // Makes the page a valid record of these, and distinct bytes behind it.
    void compose(const std::string& serial, const std::string& model)
    {
        for (std::size_t i = 0; i < rig.page.size(); ++i) {
            rig.page[i] = i < 256 ? 0 : static_cast<QRX_U8>(i % 251);
        }
        std::memcpy(rig.page.data(), "QRX \x88\0\x0c", 7);
        std::memcpy(rig.page.data() + 12, "\x22\x11\x44\x33", 4);
        pad_with_blanks(std::span(rig.page).subspan(76, 20), serial);
        pad_with_blanks(std::span(rig.page).subspan(96, 40), model);
        seal(136);
    }
    void seal(std::size_t length)
    {
        std::memset(rig.page.data() + 8, 0, 4);
        const QRX_U32 sum = 0U - sum_of(rig.page.data(), length);
        std::memcpy(rig.page.data() + 8, &sum, 4);
    }
    // Serial number, model and subsystem ids wherever they are told, which must be everywhere the same.
    std::string told()
    {
        EXPECT_EQ(rig.identify(1).status, kGood);
        const auto id = rig.at<nvme_id_ctrl>(0);
        EXPECT_EQ(rig.vendor(0x00E0).status, kGood);
        const auto info = rig.at<NVME_Adapter_Info>(8);
        EXPECT_EQ(rig.vendor(0x0FE0).status, kGood);
        const auto settings = rig.at<_hba_info>(0);
        const ControllerNode node = rig.controller().node();
        EXPECT_EQ(id.ssvid, info.SVID);
        EXPECT_EQ(settings.adatper.subvendor_id, info.SVID);
        EXPECT_EQ(settings.adatper.subdevice_id, info.SDID);
        EXPECT_EQ(raw(settings.adatper.id_ctrl_sn), raw(id.sn));
        EXPECT_EQ(padded(node.serial, 20), raw(id.sn));
        EXPECT_EQ(padded(node.model, 40), raw(id.mn));
        return node.serial + "|" + node.model + "|" + std::to_string(info.SVID) + "|" + std::to_string(info.SDID) +
               "|" + reinterpret_cast<const char*>(id.subnqn);
    }

    Rig rig = Rig::of_text(kMachine);
    const std::string factory = "FACTORY-SN|FACTORY MODEL|4660|22136|nqn.2026-01.com.example:qrx:FACTORY-SN";
};

TEST_F(OemData, LeavesTheFactoryWithARecordOfTheController)
{
    read_store();
    const auto record = rig.at<NVMEOEMData>(0);
    NVMEOEMData expected{};
    std::memcpy(expected.sign, "QRX ", 4);
    expected.data_length = 136;
    expected.data_offset = 12;
    expected.zerochksum = record.zerochksum;
    expected.subsystemVID = 4660;
    expected.subDevID = 22136;
    pad_with_blanks(expected.SN, "FACTORY-SN");
    pad_with_blanks(expected.model, "FACTORY MODEL");
    EXPECT_EQ(raw(record), raw(expected));
    EXPECT_EQ(sum_of(rig.page.data(), 136), 0U);
    EXPECT_TRUE(rig.all_from(256, 0xFF));
    EXPECT_EQ(told(), factory);
}

TEST_F(OemData, WhatIsWrittenIsReadBackAndToldEverywhere)
{
    compose("NEW SERIAL", "NEW MODEL");
    const auto page = rig.page;
    EXPECT_EQ(write_store(), kGood);
    read_store();
    EXPECT_EQ(rig.page, page);
    EXPECT_EQ(told(), "NEW SERIAL|NEW MODEL|4386|13124|nqn.2026-01.com.example:qrx:NEW SERIAL");
    EXPECT_EQ(rig.controller().events.entries.back().sentence(), "controller has new OEM data");
}

TEST_F(OemData, SurvivesInTheStateAndAReset)
{
    compose("NEW SERIAL", "NEW MODEL");
    EXPECT_EQ(write_store(), kGood);
    const std::string before = told();
    Rig again = Rig::of_text(save_machine(rig.machine()));
    EXPECT_EQ(again.controller(), rig.controller());
    rig.machine().controller(0)->reset();
    EXPECT_EQ(told(), before);
}

TEST_F(OemData, ANameOfItsOwnDoesNotFollowTheSerialNumber)
{
    rig = Rig::of_text(R"json({"controllers": [{"subnqn": "nqn.own"}]})json");
    compose("NEW SERIAL", "");
    EXPECT_EQ(write_store(), kGood);
    EXPECT_EQ(told(), "NEW SERIAL||4386|13124|nqn.own");
}

TEST_F(OemData, APageThatIsNoRecordIsRefusedAndNothingChanges)
{
    const auto refused = [this](auto spoil) {
        compose("NEW SERIAL", "NEW MODEL");
        spoil();
        EXPECT_EQ(write_store(), 0x704U);
        EXPECT_EQ(told(), factory);
    };
    refused([this] { ++rig.page[8]; });
    refused([this] { rig.page[3] = 0, seal(136); });
    refused([this] { rig.page[4] = 0, seal(136); });
    refused([this] { rig.page[4] = 132, seal(132); });
    refused([this] { rig.page[5] = 0x10, seal(136); });
    refused([this] { rig.page[6] = 16, seal(136); });
}

TEST_F(OemData, OnlyAWholePageCanBeWritten)
{
    compose("NEW SERIAL", "NEW MODEL");
    EXPECT_EQ(write_store(1022), 0x002U);
    EXPECT_EQ(write_store(1023, 0x08E0), 0x002U);
    nvme_admin_cmd command{};
    command.opcode = 0xC7;
    command.cdw10 = 63;
    command.cdw12 = 0x13E0;
    EXPECT_EQ(rig.machine().admin({}, command, std::span(rig.page).first(256)).status, 0x002U);
    EXPECT_EQ(told(), factory);
}

TEST_F(OemData, WithoutAValidRecordTheControllerTellsItsOwnIdentity)
{
    Controller& controller = *rig.machine().controller(0);
    for (const char* what : {"bad-signature", "bad-checksum", "bad-length"}) {
        compose("NEW SERIAL", "NEW MODEL");
        EXPECT_EQ(write_store(), kGood);
        EXPECT_FALSE(controller.set_oem_data(what));
        EXPECT_EQ(told(), factory) << what;
        EXPECT_EQ(controller.set_oem_data(what)->text, "there is no valid record to spoil");
    }
    EXPECT_FALSE(controller.set_oem_data("erased"));
    read_store();
    EXPECT_TRUE(rig.all_from(0, 0xFF));
    EXPECT_EQ(told(), factory);
    EXPECT_FALSE(controller.set_oem_data("factory"));
    read_store();
    EXPECT_EQ(rig.bytes(0, 4), "QRX ");
    EXPECT_EQ(controller.set_oem_data("eaten")->text,
              "'eaten' is none of factory, erased, bad-signature, bad-checksum, bad-length");
}

TEST_F(OemData, EachSpoiltRecordIsBadInOneWay)
{
    Controller& controller = *rig.machine().controller(0);
    read_store();
    const auto good = rig.page;
    const auto differences = [&](const char* what) {
        EXPECT_FALSE(controller.set_oem_data("factory"));
        EXPECT_FALSE(controller.set_oem_data(what));
        read_store();
        std::string text;
        for (std::size_t i = 0; i < good.size(); ++i) {
            text += good[i] != rig.page[i] ? std::to_string(i) + " " : "";
        }
        return text;
    };
    EXPECT_EQ(differences("bad-signature"), "3 11 ");
    EXPECT_EQ(differences("bad-length"), "4 ");
    EXPECT_EQ(differences("bad-checksum"), "8 ");
}

TEST(HbaInfo, CanBeBadInOneWay)
{
    Rig rig("raid");
    HbaSettings& settings = rig.machine().controller(0)->settings;
    const auto record = [&] {
        EXPECT_EQ(rig.vendor(0x0FE0).status, kGood);
        return rig.bytes(0, 8) + " " + std::to_string(sum_of(rig.page.data(), sizeof(_hba_info)));
    };
    EXPECT_EQ(record(), "HALIIMGF 0");
    EXPECT_FALSE(settings.set_damage("bad-checksum"));
    EXPECT_EQ(record(), "HALIIMGF 1");
    EXPECT_FALSE(settings.set_damage("bad-signature"));
    EXPECT_EQ(record(),
              "\xB7"
              "ALIIMGF 0");
    Rig again = Rig::of_text(save_machine(rig.machine()));
    EXPECT_EQ(again.controller().settings, settings);
    EXPECT_FALSE(settings.set_damage("intact"));
    EXPECT_EQ(record(), "HALIIMGF 0");
    EXPECT_EQ(settings.set_damage("gone")->text, "'gone' is none of intact, bad-signature, bad-checksum");
}

}  // namespace

}  // namespace qrx::sim
