// `flash -o hba` with plain images: what is sent, what is not, what is printed and returned.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "api/src/interface/flash.h"
#include "tests/unit/cli/flash_fixture.h"

namespace {

using namespace qrx::test;

class FlashController : public FlashTest {
protected:
    Outcome flash(const std::string& path, const std::string& ca = "1", const std::string& fs = "1")
    {
        return command({"flash", "-o", "hba", "-f", path, "-c", ca, "-s", fs});
    }
    const Outcome good{0, std::string(kStarted) + kSuccess};
    const Outcome refusedByWorker{1, kStarted + failedWith(1)};
};

TEST_F(FlashController, ImagesOfEverySizeAreSentInWholeSegments)
{
    current().MaxFlashSize = 0x5000;
    for (const std::size_t size : {1U, 3U, 4U, 4095U, 4096U, 4097U, 5000U, 8192U, 0x5000U}) {
        const Bytes image = pattern(size, 3);
        expectSegments(image);
        machine.expect(commit(1, 1));
        EXPECT_EQ(flash(fileOf(image)), good) << size;
        machine.verify();
    }
    EXPECT_EQ(flash(fileOf(pattern(0x5001))), (Outcome{1, kStartRefused}));
}

TEST_F(FlashController, AShortImageIsFilledUpWithZerosAndATailWithWhatWasThereBefore)
{
    Bytes page(4096);
    page[0] = 0xAB;
    machine.expect(segment(0, page));
    machine.expect(commit(1, 1));
    EXPECT_EQ(flash(fileOf({0xAB})), good);
    Bytes image = pattern(4098, 9);
    Bytes tail(image.begin(), image.begin() + 4096);
    tail[0] = image[4096];
    tail[1] = image[4097];
    machine.expect(segment(0, Bytes(image.begin(), image.begin() + 4096)));
    machine.expect(segment(1, tail));
    machine.expect(commit(1, 1));
    EXPECT_EQ(flash(fileOf(image)), good);
}

TEST_F(FlashController, WithoutAMostEverySizeGoes)
{
    current().MaxFlashSize = 0;
    const Bytes image = pattern(0x9001);
    expectSegments(image);
    machine.expect(commit(1, 1));
    EXPECT_EQ(flash(fileOf(image)), good);
}

TEST_F(FlashController, AnEmptyImageIsCommittedByActionThreeAlone)
{
    const std::string empty = scratch.file("empty", "");
    for (const char* ca : {"0", "1", "4", "5", "6", "7"}) {
        EXPECT_EQ(flash(empty, ca), refusedByWorker) << ca;
    }
    machine.expect(commit(1, 3));
    EXPECT_EQ(flash(empty, "3"), good);
}

TEST_F(FlashController, EveryActionAndSlotReachesTheCommit)
{
    const Bytes image = pattern(100);
    const std::string path = fileOf(image);
    for (QRX_U32 ca = 0; ca < 8; ++ca) {
        for (QRX_U32 fs = 0; fs < 8; ++fs) {
            if (ca != 2) {
                expectSegments(image);
            }
            machine.expect(commit(fs, ca));
            EXPECT_EQ(flash(path, std::to_string(ca), std::to_string(fs)), good);
            machine.verify();
        }
    }
}

TEST_F(FlashController, ActionTwoNeedsNoFileAndReadsNone)
{
    machine.expect(commit(1, 2));
    EXPECT_EQ(command({"flash", "-o", "hba", "-c", "2", "-s", "1"}), good);
    machine.expect(commit(7, 2));
    EXPECT_EQ(flash("/no/such/file", "2", "7"), good);
    EXPECT_EQ(pauses, 2);
}

TEST_F(FlashController, ActionThreeWithoutAFileSendsNothing)
{
    EXPECT_EQ(command({"flash", "-o", "hba", "-c", "3", "-s", "1"}), refusedByWorker);
    EXPECT_EQ(pauses, 1);
}

TEST_F(FlashController, NothingFollowsAFailedSegment)
{
    const Bytes image = pattern(5 * 4096 + 100);
    const std::string path = fileOf(image);
    for (std::size_t failing = 0; failing < 6; ++failing) {
        expectSegments(image, failing);
        EXPECT_EQ(flash(path), refusedByWorker) << failing;
        machine.verify();
    }
    expectSegments(image, 2);
    EXPECT_EQ(flash(path, "3"), refusedByWorker);
}

TEST_F(FlashController, TheStatusOfTheCommitDecides)
{
    const Bytes image = pattern(4096);
    const std::string path = fileOf(image);
    const auto withStatus = [&](QRX_U32 status) {
        expectSegments(image);
        machine.expect(commit(1, 1).status(status));
        return flash(path);
    };
    const std::string prohibited =
        std::string(kStarted) + "Flash NVMe Controller firmware failed(Firmware commit rohibited)\n";
    EXPECT_EQ(withStatus(0x111), good);
    EXPECT_EQ(withStatus(0x10B), good);
    EXPECT_EQ(withStatus(0x110), (Outcome{0x110, kStarted + failedWith(0x110)}));
    EXPECT_EQ(withStatus(0x107), (Outcome{0x107, kStarted + failedWith(263)}));
    EXPECT_EQ(withStatus(0x113), (Outcome{0x113, prohibited}));
    EXPECT_EQ(withStatus(0x517), (Outcome{0x517, prohibited}));  // all bits of 0x113 are in it
    EXPECT_EQ(withStatus(0x013), (Outcome{0x013, kStarted + failedWith(19)}));
    EXPECT_EQ(withStatus(0xFFFFFFFF), (Outcome{-1, prohibited}));
}

TEST_F(FlashController, WhatIsNoReadableFileIsRefused)
{
    ASSERT_EQ(mkfifo(scratch.path("pipe").c_str(), 0600), 0);
    libc.refuse("/forbidden", EACCES);
    for (const std::string& path : {scratch.path("none"), scratch.path(""), scratch.path("pipe"),
                                    std::string("/dev/zero"), std::string("/forbidden")}) {
        EXPECT_EQ(flash(path), (Outcome{1, "failed to open file " + path + "\n" + kStartRefused}));
    }
    EXPECT_EQ(flash(""), (Outcome{1, "flash: option -f is required\n"}));
    EXPECT_EQ(flash("'x'"), (Outcome{1, std::string("failed to open file 'x'\n") + kStartRefused,
                                     "Please use double quotation mark to include strings.\n"}));
}

TEST_F(FlashController, AFileThatCannotBeReadIsNotSent)
{
    const std::string path = fileOf(pattern(8192));
    libc.onRead = [](int, void*, std::size_t) {
        errno = EIO;
        return -1;
    };
    EXPECT_EQ(flash(path), refusedByWorker);
    libc.onRead = [](int, void*, std::size_t) { return 0; };  // it has shrunk to nothing since it was measured
    EXPECT_EQ(flash(path), refusedByWorker);
}

TEST_F(FlashController, AFileThatShrinksWhileItIsSentIsNotCommitted)
{
    const Bytes image = pattern(3 * kSegmentSize);
    const std::string path = fileOf(image);
    int reads = 0;
    libc.onRead = [&](int, void* data, std::size_t count) -> ssize_t {
        ++reads;  // the check, a segment, the end
        if (reads > 2) {
            return 0;
        }
        std::copy_n(image.begin(), count, static_cast<QRX_U8*>(data));
        return static_cast<ssize_t>(count);
    };
    machine.expect(segment(0, segmentsOf(image)[0]));
    EXPECT_EQ(flash(path), refusedByWorker);
}

TEST_F(FlashController, AFileThatGrowsWhileItIsSentIsNotCommitted)
{
    const Bytes image = pattern(2 * kSegmentSize);
    const std::string path = fileOf(image);
    int reads = 0;  // the check, and two segments
    int growing = 1;
    libc.onRead = [&](int, void* data, std::size_t count) {
        if (++reads == growing) {
            std::filesystem::resize_file(path, image.size() + 1);
        }
        const std::size_t offset = reads == 3 ? kSegmentSize : 0;
        std::copy_n(image.begin() + static_cast<std::ptrdiff_t>(offset), count, static_cast<QRX_U8*>(data));
        return static_cast<ssize_t>(count);
    };
    EXPECT_EQ(flash(path), refusedByWorker);
    for (growing = 2; growing <= 3; ++growing) {
        std::filesystem::resize_file(path, image.size());
        reads = 0;
        machine.expect(segment(0, segmentsOf(image)[0]));
        machine.expect(segment(1, segmentsOf(image)[1]));
        EXPECT_EQ(flash(path), refusedByWorker) << growing;
    }
}

TEST_F(FlashController, OnlyTheFileThatWasCheckedIsSent)
{
    // Each opening takes a single quote off the end of the name.
    const std::string path = scratch.file("image''", textOf(pattern(kSegmentSize)));
    const std::string second = scratch.file("image'", textOf(pattern(kSegmentSize)));
    const std::string third = scratch.file("image", textOf(pattern(2 * kSegmentSize)));
    EXPECT_EQ(flash(path), refusedByWorker);
    EXPECT_EQ(flash(scratch.file("image'''", textOf(pattern(kSegmentSize)))), refusedByWorker);
}

TEST_F(FlashController, AFileThatChangesWhileItIsSentIsNotCommitted)
{
    const Bytes image = pattern(2 * kSegmentSize);
    const std::string path = fileOf(image);
    std::vector<Bytes> answers = segmentsOf(image);  // the reads: the check, and two segments
    answers.insert(answers.begin(), image);
    answers[2][4095] ^= 1;
    std::size_t reads = 0;
    libc.onRead = [&](int, void* data, std::size_t count) -> ssize_t {
        const Bytes& from = answers.at(reads++);
        std::copy_n(from.begin(), count, static_cast<QRX_U8*>(data));
        return static_cast<ssize_t>(count);
    };
    machine.expect(segment(0, answers[1]));
    machine.expect(segment(1, answers[2]));
    EXPECT_EQ(flash(path), refusedByWorker);
}

TEST_F(FlashController, ShortOfMemoryTheUpdateEndsAndNothingIsSent)
{
    const std::string path = fileOf(pattern(8192));
    for (int allocation = 1; allocation <= 4; ++allocation) {  // the object, its reader, the image, the segment
        const Outcome outcome = outcomeOf([&] {
            std::string name = path;
            QRX_Adapter_Flash(1, nullptr, 1, 1, 0);  // no file: the record of progress is there already
            libc.failAllocation(allocation);
            QRX_Adapter_Flash(1, name.data(), 1, 1, 0);
            NVME_Flash_Result result{};
            EXPECT_EQ(QRX_Adapter_Flash_Result(1, &result), 0U);
            EXPECT_EQ(result.status, 0U);
            return static_cast<int>(result.result);
        });
        EXPECT_EQ(libc.allocation_to_fail, 0) << allocation;
        EXPECT_EQ(outcome, (Outcome{1, ""})) << allocation;
    }
}

TEST_F(FlashController, APollTellsHowFarItIsOnceASecond)
{
    static PQRXProgressBar shown;
    shown = bar;
    bar->startThread = [](PQRXProgressBar _this, QRXThreadFunction, void*, QRX_U32) {
        _this->m_percentage = 0;
        _this->m_result = 0;
        _this->m_status = 1;
    };
    qrx::flashPause = [] {
        static constexpr QRX_U8 kSteps[] = {1, 50, 99, 100};
        if (pauses < 4) {
            shown->m_percentage = kSteps[pauses];
        } else {
            shown->m_status = 0;
        }
        ++pauses;
    };
    EXPECT_EQ(command({"flash", "-o", "hba", "-c", "2", "-s", "1"}),
              (Outcome{0, std::string(kStarted) +
                              "flash NVMe Controller, percentage 0\n"
                              "flash NVMe Controller, percentage 1\n"
                              "flash NVMe Controller, percentage 50\n"
                              "flash NVMe Controller, percentage 99\n"
                              "flash NVMe Controller, percentage 99\n" +
                              kSuccess}));
    EXPECT_EQ(pauses, 6);
}

TEST_F(FlashController, AResultIsToldBeforeTheWorkerHasEnded)
{
    bar->startThread = [](PQRXProgressBar _this, QRXThreadFunction, void*, QRX_U32) {
        _this->m_result = 0x106;
        _this->m_status = 1;
    };
    EXPECT_EQ(command({"flash", "-o", "hba", "-c", "2", "-s", "1"}), (Outcome{0x106, kStarted + failedWith(262)}));
    EXPECT_EQ(pauses, 1);
}

TEST_F(FlashController, AnUnknownStatusEndsIt)
{
    bar->startThread = [](PQRXProgressBar _this, QRXThreadFunction, void*, QRX_U32) {
        _this->m_result = 0;
        _this->m_status = 5;
    };
    EXPECT_EQ(command({"flash", "-o", "hba", "-c", "2", "-s", "1"}),
              (Outcome{0, std::string(kStarted) + "Unknown flash NVMe Controller status 5\n"}));
    EXPECT_EQ(pauses, 1);
}

TEST_F(FlashController, WithoutAThreadTheUpdateFails)
{
    progressbar_management_close();
    libc.onThreadCreate = [] { return EAGAIN; };
    EXPECT_EQ(command({"flash", "-o", "hba", "-c", "2", "-s", "1"}), refusedByWorker);
}

TEST_F(FlashController, WithoutARecordOfProgressTheUpdateFails)
{
    progressbar_management_close();
    std::string name;
    const Outcome outcome = outcomeOf([&] {
        libc.failAllocation(1);
        return static_cast<int>(updateAdapterFlash(1, name.data(), 1, 2, 0));
    });
    EXPECT_EQ(outcome, (Outcome{1, std::string(kStarted) +
                                       "Get NVMe Controller flash result failed (Invalid firmware image, please check "
                                       "image and try again.)\n"}));
    EXPECT_EQ(pauses, 1);
}

TEST_F(FlashController, TheSizeCheckLooksAtTheControllersOwnRecord)
{
    const std::string path = fileOf(pattern(5000));
    records[0].MaxFlashSize = 4999;
    records[1].MaxFlashSize = 5000;
    EXPECT_EQ(checkFileSize(0, path.c_str()), 1U);
    EXPECT_EQ(checkFileSize(1, path.c_str()), 0U);
    EXPECT_EQ(checkFileSize(77, path.c_str()), 0U);  // no record: nothing to compare with
}

TEST_F(FlashController, ARealThreadDoesTheSame)
{
    progressbar_management_close();
    const Bytes image = pattern(20 * kSegmentSize);
    expectSegments(image);
    machine.expect(commit(2, 1));
    const Outcome outcome = flash(fileOf(image), "1", "2");
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.stream.substr(0, std::string(kStarted).size()), kStarted);
    EXPECT_EQ(outcome.stream.substr(outcome.stream.size() - std::string(kSuccess).size()), kSuccess);
}

}  // namespace
