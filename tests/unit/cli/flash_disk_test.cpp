// `flash -o pd`: what goes through the tunnel, what does not, what is printed and returned.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "api/src/device/common/DeviceManagement.h"
#include "tests/unit/cli/flash_fixture.h"

namespace {

using namespace qrx::test;

class FlashDisk : public FlashTest {
protected:
    Outcome flash(const std::string& path, const std::string& ca = "1", const std::string& fs = "1")
    {
        return command({"flash", "-o", "pd", "-i", "6", "-f", path, "-s", fs, "-c", ca});
    }
    static Command download(std::size_t offset, const Bytes& data)
    {
        return Command::passthru(0xC3)
            .word(1, 6)
            .word(10, static_cast<QRX_U32>(data.size() / 4 - 1))
            .word(11, static_cast<QRX_U32>(offset / 4))
            .word(14, 0x11)
            .flag(0x4C03)
            .sends(data)
            .on(1);
    }
    static Command diskCommit(QRX_U32 cdw10)
    {
        return Command::passthru(0xC3).word(1, 6).word(10, cdw10).word(14, 0x10).flag(0x4403).on(1);
    }
    // Expects the segments of an image, the last one at its exact length, up to the one that fails. Returns the lines
    // that tell of them.
    std::string expectDownload(const Bytes& image, std::size_t failing = ~std::size_t{0})
    {
        std::string lines;
        for (std::size_t i = 0; i * 4096 < image.size() && i <= failing; ++i) {
            const auto from = image.begin() + static_cast<long>(i * 4096);
            const std::size_t length = std::min<std::size_t>(4096, image.size() - i * 4096);
            machine.expect(
                download(i * 4096, Bytes(from, from + static_cast<long>(length))).status(i == failing ? 0x107 : 0));
            lines += "Download firmware percentage:" + std::to_string(i * 4096 * 100 / image.size()) + "\n";
        }
        return lines;
    }
    static inline const std::string kDone =
        "Flash NVMe Controller disk 6 firmware success, please shutdown and boot again to make firmware active.\n";
    static inline const std::string kDownloadFailed =
        "\nStart to flash NVMe Controller disk 6 firmware failed (Invalid firmware image, please check image and try "
        "again.)\n";
    static inline const std::string kImageStatus = "Invalid Firmware Image (Status Code: 0x107)\n";
};

TEST_F(FlashDisk, ImagesOfEverySizeAreSentToTheirExactEnd)
{
    for (const std::size_t size : {1U, 3U, 4U, 4095U, 4096U, 4097U, 5000U, 8192U, 8198U}) {
        const Bytes image = pattern(size, 3);
        const std::string lines = expectDownload(image);
        machine.expect(diskCommit(9));
        EXPECT_EQ(flash(fileOf(image)), (Outcome{0, lines + kDone})) << size;
        machine.verify();
    }
}

TEST_F(FlashDisk, OnePageIsOneSegmentAndOneLine)
{
    const Bytes image = pattern(4096);
    machine.expect(Command::passthru(0xC3).word(1, 6).word(10, 1023).word(14, 0x11).flag(0x4C03).sends(image).on(1));
    machine.expect(diskCommit(9));
    EXPECT_EQ(flash(fileOf(image)), (Outcome{0, "Download firmware percentage:0\n" + kDone}));
}

TEST_F(FlashDisk, TheMostOfTheControllerIsNoLimitForADisk)
{
    current().MaxFlashSize = 100;
    const Bytes image = pattern(101);
    const std::string lines = expectDownload(image);
    machine.expect(diskCommit(9));
    EXPECT_EQ(flash(fileOf(image)), (Outcome{0, lines + kDone}));
}

TEST_F(FlashDisk, EveryActionSlotAndBootPartitionReachesTheCommit)
{
    const Bytes image = pattern(100);
    const std::string path = fileOf(image);
    for (QRX_U32 ca = 0; ca < 8; ++ca) {
        for (QRX_U32 fs = 0; fs < 8; ++fs) {
            for (QRX_U32 bp = 0; bp < 2; ++bp) {
                const std::string lines = ca != 2 ? expectDownload(image) : "";
                machine.expect(diskCommit(fs | ca << 3 | bp << 31));
                EXPECT_EQ(command({"flash", "-o", "hd", "-i", "6", "-f", path, "-s", std::to_string(fs), "-c",
                                   std::to_string(ca), "-b", std::to_string(bp)}),
                          (Outcome{0, lines + (ca == 3 ? "flash NVMe Controller firmware success\n" : kDone)}));
                machine.verify();
            }
        }
    }
}

TEST_F(FlashDisk, ActionsTwoAndThreeCommitAloneWithoutAFile)
{
    machine.expect(diskCommit(1 | 2 << 3 | 1U << 31));
    EXPECT_EQ(command({"flash", "-o", "pd", "-i", "6", "-c", "2", "-s", "1", "-b", "1"}), (Outcome{0, kDone}));
    machine.expect(diskCommit(1 | 3 << 3));
    EXPECT_EQ(command({"flash", "-o", "pd", "-i", "6", "-c", "3", "-s", "1"}),
              (Outcome{0, "flash NVMe Controller firmware success\n"}));
    machine.expect(diskCommit(1 | 2 << 3));
    EXPECT_EQ(flash("/no/such/file", "2"), (Outcome{0, kDone}));
}

TEST_F(FlashDisk, TheRawTypeHasNoEffect)
{
    const Bytes image = pattern(10);
    const std::string lines = expectDownload(image);
    machine.expect(diskCommit(9));  // the defaults
    EXPECT_EQ(command({"flash", "-o", "pd", "-i", "6", "-t", "raw", "-f", fileOf(image)}), (Outcome{0, lines + kDone}));
}

TEST_F(FlashDisk, NoCommitFollowsAFailedSegment)
{
    const Bytes image = pattern(5 * 4096 + 100);
    const std::string path = fileOf(image);
    for (std::size_t failing = 0; failing < 6; ++failing) {
        const std::string lines = expectDownload(image, failing);
        const auto counted = static_cast<int>(std::min<std::size_t>(image.size(), (failing + 1) * 4096));
        EXPECT_EQ(flash(path), (Outcome{counted, lines + kDownloadFailed, kImageStatus})) << failing;
        machine.verify();
    }
    for (const QRX_U32 status : {0x10BU, 0x110U, 0x111U, 0xFFFFFFFFU}) {  // good for a commit, not for a segment
        machine.expect(download(0, Bytes(image.begin(), image.begin() + 4096)).status(status));
        const Outcome outcome = flash(path);
        EXPECT_EQ(outcome.result, 4096);
        EXPECT_EQ(outcome.stream, "Download firmware percentage:0\n" + kDownloadFailed);
        machine.verify();
    }
}

TEST_F(FlashDisk, TheStatusOfTheCommitDecides)
{
    const auto withStatus = [&](QRX_U32 status, const char* ca) {
        machine.expect(diskCommit(1 | static_cast<QRX_U32>(ca[0] - '0') << 3).status(status));
        return command({"flash", "-o", "pd", "-i", "6", "-c", ca, "-s", "1"});
    };
    EXPECT_EQ(withStatus(0x10B, "2"),
              (Outcome{0, kDone, "Firmware Activation Requires Conventional Reset (Status Code: 0x10b)\n"}));
    EXPECT_EQ(withStatus(0x110, "2"),
              (Outcome{0, kDone, "Firmware Activation Requires NVM Subsystem Reset (Status Code: 0x110)\n"}));
    EXPECT_EQ(withStatus(0x111, "2"), (Outcome{0, kDone, "Firmware Activation Requires Reset (Status Code: 0x111)\n"}));
    EXPECT_EQ(withStatus(0x111, "3"), (Outcome{0, "flash NVMe Controller firmware success\n",
                                               "Firmware Activation Requires Reset (Status Code: 0x111)\n"}));
    const std::string failed = "Flash NVMe Controller disk 6 firmware failed.\n";
    EXPECT_EQ(withStatus(0x106, "3"), (Outcome{0x106, failed, "Invalid Firmware Slot (Status Code: 0x106)\n"}));
    EXPECT_EQ(withStatus(0x113, "2"),
              (Outcome{0x113, failed, "Firmware Activation Prohibited (Status Code: 0x113)\n"}));
    EXPECT_EQ(withStatus(0xFFFFFFFF, "2"), (Outcome{-1, failed, "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(FlashDisk, WhatIsNoReadableFileIsRefused)
{
    ASSERT_EQ(mkfifo(scratch.path("pipe").c_str(), 0600), 0);
    libc.refuse("/forbidden", EACCES);
    for (const std::string& path : {scratch.path("none"), scratch.path(""), scratch.path("pipe"),
                                    std::string("/dev/zero"), std::string("/forbidden")}) {
        EXPECT_EQ(flash(path), (Outcome{1, "failed to open file " + path + "\n"}));
    }
}

TEST_F(FlashDisk, AnEmptyFileIsRefused)
{
    const std::string path = scratch.file("empty", "");
    for (const char* ca : {"0", "1", "3", "7"}) {
        EXPECT_EQ(flash(path, ca), (Outcome{1, "file " + path + " is empty\n"}));
    }
}

TEST_F(FlashDisk, AnEmptyNameIsNoImageToCommit)
{
    for (const char* ca : {"0", "1", "4", "7"}) {
        EXPECT_EQ(flash("", ca), (Outcome{1, "flash: option -f is required\n"})) << ca;
    }
    machine.expect(diskCommit(1 | 3 << 3));
    EXPECT_EQ(flash("\"\"", "3"), (Outcome{0, "flash NVMe Controller firmware success\n"}));
}

TEST_F(FlashDisk, AnImageThatOffsetsCannotReachIsRefused)
{
    const std::string path = scratch.file("large", "");
    ASSERT_EQ(truncate(path.c_str(), 0x100000000), 0);
    EXPECT_EQ(flash(path), (Outcome{1, "file " + path + " is too large\n"}));
}

TEST_F(FlashDisk, AFileThatShrinksWhileItIsSentIsNotCommitted)
{
    const std::string path = fileOf(pattern(3 * kSegmentSize));
    static std::string shrinking;
    shrinking = path;
    int sent = 0;
    // The file is cut when its first segment has gone. What is read ahead of it is at most a page.
    machine.clear();
    PDevice device = GetDeviceManagementInstance()->m_devs[1]->getNVMEDevice(GetDeviceManagementInstance()->m_devs[1]);
    static int* counter;
    counter = &sent;
    device->sendPassthruAdmin = [](PDevice, void*, void*, QRX_U16, void*, QRX_U16, QRX_U32*) -> QRX_U32 {
        ++*counter;
        EXPECT_EQ(truncate(shrinking.c_str(), 4096 + 10), 0);
        return 0;
    };
    EXPECT_EQ(flash(path), (Outcome{1,
                                    "Download firmware percentage:0\nDownload firmware percentage:33\n"
                                    "failed to read file " +
                                        path + "\n"}));
    EXPECT_EQ(sent, 1);
}

TEST_F(FlashDisk, AFileThatGrowsWhileItIsSentIsNotCommitted)
{
    static std::string growing;
    growing = fileOf(pattern(2 * kSegmentSize));
    machine.clear();
    PDevice device = GetDeviceManagementInstance()->m_devs[1]->getNVMEDevice(GetDeviceManagementInstance()->m_devs[1]);
    static int sent;
    sent = 0;
    device->sendPassthruAdmin = [](PDevice, void*, void*, QRX_U16, void*, QRX_U16, QRX_U32*) -> QRX_U32 {
        ++sent;
        EXPECT_EQ(truncate(growing.c_str(), 2 * kSegmentSize + 1), 0);
        return 0;
    };
    EXPECT_EQ(flash(growing), (Outcome{1,
                                       "Download firmware percentage:0\nDownload firmware percentage:50\n"
                                       "file " +
                                           growing + " has grown\n"}));
    EXPECT_EQ(sent, 2);
}

TEST_F(FlashDisk, TheDiskIsNamedByTheNumberingInUse)
{
    g_oneBaseMode = 1;
    machine.expect(diskCommit(1 | 2 << 3).status(0x106));
    EXPECT_EQ(command({"flash", "-o", "pd", "-i", "7", "-c", "2", "-s", "1"}),
              (Outcome{0x106, "Flash NVMe Controller disk 7 firmware failed.\n",
                       "Invalid Firmware Slot (Status Code: 0x106)\n"}));
    EXPECT_EQ(command({"flash", "-o", "pd", "-i", "0", "-c", "2", "-s", "1"}), (Outcome{1, "-i : invalid id '0'.\n"}));
}

TEST_F(FlashDisk, DebugLinesTellEachSegmentAndTheCommit)
{
    dbg_enable = 1;
    const Bytes image = pattern(5000);
    expectDownload(image);
    machine.expect(diskCommit(9).status(0x111));
    EXPECT_EQ(flash(fileOf(image)).stream,
              "total_size: 5000\n"
              "Download firmware percentage:0\n"
              "count: 0, offset: 0\n"
              "admin_cmd.CDW[10]: 0x3ff\n"
              "admin_cmd.CDW[11]: 0x0\n"
              "admin_cmd.CDW[14]: 0x11\n"
              "Download firmware percentage:81\n"
              "count: 1, offset: 4096\n"
              "It is last page: current data length: 4096\n"
              "offset: 4096, data length: 904, total_size: 5000\n"
              "admin_cmd.CDW[10]: 0xe1\n"
              "admin_cmd.CDW[11]: 0x400\n"
              "admin_cmd.CDW[14]: 0x11\n"
              "admin_cmd.CDW[0]: 0xc3\n"
              "admin_cmd.CDW[1]: 0x6\n"
              "admin_cmd.CDW[10]: 0x9\n"
              "admin_cmd.CDW[14]: 0x10\n"
              "errStatus: 0x111\n" +
                  kDone);
}

}  // namespace
