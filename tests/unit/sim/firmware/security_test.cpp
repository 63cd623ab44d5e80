// The security commands, the two switches beside them, and the tunnel for ATA commands.
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {
namespace {

constexpr QRX_U32 kInvalidOpcode = 0x001;
constexpr QRX_U32 kInvalidField = 0x002;
constexpr QRX_U32 kLost = 0x701;
constexpr QRX_U32 kBadParameter = 0x704;
constexpr QRX_U32 kNotSupported = 0x705;
constexpr QRX_U32 kNoDrive = 0x706;

constexpr QRX_U32 kLight = 0x000002FD;
constexpr QRX_U32 kPresence = 0x000102FD;
constexpr QRX_U32 kSet = 0x000202FD;
constexpr QRX_U32 kInfo = 0x000302FD;

constexpr std::string_view kText = R"json({
  "controllers": [{
    "drives": [{"id": 0}, {"id": 1, "sata": true, "model": "ABC", "serial": "S1", "firmware": "1.23", "sectors": 1000},
               {"id": 3}]
  }]
})json";

class SecurityOfController : public testing::Test {
protected:
    // A block as it is without its drives: what is at its head, and the drives' bytes.
    std::string block(QRX_U32 which)
    {
        EXPECT_EQ(rig.vendor(which).status, kGood);
        EXPECT_EQ(rig.bytes(0, 8), envelope(0));
        EXPECT_TRUE(rig.all_from(8 + 16 + 256, 0));
        EXPECT_EQ(rig.bytes(8 + 2, 14), std::string(14, '\0'));
        EXPECT_EQ(rig.bytes(8 + 16 + 4, 252), std::string(252, '\0'));
        return rig.bytes(8, 2) + rig.bytes(8 + 16, 4);
    }
    static std::string bytes(std::initializer_list<int> values)
    {
        std::string text;
        for (const int value : values) {
            text += static_cast<char>(value);
        }
        return text;
    }
    nvme_admin_cmd ata(QRX_U8 opcode, QRX_U32 drive, QRX_U8 command)
    {
        nvme_admin_cmd built{};
        built.opcode = opcode;
        built.nsid = drive;
        built.cdw10 = QRX_U32{command} << 16 | 0x8027;
        built.cdw14 = command;
        return built;
    }

    Rig rig = Rig::of_text(kText);
};

TEST_F(SecurityOfController, NothingAtFirstButTheDrivesThatAreThere)
{
    EXPECT_EQ(block(kLight), bytes({0, 0, 0x80, 0x80, 0, 0x80}));
    EXPECT_EQ(block(kInfo), bytes({0, 0, 0x80, 0x80, 0, 0x80}));
}

TEST_F(SecurityOfController, HelpIsProvidedToDrives)
{
    EXPECT_EQ(rig.vendor(kPresence, 0x8).status, kGood);
    EXPECT_EQ(block(kInfo), bytes({0, 0, 0x80, 0x80, 0, 0x81}));
    EXPECT_EQ(block(kLight), bytes({0, 0, 0x80, 0x80, 0, 0x80}));
    EXPECT_EQ(rig.vendor(kPresence, 0x2).status, kGood);
    EXPECT_EQ(block(kInfo), bytes({0, 0, 0x80, 0x81, 0, 0x81}));
    EXPECT_EQ(rig.vendor(kPresence, 0x4).status, kNoDrive);
    EXPECT_EQ(rig.vendor(kPresence, 0x80000002).status, kNoDrive);
    EXPECT_EQ(rig.vendor(kSet, 0, 0x00030001).status, kGood);
    EXPECT_EQ(rig.vendor(kSet, 1, 0x00000001).status, kGood);
    EXPECT_EQ(block(kInfo), bytes({0, 0, 0x81, 0x81, 0, 0x80}));
    EXPECT_EQ(rig.vendor(kSet, 1, 0x00020001).status, kNoDrive);
    EXPECT_EQ(rig.vendor(kSet, 2, 0x00030001).status, kBadParameter);
}

TEST_F(SecurityOfController, AnAcknowledgedResetIsHelpForDrive0)
{
    EXPECT_EQ(rig.vendor(kPresence, 1).status, kGood);
    EXPECT_EQ(block(kLight), bytes({1, 0, 0x80, 0x80, 0, 0x80}));
    EXPECT_EQ(block(kInfo), bytes({0, 0, 0x81, 0x80, 0, 0x80}));
    EXPECT_EQ(rig.vendor(kPresence, 0).status, kGood);
    EXPECT_EQ(block(kLight), bytes({0, 0, 0x80, 0x80, 0, 0x80}));
    EXPECT_EQ(block(kInfo), bytes({0, 0, 0x81, 0x80, 0, 0x80}));
}

TEST_F(SecurityOfController, AcknowledgementsOfADrive)
{
    EXPECT_EQ(rig.vendor(kPresence, 0x001, 0x00030001).status, kGood);
    EXPECT_EQ(block(kLight), bytes({0, 0, 0x80, 0x80, 0, 0x81}));
    EXPECT_EQ(rig.vendor(kPresence, 0x100, 0x00030001).status, kGood);
    EXPECT_EQ(block(kLight), bytes({0, 0, 0x80, 0x80, 0, 0x82}));
    EXPECT_EQ(block(kInfo), bytes({0, 0, 0x80, 0x80, 0, 0x80}));
    EXPECT_EQ(rig.vendor(kPresence, 0x002, 0x00030001).status, kBadParameter);
    EXPECT_EQ(rig.vendor(kPresence, 0x001, 0x00020001).status, kNoDrive);
}

TEST_F(SecurityOfController, SettingsOfTheController)
{
    EXPECT_EQ(rig.vendor(kSet, 1, 0).status, kGood);
    EXPECT_EQ(block(kInfo).substr(0, 2), bytes({1, 0}));
    EXPECT_EQ(rig.vendor(kSet, 1, 0x01000000).status, kGood);
    EXPECT_EQ(block(kInfo).substr(0, 2), bytes({1, 1}));
    EXPECT_EQ(rig.vendor(kSet, 0, 0).status, kGood);
    EXPECT_EQ(block(kInfo).substr(0, 2), bytes({0, 1}));
    EXPECT_EQ(rig.vendor(kSet, 1, 0x02000000).status, kBadParameter);
    EXPECT_EQ(rig.vendor(kSet, 2, 0).status, kBadParameter);
    EXPECT_EQ(rig.vendor(0x000402FD).status, kInvalidField);
    EXPECT_EQ(rig.controller().events.entries.back().sentence(), "controller has secure mode switched off");
}

TEST_F(SecurityOfController, TheEeprom)
{
    EXPECT_EQ(rig.vendor(0x0000EBE0).status, kGood);
    EXPECT_EQ(rig.bytes(0, 8), envelope(0));
    EXPECT_EQ(rig.at<QRX_U32>(8), 1U);
    EXPECT_EQ(rig.vendor(0x0000EAE0, 0).status, kGood);
    EXPECT_EQ(rig.vendor(0x0000EBE0).status, kGood);
    EXPECT_EQ(rig.at<QRX_U32>(8), 0U);
    EXPECT_EQ(rig.vendor(0x0000EAE0, 2).status, kBadParameter);
}

TEST_F(SecurityOfController, HiddenTemperatures)
{
    const auto temperature = [this] {
        EXPECT_EQ(rig.vendor(0x000000E1, 3).status, kGood);
        const auto told = rig.at<NVME_PD_Info>(8);
        return told.Temperature[0] | told.Temperature[1] << 8;
    };
    EXPECT_EQ(temperature(), 308);
    EXPECT_EQ(rig.vendor(0x000125E0).status, kGood);
    EXPECT_EQ(temperature(), 0);
    EXPECT_EQ(rig.vendor(0x000025E0).status, kGood);
    EXPECT_EQ(temperature(), 308);
    EXPECT_EQ(rig.vendor(0x000225E0).status, kBadParameter);
}

TEST_F(SecurityOfController, HiddenTemperaturesInHealthLogs)
{
    const auto temperature = [this] {
        nvme_admin_cmd log{};
        log.opcode = 0xC2;
        log.nsid = 3;
        log.cdw10 = 0x7F0002;
        log.cdw14 = 2;
        log.cdw15 = 0xFFFFFFFF;
        EXPECT_EQ(rig.admin(log).status, kGood);
        return std::pair(rig.at<QRX_U16>(1), rig.at<QRX_U16>(200));
    };
    EXPECT_EQ(temperature(), std::pair(QRX_U16{308}, QRX_U16{308}));
    EXPECT_EQ(rig.vendor(0x000125E0).status, kGood);
    EXPECT_EQ(temperature(), std::pair(QRX_U16{0}, QRX_U16{0}));
    EXPECT_EQ(rig.vendor(0x000025E0).status, kGood);
    EXPECT_EQ(temperature(), std::pair(QRX_U16{308}, QRX_U16{308}));
}

TEST_F(SecurityOfController, ASataDriveTellsWhatItIs)
{
    EXPECT_EQ(rig.admin(ata(0xD2, 1, 0xEC)).status, kGood);
    EXPECT_EQ(rig.at<QRX_U16>(0), 0x0040);
    EXPECT_EQ(rig.bytes(20, 20), "1S                  ");
    EXPECT_EQ(rig.bytes(46, 8), ".132    ");
    EXPECT_EQ(rig.bytes(54, 6), "BA C  ");
    EXPECT_EQ(rig.at<QRX_U32>(120), 1000U);
    EXPECT_EQ(rig.at<QRX_U32>(200), 1000U);
    QRX_U8 sum = 0;
    for (std::size_t i = 0; i < 512; ++i) {
        sum = static_cast<QRX_U8>(sum + rig.page[i]);
    }
    EXPECT_EQ(sum, 0);
    EXPECT_EQ(rig.page[510], 0xA5);
    EXPECT_TRUE(rig.all_from(512, 0));
}

TEST_F(SecurityOfController, ASataDriveIsActive)
{
    for (const QRX_U8 opcode : {QRX_U8{0xD2}, QRX_U8{0xD3}}) {
        const Completion completion = rig.admin(ata(opcode, 1, 0xE5));
        EXPECT_EQ(completion.status, kGood);
        EXPECT_EQ(completion.result, 0xFFU);
    }
}

TEST_F(SecurityOfController, WhatTheAtaTunnelRefuses)
{
    EXPECT_EQ(rig.admin(ata(0xD2, 0, 0xEC)).status, kNotSupported) << "not SATA";
    EXPECT_EQ(rig.admin(ata(0xD3, 2, 0xE5)).status, kNoDrive);
    EXPECT_EQ(rig.admin(ata(0xD3, 1, 0xEC)).status, kInvalidField) << "data goes the other way";
    EXPECT_EQ(rig.admin(ata(0xD3, 1, 0x27)).status, kInvalidOpcode);
    nvme_admin_cmd differs = ata(0xD2, 1, 0xEC);
    differs.cdw14 = 0xE5;
    EXPECT_EQ(rig.admin(differs).status, kInvalidField) << "the FIS has another command";
    differs = ata(0xD2, 1, 0xEC);
    differs.cdw10 = 0xEC0027;
    EXPECT_EQ(rig.admin(differs).status, kInvalidField) << "the FIS has no command";
    differs = ata(0xD3, 1, 0xE5);
    differs.cdw14 |= 0x4000;
    EXPECT_EQ(rig.admin(differs).status, kInvalidField) << "PSDT";
    rig.machine().controller(0)->fail_drive(1);
    EXPECT_EQ(rig.admin(ata(0xD2, 1, 0xEC)).status, kLost);
}

TEST_F(SecurityOfController, ASataDriveTakesNoNvmeCommand)
{
    nvme_admin_cmd identify{};
    identify.opcode = 0xC2;
    identify.nsid = 1;
    identify.cdw10 = 1;
    identify.cdw14 = 6;
    EXPECT_EQ(rig.admin(identify).status, kNotSupported);
}

TEST_F(SecurityOfController, IsKeptInTheState)
{
    const Security before = rig.controller().security;
    EXPECT_EQ(rig.vendor(kPresence, 0x101, 0x00030001).status, kGood);
    EXPECT_EQ(rig.vendor(kSet, 1, 0x01000000).status, kGood);
    EXPECT_EQ(rig.vendor(0x000125E0).status, kGood);
    EXPECT_EQ(rig.vendor(0x0000EAE0, 0).status, kGood);
    Rig again = Rig::of_text(save_machine(rig.machine()));
    EXPECT_EQ(again.controller().security, rig.controller().security);
    EXPECT_NE(again.controller().security, before);
    EXPECT_TRUE(again.controller().find_drive(1)->sata);
}

TEST(SecurityText, DrivesRise)
{
    const auto made =
        load_machine(R"json({"controllers": [{"security": {"drives": [{"id": 1}, {"id": 1}]}}]})json", "test.json");
    ASSERT_FALSE(made);
    EXPECT_NE(std::string(made.error()).find("must have rising ids"), std::string::npos) << made.error();
}

}  // namespace
}  // namespace qrx::sim
