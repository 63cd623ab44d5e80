// The event ring and the debug console of the controller: what is written to them, and how a host reads it.
#include <gmock/gmock.h>

#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/spi_log.h"
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr QRX_U32 kReadLog = 0x00FE;
constexpr QRX_U32 kReadLogStatus = 0x02FE;
constexpr QRX_U32 kSwitchLog = 0x03FE;
constexpr QRX_U32 kReadEvents = 0x04FE;

std::vector<std::string> split(std::string_view text)
{
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

// The messages in the ring's pages, in page order.
std::vector<std::string> messages(const Rig& rig)
{
    std::vector<std::string> all;
    for (const EventPage& page : rig.controller().ring.pages) {
        for (const std::string& line : split(page.lines)) {
            all.push_back(line.substr(line.find("[MSG]") + 5));
        }
    }
    return all;
}

// What a host reads of the log from here on, until there is nothing left.
std::string read_log(Rig& rig)
{
    std::string text;
    for (;;) {
        EXPECT_EQ(rig.vendor(kReadLog).status, kGood);
        const auto length = rig.at<NVME_AP_Debug_Dump_Request>(8).length;
        if (length == 0 || length > 4080) {
            return text;
        }
        text += rig.bytes(16, length);
    }
}

// One without RAID and without a debug console.
Rig without_dump()
{
    return Rig::of_text(R"({"controllers": [{"adapter": {"features": ["raid"]}}]})");
}

TEST(EventRing, IsEmptyAtFirst)
{
    Rig rig("raid");
    for (QRX_U32 offset = 0; offset < 0x10000; offset += 4096) {
        EXPECT_EQ(rig.vendor(kReadEvents, 4096, offset).status, kGood);
        EXPECT_EQ(rig.bytes(0, 8), envelope(0));
        EXPECT_TRUE(rig.all_from(8, 0));
    }
}

TEST(EventRing, OtherOffsetsAndLengthsAreRefused)
{
    Rig rig("raid");
    for (const QRX_U32 offset : {1U, 4095U, 4097U, 0x10000U, 0xFFFFF000U}) {
        EXPECT_EQ(rig.vendor(kReadEvents, 4096, offset).status, 0x704U) << offset;
    }
    for (const QRX_U32 length : {0U, 4095U, 8192U}) {
        EXPECT_EQ(rig.vendor(kReadEvents, length, 0).status, 0x704U) << length;
    }
}

TEST(EventRing, AShortBufferGetsWhatFits)
{
    Rig rig("seasoned");
    nvme_admin_cmd command{};
    command.opcode = 0xE2;
    command.cdw12 = kReadEvents;
    command.cdw14 = 4096;
    for (const std::size_t size : {0U, 7U, 8U, 39U, 40U, 41U, 100U}) {
        rig.page.fill(kUntouched);
        EXPECT_EQ(rig.machine().admin({}, command, std::span(rig.page).first(size)).status, kGood);
        EXPECT_TRUE(rig.all_from(size, kUntouched)) << size;
    }
}

TEST(EventRing, TellsTheLifeOfAVirtualDisk)
{
    Rig rig("lab");
    EXPECT_EQ(rig.vendor(0x010003E2, 1, 3).status, kGood);  // RAID1 over PD 0 and 1, one namespace
    EXPECT_FALSE(rig.machine().controller(0)->fail_drive(1));
    EXPECT_EQ(rig.vendor(0x07E3, 0x00020000).status, kGood);  // rebuild onto PD 2
    rig.machine().advance(std::chrono::hours(1));
    EXPECT_EQ(rig.vendor(0x0AE3, 0).status, 0x734U);  // not initialized: refused, and no event
    EXPECT_EQ(rig.vendor(0x06E3, 0x00020000).status, kGood);
    EXPECT_EQ(rig.vendor(0x04E3, 0x00030000).status, kGood);
    EXPECT_FALSE(rig.machine().controller(0)->remove_drive(1));
    EXPECT_FALSE(rig.machine().controller(0)->replace_drive(1));
    EXPECT_EQ(rig.vendor(0x04E2).status, kGood);
    EXPECT_THAT(
        messages(rig),
        ElementsAre("VD0_CREATED_NOTIFY", "NS1_CREATED_NOTIFY", "PD1_SETDOWN_CRITICAL", "VD0_DEGRADED_WARNING",
                    "VD0_REBUILD_START_NOTIFY", "VD0_REBUILD_PROGRESS_10%_NOTIFY", "VD0_REBUILD_PROGRESS_20%_NOTIFY",
                    "VD0_REBUILD_PROGRESS_30%_NOTIFY", "VD0_REBUILD_PROGRESS_40%_NOTIFY",
                    "VD0_REBUILD_PROGRESS_50%_NOTIFY", "VD0_REBUILD_PROGRESS_60%_NOTIFY",
                    "VD0_REBUILD_PROGRESS_70%_NOTIFY", "VD0_REBUILD_PROGRESS_80%_NOTIFY",
                    "VD0_REBUILD_PROGRESS_90%_NOTIFY", "VD0_REBUILD_COMPLETE_NOTIFY", "VD0_ONLINE_NOTIFY",
                    "VD0_INIT_START_NOTIFY", "VD0_INIT_ABORT_NOTIFY", "PD1_OFFLINE_WARNING", "PD1_ONLINE_NOTIFY",
                    "NS1_DELETE_NOTIFY", "VD0_DELETE_NOTIFY"));
}

TEST(EventRing, ARebuildThatLosesItsTargetIsTerminated)
{
    Rig rig("lab");
    EXPECT_EQ(rig.vendor(0x010003E2, 1, 3).status, kGood);
    EXPECT_FALSE(rig.machine().controller(0)->fail_drive(1));
    EXPECT_EQ(rig.vendor(0x07E3, 0x00020000).status, kGood);
    EXPECT_FALSE(rig.machine().controller(0)->fail_drive(2));
    EXPECT_EQ(messages(rig)[6], "VD0_REBUILD_TERMINATED_WARNING");
}

TEST(EventRing, TellsSettingsAndFirmware)
{
    Rig rig("raid");
    EXPECT_EQ(rig.vendor(0x02E0, 0x0000).status, kGood);
    nvme_admin_cmd command{};
    command.opcode = 0x11;
    command.cdw10 = 1023;
    rig.page.fill('x');
    EXPECT_EQ(rig.machine().admin({}, command, rig.page).status, kGood);
    command = {};
    command.opcode = 0x10;
    command.cdw10 = 2;
    EXPECT_EQ(rig.admin(command).status, kGood);
    EXPECT_THAT(messages(rig),
                ElementsAre("NVMe_BGA_CHANGE_NOTIFY", "NVMe_AUTOREBUILD_OFF_NOTIFY", "NVMe_W_IMG_SUCCEEDED_NOTIFY"));
}

TEST(EventRing, ATimeIsThatOfTheClockOnceItIsSet)
{
    Rig rig("raid");
    rig.machine().advance(std::chrono::milliseconds(61999));
    EXPECT_EQ(rig.vendor(0x02E0, 0x0001).status, kGood);
    EXPECT_EQ(rig.vendor(0x03E0, 0x8001, 0x692C0000).status, kGood);  // 0x692C8001 seconds, its low half apart
    EXPECT_EQ(rig.vendor(0x02E0, 0x0201).status, kGood);
    EXPECT_THAT(split(rig.controller().ring.pages.at(0).lines),
                ElementsAre("[SEQ]01[TIME]61[MSG]NVMe_BGA_CHANGE_NOTIFY",
                            "[SEQ]02[TIME]1764524033[MSG]NVMe_BGA_CHANGE_NOTIFY"));
}

TEST(EventRing, LinesBeginAtMultiplesOfFourWithZerosBetween)
{
    EventRing ring;
    ring.add(7, "NS1_CREATED_NOTIFY");
    ring.add(8, "NS10_CREATED_NOTIFY");
    std::array<QRX_U8, 96> text{};
    text.fill(kUntouched);
    ring.put_page(0, text);
    const std::string expected = std::string("[SEQ]01[TIME]07[MSG]NS1_CREATED_NOTIFY\n\0", 40) +
                                 "[SEQ]02[TIME]08[MSG]NS10_CREATED_NOTIFY\n" + std::string(16, '\0');
    EXPECT_EQ(std::string(text.begin(), text.end()), expected);
}

TEST(EventRing, WrapsIntoAnErasedPage)
{
    EventRing ring;
    ring.add_history(1500);
    EXPECT_EQ(ring.sequence, 1500U);
    ASSERT_EQ(ring.pages.size(), 16U);
    for (const EventPage& page : ring.pages) {
        EXPECT_LE(page.size(), EventRing::kPageBytes);
    }
    EXPECT_GT(ring.page, 0);
    EXPECT_LT(ring.page, 15);
    const std::string oldest = split(ring.pages[ring.page + 1U].lines).front();
    EXPECT_THAT(split(ring.pages[ring.page].lines).back(), StartsWith("[SEQ]1500[TIME]"));
    EXPECT_THAT(oldest, StartsWith("[SEQ]4"));
    EXPECT_THAT(split(ring.pages[15].lines).back() + split(ring.pages[0].lines).front(), HasSubstr("_MP_"));
}

TEST(EventRing, ASequenceNumberHasAtMostEightDigits)
{
    EventRing ring;
    ring.sequence = 99999998;
    ring.add(0, "A");
    ring.add(0, "B");
    EXPECT_EQ(ring.pages.at(0).lines, "[SEQ]99999999[TIME]00[MSG]A\n[SEQ]01[TIME]00[MSG]B\n");
}

TEST(EventRing, AMessageIsCutToItsField)
{
    EventRing ring;
    ring.add(0, std::string(60, 'm'));
    EXPECT_EQ(ring.pages.at(0).lines, "[SEQ]01[TIME]00[MSG]" + std::string(48, 'm') + "\n");
}

TEST(SpiLog, IsWrittenWhileItIsOn)
{
    Rig rig("lab");
    EXPECT_EQ(rig.vendor(kReadLogStatus).status, kGood);
    EXPECT_EQ(rig.bytes(0, 12), envelope(0) + std::string(4, '\0'));
    EXPECT_EQ(rig.vendor(0x010003E2, 1, 3).status, kGood);
    EXPECT_EQ(rig.vendor(kSwitchLog, 1).status, kGood);
    EXPECT_EQ(rig.vendor(kReadLogStatus).status, kGood);
    EXPECT_EQ(rig.bytes(0, 12), envelope(0) + std::string("\1\0\0\0", 4));
    EXPECT_EQ(rig.controller().hba_info().adatper.debug_dump, 1);
    rig.machine().advance(std::chrono::milliseconds(1500));
    EXPECT_EQ(rig.vendor(0x04E2).status, kGood);
    EXPECT_EQ(rig.vendor(0x04E2).status, 0x707U);
    EXPECT_EQ(read_log(rig),
              "[      0.000] controller has its debug console switched on\n"
              "[      1.500] NS 1 deleted\n"
              "[      1.500] VD 0 deleted\n"
              "[      1.500] delete-vd refused: invalid LD ID\n");
    EXPECT_EQ(rig.vendor(kSwitchLog, 0).status, kGood);
    EXPECT_EQ(rig.vendor(0x010003E2, 1, 3).status, kGood);
    EXPECT_THAT(rig.controller().spi_log.lines,
                testing::EndsWith("[      1.500] controller has its debug console switched off\n"));
    EXPECT_EQ(rig.vendor(kReadLog).status, 0x703U);
}

TEST(SpiLog, SwitchedOnAnewItBeginsAnew)
{
    Rig rig("lab");
    EXPECT_EQ(rig.vendor(kSwitchLog, 1).status, kGood);
    EXPECT_EQ(rig.vendor(0x010003E2, 1, 3).status, kGood);
    EXPECT_EQ(rig.vendor(kSwitchLog, 1).status, kGood);  // it is on: nothing happens
    EXPECT_THAT(read_log(rig), HasSubstr("VD 0 created"));
    EXPECT_EQ(rig.vendor(kSwitchLog, 0).status, kGood);
    EXPECT_EQ(rig.vendor(kSwitchLog, 1).status, kGood);
    EXPECT_EQ(read_log(rig), "[      0.000] controller has its debug console switched on\n");
}

TEST(SpiLog, AtTheLevelOfErrorsItHasNoMoreThanThose)
{
    Rig rig("lab");
    EXPECT_EQ(rig.vendor(kSwitchLog, 1).status, kGood);
    EXPECT_EQ(rig.vendor(0x000112E0).status, kGood);
    EXPECT_EQ(rig.vendor(0x010003E2, 1, 3).status, kGood);
    EXPECT_FALSE(rig.machine().controller(0)->fail_drive(1));
    EXPECT_EQ(rig.vendor(0x04E2 | 5U << 16).status, 0x707U);
    EXPECT_EQ(read_log(rig),
              "[      0.000] controller has its debug console switched on\n"
              "[      0.000] PD 1 has failed\n"
              "[      0.000] VD 0 is degraded\n"
              "[      0.000] delete-vd refused: invalid LD ID\n");
}

TEST(SpiLog, IsReadPageByPageAndThenAnew)
{
    Rig rig("raid");
    EXPECT_EQ(rig.vendor(kSwitchLog, 1).status, kGood);
    std::string expected = rig.controller().spi_log.lines;
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(rig.vendor(0x010003E2, 1, 3).status, 0x73BU);
        expected += "[      0.000] create-vd refused: HD is assigned\n";
    }
    EXPECT_EQ(rig.vendor(kReadLog).status, kGood);
    EXPECT_EQ(rig.bytes(0, 8), envelope(0));
    EXPECT_EQ(rig.at<NVME_AP_Debug_Dump_Request>(8).length, 4080U);
    EXPECT_EQ(rig.bytes(16, 4080), expected.substr(0, 4080));
    EXPECT_EQ(read_log(rig), expected.substr(4080));
    EXPECT_EQ(read_log(rig), expected);
    EXPECT_EQ(rig.vendor(kReadLog).status, kGood);
    EXPECT_EQ(rig.vendor(kReadLogStatus).status, kGood);  // whoever asks begins to read
    EXPECT_EQ(read_log(rig), expected);
}

TEST(SpiLog, TheOldestLinesMakeRoom)
{
    SpiLog log;
    Clock clock;
    std::array<QRX_U8, 100> space{};
    for (int i = 0; i < 2000; ++i) {
        log.add(clock, "line " + std::to_string(i));
        if (i == 0) {
            EXPECT_EQ(log.read(space), 21U);
        }
    }
    EXPECT_EQ(log.lines.size(), 46890U);
    log.add(clock, std::string(1000, 'x'));
    EXPECT_EQ(log.lines.size(), 46890U + 315);  // a line is cut
    for (int i = 0; i < 100; ++i) {
        log.add(clock, std::string(300, 'y'));
    }
    EXPECT_LE(log.lines.size(), SpiLog::kBytes);
    EXPECT_GT(log.lines.size(), SpiLog::kBytes - 400);
    EXPECT_EQ(log.read_until, 0U);
    EXPECT_EQ(log.lines.front(), '[');
}

TEST(SpiLog, RefusesWhatItDoesNotKnow)
{
    Rig rig("raid");
    EXPECT_EQ(rig.vendor(kSwitchLog, 2).status, 0x704U);
    EXPECT_EQ(rig.vendor(kSwitchLog, 0x100).status, 0x704U);
    EXPECT_EQ(rig.vendor(kReadLog).status, 0x703U);
}

TEST(SpiLog, IsNotThereWithoutTheFeature)
{
    Rig rig = without_dump();
    for (const QRX_U32 command : {kReadLog, kReadLogStatus, kSwitchLog}) {
        EXPECT_EQ(rig.vendor(command, 1).status, 0x705U);
    }
    EXPECT_EQ(rig.vendor(kReadEvents, 4096).status, kGood);  // the ring is
}

TEST(Logs, SurviveInTheState)
{
    Rig rig("scarred");
    EXPECT_EQ(rig.vendor(kReadLog).status, kGood);
    EXPECT_FALSE(rig.machine().controller(0)->fail_drive(1));
    const auto again = load_machine(save_machine(rig.machine()), "state.json");
    ASSERT_TRUE(again) << again.error();
    EXPECT_EQ((*again)->parts().controllers.at(0), rig.controller());
    EXPECT_NE(rig.controller().spi_log.read_until, 0U);
}

TEST(Logs, AStateThatDoesNotFitTheFlashIsRefused)
{
    const auto error = [](const std::string& member) {
        return load_machine(R"({"controllers": [{)" + member + "}]}", "x").error();
    };
    std::string lines;
    for (int i = 0; i < 78; ++i) {
        lines += "\"" + std::string(51, 'l') + "\",";  // 52 bytes each with its line feed
    }
    EXPECT_EQ(error(R"("event_ring": {"pages": [{"lines": [)" + lines + R"(""]}]})"),
              "x:1: 'lines' take more than 4056 bytes");
    EXPECT_EQ(error(R"("event_ring": {"page": 16})"), "x:1: 'page' is 16; allowed are 0 to 15");
    EXPECT_EQ(error(R"("event_ring": {"history": 10001})"), "x:1: 'history' is 10001; allowed are 0 to 10000");
}

}  // namespace

}  // namespace qrx::sim
