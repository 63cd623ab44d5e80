// The vendor commands that reach the board: what they do, what comes of it, and what is refused.
#include <gmock/gmock.h>

#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

constexpr QRX_U32 kInvalidParameter = 0x704;
constexpr QRX_U32 kNotSupported = 0x705;
constexpr QRX_U32 kInvalidPd = 0x706;
constexpr QRX_U32 kFailed = 0x701;
constexpr QRX_U32 kAttached = 0x70C;
constexpr QRX_U32 kAssigned = 0x73B;
constexpr QRX_U32 kBusy = 0x745;

// Types and actions of a reset, as they stand in its word.
constexpr QRX_U32 kPower = 1U << 16;
constexpr QRX_U32 kPerst = 2U << 16;
constexpr QRX_U32 kOn = 1U << 24;
constexpr QRX_U32 kOff = 2U << 24;

class BoardRig : public Rig {
public:
    using Rig::Rig;
    static BoardRig of_text(std::string_view text) { return BoardRig(Rig::of_text(text)); }

    QRX_U32 reset(QRX_U32 word) { return vendor(0x08E1, word).status; }
    QRX_U32 gpio(QRX_U32 from_settings, QRX_U32 functions, QRX_U32 levels, QRX_U32 values)
    {
        nvme_admin_cmd command{};
        command.opcode = 0xE2;
        command.cdw12 = 0x11E0 | from_settings << 16;
        command.cdw13 = functions;
        command.cdw14 = levels;
        command.cdw15 = values;
        return admin(command).status;
    }
    QRX_U32 write_spi(QRX_U8 first, QRX_U32 dwords = 1024, std::size_t length = 4096)
    {
        page.fill(0xFF);
        page[0] = first;
        page[4095] = 0x77;
        nvme_admin_cmd command{};
        command.opcode = 0xC7;
        command.cdw10 = dwords;
        command.cdw12 = 0x08E0;
        return machine().admin({}, command, std::span(page).first(length)).status;
    }
    // Identify of a drive through the tunnel.
    QRX_U32 tunnel(QRX_U32 pd)
    {
        nvme_admin_cmd command{};
        command.opcode = 0xC2;
        command.nsid = pd;
        command.cdw10 = 1;
        command.cdw14 = 6;
        return admin(command).status;
    }
    // What the controller says of a drive: 0, or the verdict of its answer.
    QRX_U8 pd_verdict(QRX_U32 pd)
    {
        EXPECT_EQ(vendor(0x00E1, pd).status, kGood);
        return page[4];
    }
    void power_cycle() { machine().controller(0)->reset(); }
    const Board& board() { return controller().board; }
    const Drive& drive(QRX_U32 id) { return *controller().find_drive(id); }
    std::string last_event() { return controller().events.entries.back().sentence(); }

private:
    explicit BoardRig(Rig rig) : Rig(std::move(rig)) {}
};

TEST(Board, StartsWithPowerOnPerstReleasedAndLedsOut)
{
    BoardRig rig("raid");
    EXPECT_EQ(rig.board().functions, 0x30);
    EXPECT_EQ(rig.board().levels, 0x30);
    EXPECT_EQ(rig.board().values, 0x30);
    EXPECT_EQ(rig.board().in_reset, 0);
    EXPECT_TRUE(rig.board().leds.empty());
    for (const QRX_U32 pd : {0U, 1U, 2U, 3U, 4U, 65535U}) {
        EXPECT_TRUE(rig.board().reachable(pd)) << pd;
    }
}

TEST(Board, PerstLinesOfTheMiddleDrivesAreCrossed)
{
    EXPECT_EQ(Board::perst_gpio(0), 8U);
    EXPECT_EQ(Board::perst_gpio(1), 10U);
    EXPECT_EQ(Board::perst_gpio(2), 9U);
    EXPECT_EQ(Board::perst_gpio(3), 11U);
}

TEST(ResetCommand, ADeviceStartsAnewWithItsPowerOn)
{
    BoardRig rig("raid");
    const QRX_U64 cycles = rig.drive(1).health.power_cycles;
    EXPECT_EQ(rig.reset(1), kGood);
    EXPECT_EQ(rig.drive(1).health.power_cycles, cycles);
    EXPECT_EQ(rig.last_event(), "PD 1 was reset");
}

TEST(ResetCommand, ADeviceThatIsResetRunsTheFirmwareThatWaits)
{
    BoardRig rig = BoardRig::of_text(R"({"controllers": [{"drives": [{"id": 0, "slots":
        {"need": "controller-reset", "next": 2, "slot2": "NEW"}}]}]})");
    EXPECT_EQ(rig.reset(0), kGood);
    EXPECT_EQ(rig.drive(0).slots.running(), "NEW");
}

TEST(ResetCommand, ADeviceThatCannotComeBackIsRefused)
{
    BoardRig rig("lab");
    EXPECT_EQ(rig.reset(12), kInvalidPd);
    EXPECT_EQ(rig.reset(11), kFailed) << "it has failed";
    EXPECT_EQ(rig.reset(kPerst | kOn | 2), kGood);
    EXPECT_EQ(rig.reset(2), kFailed) << "it is held in reset";
    EXPECT_EQ(rig.reset(1 | kOn), kInvalidParameter) << "a device has no actions";
    EXPECT_EQ(rig.reset(1 | 3U << 16), kInvalidParameter) << "no such type";
}

TEST(ResetCommand, WhatIsBusyIsNotInterrupted)
{
    BoardRig rig("pair");
    // A media patrol runs over all four drives of the second controller.
    for (const QRX_U32 word : {3U, kPerst | 3U, kPower | 1U}) {
        EXPECT_EQ(rig.vendor(0x08E1, word, 0, {3, 0}).status, kBusy) << word;
    }
    BoardRig patrolled = BoardRig::of_text(R"({"controllers": [{"drives": [{"id": 0, "activity":
        {"type": "pd-media-patrol", "duration_ms": 1000, "elapsed_ms": 1}}]}]})");
    for (const QRX_U32 word : {0U, kPerst, kPerst | kOn, kPower, kPower | kOff}) {
        EXPECT_EQ(patrolled.reset(word), kBusy) << word;
    }
}

TEST(ResetCommand, PowerGoesOffAndOnForBothDrivesOfAPin)
{
    BoardRig rig("lab");
    const QRX_U64 cycles = rig.drive(2).health.power_cycles;
    EXPECT_EQ(rig.reset(kPower | kOff | 1), kGood);
    EXPECT_EQ(rig.board().values, 0x10);
    EXPECT_EQ(rig.last_event(), "controller has power pin 1 switched off");
    for (const QRX_U32 pd : {2U, 3U}) {
        EXPECT_EQ(rig.pd_verdict(pd), 6);
        EXPECT_EQ(rig.tunnel(pd), kInvalidPd);
        EXPECT_EQ(rig.reset(pd), kFailed);
    }
    for (const QRX_U32 pd : {0U, 1U, 4U}) {
        EXPECT_EQ(rig.pd_verdict(pd), 0);
        EXPECT_EQ(rig.tunnel(pd), kGood);
    }
    EXPECT_EQ(rig.reset(kPower | kOn | 1), kGood);
    EXPECT_EQ(rig.board().values, 0x30);
    EXPECT_EQ(rig.last_event(), "controller has power pin 1 switched on");
    EXPECT_EQ(rig.pd_verdict(2), 0);
    EXPECT_EQ(rig.drive(2).health.power_cycles, cycles + 1);
    EXPECT_EQ(rig.drive(3).health.power_cycles, cycles + 1);
    EXPECT_EQ(rig.drive(4).health.power_cycles, cycles);
}

TEST(ResetCommand, APowerCycleIsOneEvenWherePowerIsOff)
{
    BoardRig rig("lab");
    const QRX_U64 cycles = rig.drive(0).health.power_cycles;
    EXPECT_EQ(rig.reset(kPower | 0), kGood);
    EXPECT_EQ(rig.last_event(), "controller has power pin 0 cycled");
    EXPECT_EQ(rig.drive(0).health.power_cycles, cycles + 1);
    EXPECT_EQ(rig.drive(2).health.power_cycles, cycles);
    EXPECT_EQ(rig.reset(kPower | kOff), kGood);
    EXPECT_EQ(rig.reset(kPower), kGood);
    EXPECT_TRUE(rig.board().powered(0));
    EXPECT_EQ(rig.drive(1).health.power_cycles, cycles + 2);
}

TEST(ResetCommand, WhatIsSoAlreadyStaysSo)
{
    BoardRig rig("raid");
    const QRX_U64 cycles = rig.drive(0).health.power_cycles;
    EXPECT_EQ(rig.reset(kPower | kOn), kGood);
    EXPECT_EQ(rig.reset(kPerst | kOff), kGood);
    EXPECT_EQ(rig.drive(0).health.power_cycles, cycles);
    EXPECT_EQ(rig.controller().events.count, 0U);
}

TEST(ResetCommand, ADriveInUseKeepsItsPower)
{
    BoardRig raid("raid");
    EXPECT_EQ(raid.reset(kPower | kOff | 0), kAssigned);
    EXPECT_EQ(raid.reset(kPower | kOff | 1), kAssigned) << "drive 2 is in use, if drive 3 is not";
    EXPECT_EQ(raid.reset(kPerst | kOn | 0), kAssigned);
    EXPECT_EQ(raid.reset(kPerst | kOn | 3), kGood);
    EXPECT_EQ(raid.reset(kPower | 0), kGood) << "a cycle passes";
    EXPECT_EQ(raid.reset(kPerst | 0), kGood);
    BoardRig jbof("jbof");
    EXPECT_EQ(jbof.reset(kPower | kOff | 0), kAttached);
    EXPECT_EQ(jbof.reset(kPerst | kOn | 1), kAttached);
    EXPECT_EQ(jbof.reset(kPerst | kOn | 3), kGood);
    EXPECT_EQ(jbof.board().in_reset, 8);
}

TEST(ResetCommand, PerstHoldsOneDrive)
{
    BoardRig rig("lab");
    EXPECT_EQ(rig.reset(kPerst | kOn | 1), kGood);
    EXPECT_EQ(rig.last_event(), "PD 1 is held in reset");
    EXPECT_EQ(rig.board().in_reset, 2);
    EXPECT_EQ(rig.pd_verdict(1), 6);
    EXPECT_EQ(rig.tunnel(1), kInvalidPd);
    EXPECT_EQ(rig.pd_verdict(0), 0);
    EXPECT_EQ(rig.vendor(0x000003E2, 1, 1U << 1).status, kInvalidPd) << "no member of a virtual disk";
    const QRX_U64 cycles = rig.drive(1).health.power_cycles;
    EXPECT_EQ(rig.reset(kPerst | kOff | 1), kGood);
    EXPECT_EQ(rig.last_event(), "PD 1 is released from reset");
    EXPECT_EQ(rig.pd_verdict(1), 0);
    EXPECT_EQ(rig.drive(1).health.power_cycles, cycles) << "its power stayed";
    EXPECT_EQ(rig.reset(kPerst | 1), kGood);
    EXPECT_EQ(rig.last_event(), "PD 1 was reset by its PERST#");
    EXPECT_EQ(rig.reset(kPerst | kOn | 1), kGood);
    EXPECT_EQ(rig.reset(kPerst | 1), kGood) << "a cycle releases it";
    EXPECT_EQ(rig.board().in_reset, 0);
}

TEST(ResetCommand, LinesWithoutADriveSwitchAllTheSame)
{
    BoardRig rig("empty");
    EXPECT_EQ(rig.reset(kPerst | kOn | 3), kGood);
    EXPECT_EQ(rig.reset(kPower | kOff | 1), kGood);
    EXPECT_EQ(rig.board().in_reset, 8);
    EXPECT_EQ(rig.board().values, 0x10);
}

TEST(ResetCommand, PinsThatDoNotExistAreRefused)
{
    BoardRig rig("lab");
    EXPECT_EQ(rig.reset(kPower | kOn | 2), kInvalidParameter);
    EXPECT_EQ(rig.reset(kPower | 3U << 24), kInvalidParameter);
    EXPECT_EQ(rig.reset(kPerst | kOn | 4), kInvalidPd) << "drive 4 has no line of its own";
    EXPECT_EQ(rig.reset(kPerst | 3U << 24), kInvalidParameter);
    EXPECT_EQ(rig.gpio(1, 0xC0, 0xC0, 0xC0), kGood);
    EXPECT_EQ(rig.reset(kPower | kOn), kGood) << "until the next boot";
    rig.power_cycle();
    EXPECT_EQ(rig.reset(kPower | kOn), kNotSupported) << "GPIO 4 serves something else";
    EXPECT_EQ(rig.pd_verdict(0), 0) << "which leaves the drives their power";
}

TEST(ResetCommand, IoToADriveWithoutPowerWaits)
{
    BoardRig rig = BoardRig::of_text(R"({"controllers": [{"drives": [{"id": 0}, {"id": 2}],
        "virtual_disks": [{"id": 0, "raid_mode": "jbod", "members": [0]}, {"id": 1, "raid_mode": "jbod", "members": [2]}],
        "namespaces": [{"nsid": 1, "parent_id": 0}, {"nsid": 2, "parent_id": 1}]}]})");
    EXPECT_EQ(rig.gpio(1, 0x30, 0x30, 0x20), kGood);
    rig.power_cycle();
    nvme_admin_cmd flush{};
    flush.nsid = 1;
    EXPECT_EQ(rig.machine().io({}, flush, {}).status, 0x082U);
    flush.nsid = 2;
    EXPECT_EQ(rig.machine().io({}, flush, {}).status, kGood);
    EXPECT_EQ(rig.reset(kPower | kOn), kGood);
    flush.nsid = 1;
    EXPECT_EQ(rig.machine().io({}, flush, {}).status, kGood);
}

TEST(LedCommand, EachPortHasOne)
{
    BoardRig rig("raid");
    EXPECT_EQ(rig.vendor(0x07E0, 0x00010000).status, kGood);
    EXPECT_EQ(rig.vendor(0x07E1, 0x00020003).status, kGood);
    EXPECT_EQ(rig.vendor(0x07E1, 0x00030001).status, kGood);
    EXPECT_THAT(rig.board().leds, testing::ElementsAre(Led{0, 0, 1}, Led{1, 1, 3}, Led{1, 3, 2}));
    EXPECT_EQ(rig.vendor(0x07E1, 0x00000001).status, kGood);
    EXPECT_THAT(rig.board().leds, testing::ElementsAre(Led{0, 0, 1}, Led{1, 3, 2}));
    EXPECT_EQ(rig.board().led(1, 3), Led::kSlowBlink);
    EXPECT_EQ(rig.board().led(1, 1), Led::kOff);
    rig.power_cycle();
    EXPECT_TRUE(rig.board().leds.empty());
}

TEST(LedCommand, WhatIsNotThereOrNotItsStateIsRefused)
{
    BoardRig rig("raid");
    EXPECT_EQ(rig.vendor(0x07E0, 0x00010001).status, kInvalidParameter) << "no end point 1";
    EXPECT_EQ(rig.vendor(0x07E1, 0x00020004).status, kInvalidParameter) << "no root complex 4";
    EXPECT_EQ(rig.vendor(0x07E1, 0x00020100).status, kInvalidParameter) << "ids are not cut";
    EXPECT_EQ(rig.vendor(0x07E1, 0x00010001).status, kInvalidParameter) << "a root complex's only blinks";
    EXPECT_EQ(rig.vendor(0x07E0, 0x00040000).status, kInvalidParameter);
    EXPECT_EQ(rig.vendor(0x07E0, 0x01010000).status, kInvalidParameter) << "reserved bits";
    EXPECT_TRUE(rig.board().leds.empty());
}

TEST(GpioCommand, IsStoredAndActsFromTheNextBoot)
{
    BoardRig rig("lab");
    EXPECT_EQ(rig.gpio(1, 0xF0, 0x50, 0x90), kGood);
    const HbaSettings& settings = rig.controller().settings;
    EXPECT_EQ(settings.gpio_enable, 0xFFFU);
    EXPECT_EQ(settings.gpio_levels, 0xF50U);
    EXPECT_EQ(settings.gpio_values, 0x191U);
    EXPECT_TRUE(settings.gpio_from_settings);
    EXPECT_EQ(rig.board().values, 0x30);
    rig.power_cycle();
    EXPECT_EQ(rig.board().functions, 0xF0);
    EXPECT_EQ(rig.board().levels, 0x50);
    EXPECT_EQ(rig.board().values, 0x90);
    EXPECT_TRUE(rig.board().powered(0));
    EXPECT_FALSE(rig.board().powered(2));
    EXPECT_EQ(rig.gpio(0, 0xF0, 0x50, 0x90), kGood);
    EXPECT_FALSE(settings.gpio_from_settings);
    rig.power_cycle();
    EXPECT_EQ(rig.board().functions, 0x30) << "the firmware's own";
    EXPECT_EQ(rig.board().levels, 0x30);
    EXPECT_EQ(rig.board().values, 0x30);
}

TEST(GpioCommand, HbaInfoTellsIt)
{
    BoardRig rig("lab");
    EXPECT_EQ(rig.gpio(1, 0xC0, 0x40, 0x80), kGood);
    rig.vendor(0x0FE0);
    const auto info = rig.at<_hba_info>(0).gpio.switch_setting;
    EXPECT_EQ(info.enable, 0xFCFU);
    EXPECT_EQ(info.active_high_low, 0xF40U);
    EXPECT_EQ(info.default_value, 0x181U);
    EXPECT_EQ(info.set_default_from_hba_info, 1);
}

TEST(GpioCommand, OtherPinsAndHalfPairsAreRefused)
{
    BoardRig rig("lab");
    const HbaSettings before = rig.controller().settings;
    for (const QRX_U32 functions : {0x10U, 0x20U, 0x40U, 0xE0U, 0x31U, 0x130U}) {
        EXPECT_EQ(rig.gpio(0, functions, 0x30, 0x30), kInvalidParameter) << functions;
    }
    EXPECT_EQ(rig.gpio(0, 0x30, 0x01, 0x30), kInvalidParameter);
    EXPECT_EQ(rig.gpio(0, 0x30, 0x30, 0x100), kInvalidParameter);
    EXPECT_EQ(rig.gpio(2, 0x30, 0x30, 0x30), kInvalidParameter);
    EXPECT_EQ(rig.controller().settings, before);
    for (const QRX_U32 functions : {0U, 0x30U, 0xC0U, 0xF0U}) {
        EXPECT_EQ(rig.gpio(0, functions, 0x10, 0x20), kGood) << functions;
    }
}

TEST(InverseCommand, IsSetAndRead)
{
    BoardRig rig("raid");
    EXPECT_EQ(rig.vendor(0x1AE0).status, kGood);
    EXPECT_TRUE(rig.all_from(0, 0));
    EXPECT_EQ(rig.vendor(0x119E0).status, kGood);
    EXPECT_EQ(rig.vendor(0x1AE0).status, kGood);
    EXPECT_EQ(rig.page[0], 1);
    EXPECT_TRUE(rig.all_from(1, 0));
    rig.power_cycle();
    EXPECT_EQ(rig.controller().settings.gpio_inverse, 1) << "kept in the flash";
    EXPECT_EQ(rig.vendor(0x219E0).status, kInvalidParameter);
    EXPECT_EQ(rig.vendor(0x019E0).status, kGood);
    EXPECT_EQ(rig.controller().settings.gpio_inverse, 0);
}

TEST(VpdTarget, IsSwitchedAtOnce)
{
    BoardRig rig("raid");
    EXPECT_EQ(rig.vendor(0x10E0, 1).status, kGood);
    EXPECT_TRUE(rig.controller().settings.vpd_in_spi);
    EXPECT_EQ(rig.vendor(0x10E0, 2).status, kInvalidParameter);
    EXPECT_TRUE(rig.controller().settings.vpd_in_spi);
    EXPECT_EQ(rig.vendor(0x10E0, 0).status, kGood);
    EXPECT_FALSE(rig.controller().settings.vpd_in_spi);
}

TEST(I2c, AChannelAnswersWhenItsDeviceIsThereAndHasPower)
{
    BoardRig rig("lab");
    for (const QRX_U32 channel : {1U, 2U, 4U}) {
        EXPECT_EQ(rig.vendor(0x14E0 | channel << 16).status, kGood) << channel;
    }
    EXPECT_EQ(rig.reset(kPerst | kOn | 0), kGood);
    EXPECT_EQ(rig.vendor(0x214E0).status, kGood) << "PERST# does not touch the bus";
    EXPECT_EQ(rig.reset(kPower | kOff | 0), kGood);
    EXPECT_EQ(rig.vendor(0x114E0).status, kGood);
    EXPECT_EQ(rig.vendor(0x214E0).status, kFailed);
    EXPECT_EQ(rig.vendor(0x414E0).status, kFailed);
    BoardRig first_bay = BoardRig::of_text(R"({"controllers": [{"drives": [{"id": 0}]}]})");
    EXPECT_EQ(first_bay.vendor(0x214E0).status, kGood);
    EXPECT_EQ(first_bay.vendor(0x414E0).status, kFailed);
}

TEST(I2c, ChannelsThatAreNotThereOrSilent)
{
    BoardRig rig = BoardRig::of_text(R"({"controllers": [{"drives": [{"id": 0}, {"id": 1}],
        "board": {"silent_channels": ["clock-buffer", "bay-2"]}}]})");
    EXPECT_EQ(rig.vendor(0x114E0).status, kFailed);
    EXPECT_EQ(rig.vendor(0x214E0).status, kGood);
    EXPECT_EQ(rig.vendor(0x414E0).status, kFailed);
    for (const QRX_U32 channel : {0U, 3U, 5U, 32U, 33U, 255U}) {
        EXPECT_EQ(rig.vendor(0x14E0 | channel << 16).status, kInvalidParameter) << channel;
    }
}

struct FeatureRow {
    QRX_U32 command;
    bool HbaSettings::*stored;
    bool Board::*active;
};
constexpr FeatureRow kFeatures[] = {
    {0x0DE0, &HbaSettings::flash_tools, &Board::flash_tools},
    {0x0EE0, &HbaSettings::sriov, &Board::sriov},
    {0x15E0, &HbaSettings::protection, &Board::protection},
};

TEST(FeatureSwitches, ActFromTheNextBoot)
{
    for (const FeatureRow& row : kFeatures) {
        BoardRig rig("raid");
        EXPECT_EQ(rig.vendor(row.command, 1).status, kGood);
        for (const FeatureRow& other : kFeatures) {
            EXPECT_EQ(rig.controller().settings.*other.stored, other.command == row.command);
            EXPECT_FALSE(rig.board().*other.active);
        }
        rig.power_cycle();
        EXPECT_TRUE(rig.board().*row.active);
        EXPECT_EQ(rig.vendor(row.command, 2).status, kInvalidParameter);
        EXPECT_EQ(rig.vendor(row.command, 0).status, kGood);
        EXPECT_TRUE(rig.board().*row.active);
        rig.power_cycle();
        EXPECT_FALSE(rig.board().*row.active);
    }
}

TEST(FeatureSwitches, VirtualFunctionsAreVisibleWhileSriovIsOn)
{
    BoardRig rig("sriov");
    rig.vendor(0x00E0);
    EXPECT_EQ(rig.at<NVME_Adapter_Info>(8).VisibleVfNum[0], 10);
    EXPECT_EQ(rig.at<NVME_Adapter_Info>(8).VisibleVfNum[1], 4);
    EXPECT_EQ(rig.vendor(0x0EE0, 0).status, kGood);
    rig.vendor(0x00E0);
    EXPECT_EQ(rig.at<NVME_Adapter_Info>(8).VisibleVfNum[0], 10) << "until the next boot";
    rig.power_cycle();
    rig.vendor(0x00E0);
    EXPECT_EQ(rig.at<NVME_Adapter_Info>(8).VisibleVfNum[0], 0);
    EXPECT_EQ(rig.at<NVME_Adapter_Info>(8).VisibleVfNum[1], 0);
}

TEST(SpiFlash, IsALogPageOfItsOwn)
{
    BoardRig rig("raid");
    EXPECT_EQ(rig.log_page(0xC0, 4096, 0).status, kGood);
    EXPECT_TRUE(rig.all_from(0, 0xFF)) << "erased";
    EXPECT_EQ(rig.write_spi(0x42), kGood);
    EXPECT_EQ(rig.log_page(0xC0, 4096, 0).status, kGood);
    EXPECT_EQ(rig.page[0], 0x42);
    EXPECT_EQ(rig.page[1], 0xFF);
    EXPECT_EQ(rig.page[4095], 0x77);
    EXPECT_EQ(rig.log_page(0xC0, 8, 0, 4088).status, kGood);
    EXPECT_EQ(rig.page[7], 0x77);
    EXPECT_EQ(rig.page[8], kUntouched);
    rig.power_cycle();
    EXPECT_EQ(rig.log_page(0xC0, 16, 0).status, kGood);
    EXPECT_EQ(rig.page[0], 0x42) << "a flash keeps what it holds";
    EXPECT_EQ(rig.log_page(0xC1, 16, 0).status, 0x109U);
    EXPECT_EQ(rig.log_page(0x00, 1024, 0).status, kGood);
    EXPECT_EQ(rig.at<QRX_U32>(std::size_t{0xC0} * 4), 1U);
    EXPECT_EQ(rig.at<QRX_U32>(std::size_t{0xC1} * 4), 0U);
}

TEST(SpiFlash, AWriteIsABlockOrNothing)
{
    BoardRig rig("raid");
    EXPECT_EQ(rig.write_spi(0x42, 1023), 0x002U);
    EXPECT_EQ(rig.write_spi(0x42, 1024, 512), 0x002U);
    nvme_admin_cmd unknown{};
    unknown.opcode = 0xC7;
    unknown.cdw12 = 0x00E0;
    EXPECT_EQ(rig.admin(unknown).status, 0x002U);
    EXPECT_TRUE(rig.board().spi.empty());
}

TEST(SpiFlash, ProtectionDeniesWrites)
{
    BoardRig rig("raid");
    EXPECT_EQ(rig.vendor(0x15E0, 1).status, kGood);
    EXPECT_EQ(rig.write_spi(0x42), kGood) << "until the next boot";
    rig.power_cycle();
    EXPECT_EQ(rig.write_spi(0x43), 0x015U);
    EXPECT_EQ(rig.board().spi.front(), 0x42);
    EXPECT_EQ(rig.log_page(0xC0, 4096, 0).status, kGood) << "reading is free";
}

TEST(BoardText, KeepsEverything)
{
    BoardRig rig("lab");
    EXPECT_EQ(rig.reset(kPower | kOff | 1), kGood);
    EXPECT_EQ(rig.reset(kPerst | kOn | 1), kGood);
    EXPECT_EQ(rig.vendor(0x07E0, 0x00020000).status, kGood);
    EXPECT_EQ(rig.vendor(0x15E0, 1).status, kGood);
    EXPECT_EQ(rig.vendor(0x0DE0, 1).status, kGood);
    rig.power_cycle();
    EXPECT_EQ(rig.vendor(0x0EE0, 1).status, kGood);
    EXPECT_EQ(rig.gpio(1, 0xF0, 0x80, 0x70), kGood);
    EXPECT_EQ(rig.reset(kPower | kOff | 0), kGood);
    EXPECT_EQ(rig.vendor(0x07E1, 0x00030002).status, kGood);
    const std::string saved = save_machine(rig.machine());
    const auto loaded = load_machine(saved, "state");
    ASSERT_TRUE(loaded) << loaded.error();
    EXPECT_TRUE((*loaded)->parts() == rig.machine().parts());
    EXPECT_EQ(save_machine(**loaded), saved);
}

TEST(BoardText, FollowsTheSettingsUnlessItIsTold)
{
    const BoardRig rig = BoardRig::of_text(R"({"controllers": [{
        "board": {"functions": 240, "leds": [{"object": "root-complex", "id": 2}, {"id": 9, "state": "slow-blink"}]},
        "settings": {"gpio_enable": 3840, "gpio_levels": 3888, "gpio_values": 32, "protection": true}}]})");
    const Board& board = rig.controller().board;
    EXPECT_EQ(board.functions, 0xF0);
    EXPECT_EQ(board.levels, 0x30);
    EXPECT_EQ(board.values, 0x20);
    EXPECT_TRUE(board.protection);
    EXPECT_FALSE(board.sriov);
    EXPECT_THAT(board.leds, testing::ElementsAre(Led{0, 9, 2}, Led{1, 2, 1}));
}

std::string error_of_board(const std::string& inner)
{
    return load_machine("{\"controllers\": [{\"board\": {\n" + inner + "}}]}", "lab.json").error();
}

TEST(BoardText, WhatABoardCannotBeIsRefused)
{
    EXPECT_EQ(error_of_board("\"functions\": 8"),
              "lab.json:2: 'functions' holds a bit below 4; the pins are GPIO 4 to 7");
    EXPECT_EQ(error_of_board("\"values\": 256"), "lab.json:2: 'values' is 256; allowed are 0 to 240");
    EXPECT_EQ(error_of_board("\"in_reset\": 16"), "lab.json:2: 'in_reset' is 16; allowed are 0 to 15");
    EXPECT_EQ(error_of_board("\"silent_channels\": [3]"),
              "lab.json:2: 'silent_channels' names a channel that is not there");
    EXPECT_EQ(error_of_board("\"leds\": [{\"state\": 0}]"), "lab.json:2: 'state' is none of an LED that is listed");
    EXPECT_EQ(error_of_board("\"leds\": [{\"state\": 4}]"), "lab.json:2: 'state' is none of an LED that is listed");
    EXPECT_EQ(error_of_board("\"leds\": [{\"object\": 2}]"),
              "lab.json:2: 'object' is neither an end point nor a root complex");
    EXPECT_EQ(error_of_board("\"leds\": [{\"id\": 1},\n{\"id\": 1}]"), "lab.json:3: 'id' is the id of an earlier LED");
    EXPECT_EQ(error_of_board("\"spi\": \"0\""), "lab.json:2: 'spi' must be pairs of hexadecimal digits, at most 4096");
}

}  // namespace

}  // namespace qrx::sim
