// Firmware update of a controller: download, commit, the step of raw images, and the reset.
#include "sim/firmware/firmware_image.h"
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {
namespace {

constexpr QRX_U32 kInvalidField = 0x002;
constexpr QRX_U32 kInvalidSlot = 0x106;
constexpr QRX_U32 kInvalidImage = 0x107;
constexpr QRX_U32 kProhibited = 0x113;
constexpr QRX_U32 kOverlap = 0x114;

class FirmwareUpdate : public testing::Test {
protected:
    Completion download(QRX_U32 offset, std::span<const QRX_U8> piece)
    {
        return download_words(static_cast<QRX_U32>(piece.size() / 4 - 1), offset / 4, piece);
    }
    Completion download_words(QRX_U32 cdw10, QRX_U32 cdw11, std::span<const QRX_U8> piece)
    {
        nvme_admin_cmd command{};
        command.opcode = 0x11;
        command.cdw10 = cdw10;
        command.cdw11 = cdw11;
        std::vector<QRX_U8> data(piece.begin(), piece.end());
        return rig.machine().admin({}, command, data);
    }
    QRX_U32 commit(unsigned action, unsigned slot)
    {
        nvme_admin_cmd command{};
        command.opcode = 0x10;
        command.cdw10 = action << 3 | slot;
        return rig.admin(command).status;
    }
    // Sends the image in whole segments, as the last of them padded.
    void send(std::span<const QRX_U8> image)
    {
        std::vector<QRX_U8> padded(image.begin(), image.end());
        padded.resize((padded.size() + 4095) / 4096 * 4096, 0xEE);
        for (std::size_t offset = 0; offset < padded.size(); offset += 4096) {
            ASSERT_EQ(download(static_cast<QRX_U32>(offset), std::span(padded).subspan(offset, 4096)).status, kGood);
        }
    }
    static std::vector<QRX_U8> image(const std::string& version, std::size_t size = 8192, bool revoked = false)
    {
        return *make_image({version, ImageKind::kPlain, size, revoked});
    }
    void reset() { rig.machine().controller(0)->reset(); }
    const FirmwareSlots& slots() { return rig.controller().slots; }
    std::string identified()
    {
        EXPECT_EQ(rig.identify(1).status, kGood);
        return rig.bytes(64, 8);
    }
    QRX_U8 active_and_next()
    {
        EXPECT_EQ(rig.log_page(3, 512).status, kGood);
        return rig.page[0];
    }
    void use(const std::string& slots_text)
    {
        rig = Rig::of_text(R"({"controllers": [{"slots": )" + slots_text + "}]}");
    }

    Rig rig{"raid"};
};

TEST_F(FirmwareUpdate, ImageRunsAfterTheResetThatItsActivationAskedFor)
{
    const std::vector<QRX_U8> bytes = image("2.5.0.1100", 5000);
    send(bytes);
    EXPECT_EQ(rig.controller().download.size(), 8192U);
    EXPECT_EQ(commit(1, 2), kGood);
    EXPECT_TRUE(rig.controller().download.empty());
    EXPECT_EQ(slots().contents[1], (FirmwareContent{"2.5.1100", "2.5.0.1100", 5000, image_crc(bytes), false}));
    EXPECT_EQ(active_and_next(), 0x21);
    EXPECT_EQ(rig.bytes(8, 24), "2.4.10632.5.1100" + std::string(8, '\0'));
    EXPECT_EQ(identified(), "2.4.1063");
    EXPECT_EQ(rig.controller().adapter.firmware, (Version{2, 4, 1, 1063}));
    reset();
    EXPECT_EQ(active_and_next(), 0x02);
    EXPECT_EQ(identified(), "2.5.1100");
    EXPECT_EQ(rig.controller().adapter.firmware, (Version{2, 5, 0, 1100}));
    EXPECT_EQ(rig.controller().node().firmware, "2.5.1100");
    EXPECT_EQ(commit(2, 1), kGood) << "and back";
    reset();
    EXPECT_EQ(identified(), "2.4.1063");
    EXPECT_EQ(rig.controller().adapter.firmware, (Version{2, 4, 1, 1063}));
}

TEST_F(FirmwareUpdate, RunningSlotCanBeOverwrittenAndRunsOnUntilTheReset)
{
    send(image("2.5.0.1100"));
    EXPECT_EQ(commit(1, 1), kGood);
    EXPECT_EQ(active_and_next(), 0x11);
    EXPECT_EQ(rig.bytes(8, 8), "2.5.1100");
    EXPECT_EQ(identified(), "2.4.1063");
    send(image("2.6.0.1"));
    EXPECT_EQ(commit(1, 1), kGood) << "once more";
    EXPECT_EQ(identified(), "2.4.1063");
    reset();
    EXPECT_EQ(identified(), "2.6.0.1 ");
    EXPECT_EQ(rig.controller().adapter.firmware, (Version{2, 6, 0, 1}));
}

TEST_F(FirmwareUpdate, ActionZeroFillsTheSlotAndNoMore)
{
    send(image("2.5.0.1100"));
    EXPECT_EQ(commit(0, 3), kGood);
    EXPECT_EQ(active_and_next(), 0x01);
    reset();
    EXPECT_EQ(identified(), "2.4.1063");
    EXPECT_EQ(slots().contents[2].revision, "2.5.1100");
    EXPECT_EQ(commit(2, 3), kGood);
    EXPECT_EQ(active_and_next(), 0x31);
}

TEST_F(FirmwareUpdate, ActionThreeWithoutResetDependsOnTheDevice)
{
    const std::pair<const char*, QRX_U32> needs[] = {
        {"controller-reset", 0x111}, {"subsystem-reset", 0x110}, {"conventional-reset", 0x10B}};
    for (const auto& [need, answer] : needs) {
        use(std::string(R"({"need": ")") + need + R"(", "slot2": "OTHER"})");
        EXPECT_EQ(commit(3, 2), answer) << need;
        EXPECT_EQ(active_and_next(), 0x21);
        reset();
        EXPECT_EQ(identified(), "OTHER   ");
        EXPECT_EQ(rig.at<nvme_id_ctrl>(0).frmw, 0x06);
        const QRX_U32 later = answer == 0x111 ? kGood : answer;
        EXPECT_EQ(commit(2, 1), later) << need;
        EXPECT_EQ(active_and_next(), 0x12) << "the commit has taken place";
    }
    use(R"({"need": "nothing", "slot2": "OTHER"})");
    EXPECT_EQ(identified(), "2.4.1063");
    EXPECT_EQ(rig.at<nvme_id_ctrl>(0).frmw, 0x16);
    EXPECT_EQ(commit(3, 2), kGood);
    EXPECT_EQ(active_and_next(), 0x02);
    EXPECT_EQ(identified(), "OTHER   ");
    send(image("2.5.0.1100"));
    EXPECT_EQ(commit(3, 2), kGood) << "a downloaded image is taken first";
    EXPECT_EQ(identified(), "2.5.1100");
}

TEST_F(FirmwareUpdate, ActionsForBootPartitionsAndReservedOnesAreRefused)
{
    send(image("2.5.0.1100"));
    for (const unsigned action : {4U, 5U, 6U, 7U}) {
        for (unsigned slot = 0; slot < 8; ++slot) {
            EXPECT_EQ(commit(action, slot), kInvalidField) << action << " " << slot;
        }
    }
    EXPECT_EQ(commit(1, 2), kGood) << "the download is still there";
}

TEST_F(FirmwareUpdate, SlotsThatAreNotThereAreRefusedByEveryAction)
{
    for (const unsigned action : {0U, 1U, 2U, 3U}) {
        for (unsigned slot = 0; slot < 8; ++slot) {
            rig = Rig("raid");
            send(image("2.5.0.1100"));
            const bool bad = slot > 3 || (slot == 0 && action == 2);
            const QRX_U32 good = action == 3 ? 0x111U : action == 2 && slot != 1 ? kInvalidImage : kGood;
            EXPECT_EQ(commit(action, slot), bad ? kInvalidSlot : good) << action << " " << slot;
        }
    }
    rig = Rig("raid");
    EXPECT_EQ(commit(3, 0), kInvalidSlot) << "without an image there is nothing to choose a slot for";
}

TEST_F(FirmwareUpdate, DeviceChoosesAnEmptySlotThenTheOneBehindTheActive)
{
    for (const unsigned next : {0x21U, 0x31U, 0x21U, 0x21U}) {
        send(image("2.5.0.1100"));
        EXPECT_EQ(commit(1, 0), kGood);
        EXPECT_EQ(active_and_next(), next);
    }
    use(R"({"count": 1, "first_read_only": true})");
    send(image("2.5.0.1100"));
    EXPECT_EQ(commit(1, 0), kInvalidSlot);
}

TEST_F(FirmwareUpdate, ReadOnlySlotCanBeActivatedAndNotWritten)
{
    use(R"({"first_read_only": true, "slot2": "OTHER", "active": 2})");
    EXPECT_EQ(identified(), "OTHER   ");
    EXPECT_EQ(rig.at<nvme_id_ctrl>(0).frmw, 0x07);
    send(image("2.5.0.1100"));
    for (const unsigned action : {0U, 1U, 3U}) {
        EXPECT_EQ(commit(action, 1), kInvalidSlot);
    }
    EXPECT_EQ(commit(2, 1), kGood);
    EXPECT_EQ(active_and_next(), 0x12);
}

TEST_F(FirmwareUpdate, CommitWithoutAWholeImageIsRefused)
{
    const std::vector<QRX_U8> bytes = image("2.5.0.1100", 12288);
    EXPECT_EQ(commit(0, 2), kInvalidImage);
    EXPECT_EQ(commit(1, 2), kInvalidImage);
    EXPECT_EQ(commit(2, 2), kInvalidImage) << "an empty slot";
    EXPECT_EQ(download(0, std::span(bytes).first(4096)).status, kGood);
    EXPECT_EQ(download(8192, std::span(bytes).subspan(8192)).status, kGood);
    EXPECT_EQ(commit(1, 2), kInvalidImage) << "a gap";
    EXPECT_TRUE(rig.controller().download.empty());
    EXPECT_EQ(download(4096, std::span(bytes).subspan(4096)).status, kGood);
    EXPECT_EQ(commit(1, 2), kInvalidImage) << "no begin";
    EXPECT_EQ(download(0, std::span(bytes).first(8192)).status, kGood);
    EXPECT_EQ(commit(1, 2), kInvalidImage) << "no end";
    EXPECT_EQ(slots(), FirmwareSlots());
}

TEST_F(FirmwareUpdate, PiecesMayComeInAnyOrder)
{
    const std::vector<QRX_U8> bytes = image("2.5.0.1100", 16384);
    for (const std::size_t offset : {8192U, 0U, 12288U, 4096U}) {
        EXPECT_EQ(download(static_cast<QRX_U32>(offset), std::span(bytes).subspan(offset, 4096)).status, kGood);
    }
    EXPECT_EQ(rig.controller().download.pieces.size(), 1U);
    EXPECT_EQ(commit(0, 2), kGood);
    EXPECT_EQ(slots().contents[1].crc, image_crc(bytes));
}

TEST_F(FirmwareUpdate, OverlappingPiecesAreRefusedAndChangeNothing)
{
    const std::vector<QRX_U8> bytes(8192, 1);
    EXPECT_EQ(download(4096, std::span(bytes).first(4096)).status, kGood);
    const std::pair<QRX_U32, std::size_t> overlapping[] = {{4096, 4096}, {4096, 4}, {8188, 4}, {8188, 8},
                                                           {4092, 8},    {0, 8192}, {4, 8192}, {6000, 4}};
    for (const auto& [offset, length] : overlapping) {
        EXPECT_EQ(download(offset, std::span(bytes).first(length)).status, kOverlap) << offset << " " << length;
    }
    EXPECT_EQ(rig.controller().download.size(), 4096U);
    EXPECT_EQ(download(4092, std::span(bytes).first(4)).status, kGood);
    EXPECT_EQ(download(8192, std::span(bytes).first(4)).status, kGood);
    EXPECT_EQ(rig.controller().download.pieces.size(), 1U);
}

TEST_F(FirmwareUpdate, DownloadFromTheStartBeginsAnew)
{
    send(image("2.5.0.1100", 12288));
    send(image("2.6.0.1200", 4096));
    EXPECT_EQ(commit(0, 2), kGood);
    EXPECT_EQ(slots().contents[1].revision, "2.6.1200");
    EXPECT_EQ(slots().contents[1].size, 4096U);
}

TEST_F(FirmwareUpdate, PieceMustHaveTheLengthItTells)
{
    const std::vector<QRX_U8> bytes(4097, 1);
    EXPECT_EQ(download_words(1023, 0, std::span(bytes).first(4095)).status, kInvalidField);
    EXPECT_EQ(download_words(1023, 0, std::span(bytes).first(4097)).status, kInvalidField);
    EXPECT_EQ(download_words(0xFFFFFFFF, 0, std::span(bytes).first(3)).status, kInvalidField);
    EXPECT_EQ(download_words(0, 0, {}).status, kInvalidField);
    EXPECT_EQ(download_words(225, 1024, std::span(bytes).first(905)).status, kInvalidField);
    EXPECT_TRUE(rig.controller().download.empty());
}

TEST_F(FirmwareUpdate, PieceBeyondTheFlashIsRefused)
{
    rig = Rig::of_text(R"({"controllers": [{"adapter": {"flash_size": 8191}}]})");
    const std::vector<QRX_U8> bytes(4096, 1);
    EXPECT_EQ(download(0, bytes).status, kGood);
    EXPECT_EQ(download(4096, bytes).status, kGood) << "a last piece may be padded";
    EXPECT_EQ(download(8192, bytes).status, kInvalidField);
    EXPECT_EQ(download_words(1023, 0xFFFFFFFF, bytes).status, kInvalidField);
    rig = Rig::of_text(R"({"controllers": [{"adapter": {"flash_size": 0}}]})");
    EXPECT_EQ(download((16U << 20) - 4096, bytes).status, kGood);
    EXPECT_EQ(download(16U << 20, bytes).status, kInvalidField);
}

TEST_F(FirmwareUpdate, DamagedImageIsRefusedAndForgotten)
{
    std::vector<QRX_U8> bytes = image("2.5.0.1100");
    bytes[5000] ^= 0x10;
    send(bytes);
    EXPECT_EQ(commit(1, 2), kInvalidImage);
    EXPECT_TRUE(rig.controller().download.empty());
    EXPECT_EQ(slots(), FirmwareSlots());
}

TEST_F(FirmwareUpdate, ImageWithoutLabelIsTakenWithItsPadding)
{
    const std::vector<QRX_U8> bytes(4096, 0x33);
    send(bytes);
    EXPECT_EQ(commit(1, 2), kGood);
    EXPECT_EQ(slots().contents[1], *examine_image(bytes));
    EXPECT_EQ(slots().contents[1].size, 4096U);
}

TEST_F(FirmwareUpdate, RevokedImageIsStoredAndNeverRuns)
{
    const std::vector<QRX_U8> bytes = image("2.5.0.1100", 8192, true);
    for (const unsigned action : {1U, 3U}) {
        send(bytes);
        EXPECT_EQ(commit(action, 2), kProhibited);
        EXPECT_EQ(slots(), FirmwareSlots());
    }
    send(bytes);
    EXPECT_EQ(commit(0, 2), kGood);
    EXPECT_EQ(commit(2, 2), kProhibited);
    EXPECT_EQ(commit(3, 2), kProhibited);
    EXPECT_EQ(active_and_next(), 0x01);
}

TEST_F(FirmwareUpdate, RawImageIsCheckedByItsChecksum)
{
    constexpr QRX_U32 kKey = 0x20585251;  // "QRX "
    const std::vector<QRX_U8> raw_image = *make_image({"2.5.0.1100", ImageKind::kRawDigit, std::nullopt, false});
    const QRX_U32 crc = raw_image_crc(raw_image);
    const auto activate = [&](QRX_U32 type, QRX_U32 key, QRX_U32 value) {
        nvme_admin_cmd command{};
        command.opcode = 0xE2;
        command.cdw12 = type << 16 | 0x0BE0;
        command.cdw13 = key;
        command.cdw15 = value;
        return rig.admin(command).status;
    };
    EXPECT_EQ(activate(1, kKey, crc), 0x703U) << "nothing was downloaded";
    send(raw_image);
    EXPECT_EQ(activate(0, kKey, crc), 0x704U);
    EXPECT_EQ(activate(1, kKey ^ 1, crc), 0x704U);
    EXPECT_EQ(activate(1, kKey, crc), kGood);
    EXPECT_EQ(commit(1, 1), kGood);
    EXPECT_EQ(slots().contents[0].size, raw_image.size());
    send(raw_image);
    EXPECT_EQ(activate(1, kKey, crc ^ 1), 0x701U);
    EXPECT_EQ(commit(1, 1), kInvalidImage) << "what failed its check is gone";
}

TEST_F(FirmwareUpdate, ResetLosesADownloadAndSetsFeaturesAndClockBack)
{
    send(image("2.5.0.1100"));
    nvme_admin_cmd command{};
    command.opcode = 0x09;
    command.cdw10 = 0x04;
    command.cdw11 = 0x155;
    EXPECT_EQ(rig.admin(command).status, kGood);
    EXPECT_EQ(rig.vendor(0x03E0, 0x2222, 0x11110000).status, kGood);
    rig.machine().advance(std::chrono::seconds(5));
    const QRX_U64 cycles = rig.controller().health.power_cycles;
    const QRX_U64 drive_cycles = rig.controller().drives[0].health.power_cycles;
    reset();
    EXPECT_TRUE(rig.controller().download.empty());
    EXPECT_EQ(rig.controller().features, Features());
    EXPECT_EQ(rig.controller().clock, Clock());
    EXPECT_EQ(rig.controller().health.power_cycles, cycles + 1);
    EXPECT_EQ(rig.controller().drives[0].health.power_cycles, drive_cycles + 1);
    EXPECT_EQ(rig.controller().events.entries.back().text, "was reset; firmware 2.4.1063 runs");
    EXPECT_EQ(rig.controller().virtual_disks, Rig("raid").controller().virtual_disks);
}

TEST_F(FirmwareUpdate, StateKeepsAnUpdateInTheMiddle)
{
    const std::vector<QRX_U8> bytes = image("2.5.0.1100", 12288);
    EXPECT_EQ(download(0, std::span(bytes).first(4096)).status, kGood);
    EXPECT_EQ(commit(1, 5), kInvalidSlot);
    EXPECT_EQ(download(8192, std::span(bytes).subspan(8192)).status, kGood);
    Result<std::unique_ptr<Machine>> loaded = load_machine(save_machine(rig.machine()), "state.json");
    ASSERT_TRUE(loaded) << loaded.error();
    EXPECT_EQ((*loaded)->parts(), rig.machine().parts());
    rig = Rig::of_text(save_machine(rig.machine()));
    EXPECT_EQ(download(4096, std::span(bytes).subspan(4096, 4096)).status, kGood);
    EXPECT_EQ(commit(1, 1), kGood);
    rig = Rig::of_text(save_machine(rig.machine()));
    EXPECT_EQ(identified(), "2.4.1063");
    EXPECT_EQ(active_and_next(), 0x11);
    reset();
    rig = Rig::of_text(save_machine(rig.machine()));
    EXPECT_EQ(identified(), "2.5.1100");
    EXPECT_EQ(slots().contents[0], (FirmwareContent{"2.5.1100", "2.5.0.1100", 12288, image_crc(bytes), false}));
}

TEST_F(FirmwareUpdate, DamagedDownloadInAStateIsRefused)
{
    const auto error = [](const std::string& pieces) {
        return load_machine(R"({"controllers": [{"download": )" + pieces + "}]}", "s.json").error();
    };
    EXPECT_EQ(error(R"([{"offset": 0, "bytes": "00112233"}, {"offset": 2, "bytes": "44"}])"),
              "s.json:1: 'offset' overlaps an earlier piece");
    EXPECT_EQ(error(R"([{"offset": 0}])"), "s.json:1: 'bytes' is empty");
}

}  // namespace
}  // namespace qrx::sim
