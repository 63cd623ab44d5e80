// The update object, and the typed calls with the worker in its thread.
#include <gtest/gtest.h>

#include <array>
#include <thread>

#include "api/src/function/flash/common/flash.h"
#include "api/src/function/flash/linux/linuxflash.h"
#include "api/src/function/progressbar/common/ProgressBarManagement.h"
#include "api/src/interface/flash.h"
#include "tests/unit/support/flash_image.h"
#include "tests/unit/support/libc.h"
#include "tests/unit/support/scripted_machine.h"

namespace {

using namespace qrx::test;

class FlashEngine : public testing::Test {
protected:
    FlashEngine()
    {
        progressbar_management_init();
        machine.addController();
        machine.addController({.path = "/dev/nvme1"});
        bar = progressbar_management_get_instance(1);
    }
    ~FlashEngine() override { progressbar_management_close(); }

    static Command segment(std::size_t number, const Bytes& data)
    {
        return Command::admin(17, 0, {1023, static_cast<QRX_U32>(number * 1024)}).sends(data).on(1);
    }
    static Command commit(QRX_U32 cdw10) { return Command::admin(16, 0, {cdw10}).on(1); }
    void expectImage(const Bytes& image)
    {
        std::size_t number = 0;
        for (const Bytes& data : segmentsOf(image)) {
            machine.expect(segment(number++, data));
        }
    }
    static QRX_U32 init(PQRXFlash flash, std::string name) { return flash->init(flash, name.data(), 1); }
    // A whole update in its own thread, to its end.
    NVME_Flash_Result update(std::string name, QRX_U8 fs, QRX_U8 ca, QRX_U8 type)
    {
        EXPECT_EQ(QRX_Adapter_Flash(1, name.data(), fs, ca, type), 0U);
        NVME_Flash_Result result{};
        QRX_U8 last = 0;
        do {
            EXPECT_EQ(QRX_Adapter_Flash_Result(1, &result), 0U);
            EXPECT_GE(result.percentage, last);
            last = result.percentage;
            std::this_thread::yield();
        } while (result.status != 0);
        bar->closeThread(bar);
        return result;
    }

    Libc libc;
    Scratch scratch;
    ScriptedMachine machine;
    PQRXProgressBar bar;
};

TEST_F(FlashEngine, AFreshObjectHoldsWhatItWasTold)
{
    PQRXFlash flash = CreateQRXFlashAdapterInstance(3, 5, 1);
    ASSERT_NE(flash, nullptr);
    EXPECT_EQ(flash->m_slot, 3);
    EXPECT_EQ(flash->m_ca, 5);
    EXPECT_EQ(flash->m_type, 1);
    EXPECT_EQ(flash->m_segment_size, 4096);
    EXPECT_EQ(flash->m_progress, nullptr);
    EXPECT_EQ(flash->m_d, nullptr);
    EXPECT_EQ(flash->m_has_read_flash_info, 0);
    flash->download(flash);  // without a device all three do nothing
    flash->active(flash);
    flash->sp_active(flash);
    flash->destructor(flash);
    for (const int allocation : {1, 2}) {
        libc.failAllocation(allocation);
        EXPECT_EQ(CreateQRXFlashAdapterInstance(3, 5, 1), nullptr) << allocation;
    }
}

TEST_F(FlashEngine, WithoutADeviceTheCommitsFail)
{
    PQRXFlash flash = CreateQRXFlashAdapterInstance(1, 1, 0);
    flash->m_progress = bar;
    flash->active(flash);
    EXPECT_EQ(bar->getResult(bar), 1U);
    bar->setResult(bar, 0);
    flash->sp_active(flash);
    EXPECT_EQ(bar->getResult(bar), 1U);
    flash->destructor(flash);
}

TEST_F(FlashEngine, InitOfAnImageSetsResultAndPercentage)
{
    Bytes image = pattern(8192);
    setSum(image);
    PQRXFlash flash = CreateQRXFlashAdapterInstance(1, 1, 0);
    bar->setResult(bar, 7);
    EXPECT_EQ(init(flash, scratch.file("f", textOf(image))), 0U);
    EXPECT_EQ(bar->getResult(bar), 0U);
    EXPECT_EQ(bar->getPercentage(bar), 1);
    EXPECT_EQ(flash->m_total_size, 8192U);
    EXPECT_EQ(flash->m_file->m_checksum_ret, 0U);
    EXPECT_EQ(flash->m_file->m_crc, headerCrc(image));
    EXPECT_EQ(flash->m_file->m_step_length, 4096U);
    EXPECT_NE(flash->m_d, nullptr);
    flash->destructor(flash);
}

TEST_F(FlashEngine, InitOfAnImageForActionThreeLeavesResultAndPercentage)
{
    PQRXFlash flash = CreateQRXFlashAdapterInstance(1, 3, 0);
    bar->setResult(bar, 7);
    EXPECT_EQ(init(flash, scratch.file("f", textOf(pattern(5000)))), 0U);
    EXPECT_EQ(bar->getResult(bar), 7U);
    EXPECT_EQ(bar->getPercentage(bar), 0);
    EXPECT_EQ(flash->m_file->m_checksum_ret, 1U);
    EXPECT_EQ(flash->m_file->m_crc, 0U);
    EXPECT_EQ(flash->m_total_size, 5000U);
    flash->destructor(flash);
}

TEST_F(FlashEngine, InitOfARawImageForActionThreeTakesItsCrc)
{
    const Bytes image = rawImage({0x80, 0x80, 0x80});
    PQRXFlash flash = CreateQRXFlashAdapterInstance(1, 3, 1);
    EXPECT_EQ(init(flash, scratch.file("f", textOf(image))), 0U);
    EXPECT_EQ(flash->m_file->m_checksum_ret, 0U);
    EXPECT_EQ(flash->m_file->m_crc, headerCrc(image));
    EXPECT_EQ(bar->getPercentage(bar), 0);
    flash->destructor(flash);
}

TEST_F(FlashEngine, InitWithNoImageForActionsTwoAndThree)
{
    for (const QRX_U8 ca : Bytes{2, 3}) {
        PQRXFlash flash = CreateQRXFlashAdapterInstance(1, ca, 0);
        bar->setResult(bar, 7);
        EXPECT_EQ(init(flash, ca == 2 ? "no such file" : scratch.file("empty", "")), 0U);
        EXPECT_EQ(bar->getResult(bar), 0U);
        EXPECT_EQ(bar->getPercentage(bar), 1);
        EXPECT_NE(flash->m_d, nullptr);
        flash->destructor(flash);
    }
}

TEST_F(FlashEngine, InitRefusesWhatItCannotHold)
{
    const std::string path = scratch.file("f", textOf(pattern(5000)));
    for (const QRX_U8 ca : Bytes{1, 3}) {
        PQRXFlash flash = CreateQRXFlashAdapterInstance(1, ca, 0);
        libc.failAllocation(1);
        EXPECT_EQ(init(flash, path), 1U);
        EXPECT_EQ(init(flash, ""), 1U);
        EXPECT_EQ(init(flash, scratch.path("")), 1U);
        libc.onLseek = [](int, off_t) { return off_t{0x100000000}; };
        EXPECT_EQ(init(flash, path), 1U);  // longer than offsets reach
        libc.onLseek = nullptr;
        flash->destructor(flash);
    }
}

TEST_F(FlashEngine, ThePercentageRisesWithTheSegments)
{
    const Bytes image = pattern(3 * 4096 + 1);
    PQRXFlash flash = CreateQRXFlashAdapterInstance(1, 1, 0);
    ASSERT_EQ(init(flash, scratch.file("f", textOf(image))), 0U);
    std::size_t number = 0;
    for (const Bytes& data : segmentsOf(image)) {
        machine.expect(segment(number++, data));
    }
    flash->download(flash);
    EXPECT_EQ(bar->getPercentage(bar), 16384 * 98 / 12289 + 1);  // 131: the last segment counts whole
    machine.expect(commit(9));
    flash->active(flash);
    EXPECT_EQ(bar->getPercentage(bar), 100);
    flash->destructor(flash);
}

TEST_F(FlashEngine, OfWholeSegmentsTheDownloadsShareIsNinetyNine)
{
    const Bytes image = pattern(2 * kSegmentSize);
    PQRXFlash flash = CreateQRXFlashAdapterInstance(1, 1, 0);
    ASSERT_EQ(init(flash, scratch.file("f", textOf(image))), 0U);
    expectImage(image);
    flash->download(flash);
    EXPECT_EQ(bar->getPercentage(bar), 99);
    EXPECT_EQ(flash->m_file->m_offset, 8192U);
    flash->destructor(flash);
}

TEST_F(FlashEngine, TheOffsetCountsTheLastSegmentWhole)
{
    const Bytes image = pattern(5000);
    PQRXFlash flash = CreateQRXFlashAdapterInstance(1, 1, 0);
    ASSERT_EQ(init(flash, scratch.file("f", textOf(image))), 0U);
    expectImage(image);
    flash->download(flash);
    EXPECT_EQ(flash->m_file->m_offset, 8192U);
    EXPECT_EQ(bar->getPercentage(bar), 161);
    flash->destructor(flash);
}

TEST_F(FlashEngine, AFailedSegmentIsTheLast)
{
    const Bytes image = pattern(4 * kSegmentSize);
    PQRXFlash flash = CreateQRXFlashAdapterInstance(1, 1, 0);
    ASSERT_EQ(init(flash, scratch.file("f", textOf(image))), 0U);
    machine.expect(segment(0, segmentsOf(image)[0]));
    machine.expect(segment(1, segmentsOf(image)[1]).status(1));
    flash->download(flash);
    EXPECT_EQ(bar->getResult(bar), 1U);
    EXPECT_EQ(bar->getPercentage(bar), 50);
    flash->destructor(flash);
}

TEST_F(FlashEngine, TheVendorStepTellsTypeAndCrc)
{
    const Bytes image = rawImage({0x80, 0x80, 0x80});
    PQRXFlash flash = CreateQRXFlashAdapterInstance(1, 1, 1);
    ASSERT_EQ(init(flash, scratch.file("f", textOf(image))), 0U);
    machine.expect(Command::passthru(0xE2)
                       .word(12, 0x00010BE0)
                       .word(13, 0x20585251)
                       .word(15, headerCrc(image))
                       .flag(0xB001)
                       .on(1)
                       .status(0x745));
    flash->sp_active(flash);
    EXPECT_EQ(bar->getResult(bar), 0x745U);
    EXPECT_EQ(bar->getPercentage(bar), 100);
    flash->destructor(flash);
}

TEST_F(FlashEngine, QueryTakesTheSlotThatRuns)
{
    PQRXFlash flash = CreateQRXFlashAdapterInstance(1, 2, 0);
    EXPECT_EQ(QRXFlash_query(flash), 1U);
    ASSERT_EQ(init(flash, ""), 0U);
    machine.expect(Command::admin(2, 0, {3}).receives(4096).on(1).status(0x109));
    EXPECT_EQ(QRXFlash_query(flash), 0x109U);
    EXPECT_EQ(flash->m_has_read_flash_info, 0);
    EXPECT_EQ(flash->m_slot, 1);
    machine.expect(Command::admin(2, 0, {3}).receives(4096).on(1).data({0xF5}));
    EXPECT_EQ(QRXFlash_query(flash), 0U);
    EXPECT_EQ(flash->m_has_read_flash_info, 1);
    EXPECT_EQ(flash->m_slot, 5);
    flash->destructor(flash);
}

TEST_F(FlashEngine, AWholeUpdateRunsInItsThread)
{
    const Bytes image = pattern(40 * kSegmentSize);
    expectImage(image);
    machine.expect(commit(6 | 1 << 3));
    const NVME_Flash_Result done = update(scratch.file("f", textOf(image)), 6, 1, 0);
    EXPECT_EQ(done.status, 0U);
    EXPECT_EQ(done.result, 0U);
    EXPECT_EQ(done.percentage, 100);
}

TEST_F(FlashEngine, TheRecordIsUsedAgainByTheNextUpdate)
{
    machine.expect(commit(5 | 2 << 3).status(0x10B));
    EXPECT_EQ(update("", 5, 2, 0).result, 0x10BU);
    machine.expect(commit(4 | 2 << 3));
    EXPECT_EQ(update("", 4, 2, 0).result, 0U);
    EXPECT_EQ(progressbar_management_get_instance(1), bar);
}

TEST_F(FlashEngine, AWorkerThatCannotBeginEndsWithAResult)
{
    for (const int allocation : {1, 2}) {
        bar->startThread = [](PQRXProgressBar _this, QRXThreadFunction func, void* mem, QRX_U32) {
            _this->m_result = 0;
            _this->m_status = 1;
            func(mem);
        };
        std::string name;
        libc.failAllocation(allocation);
        EXPECT_EQ(QRX_Adapter_Flash(1, name.data(), 1, 2, 0), 0U);
        NVME_Flash_Result result{};
        EXPECT_EQ(QRX_Adapter_Flash_Result(1, &result), 0U);
        EXPECT_EQ(result.status, 0U) << allocation;
        EXPECT_EQ(result.result, 1U);
    }
}

TEST_F(FlashEngine, WithoutARecordNothingStartsAndTheResultFails)
{
    std::string name;
    NVME_Flash_Result result{.status = 77, .result = 78, .percentage = 79};
    libc.failAllocation(1);
    EXPECT_EQ(QRX_Adapter_Flash(0, name.data(), 1, 2, 0), 0U);
    EXPECT_EQ(QRX_Adapter_Flash_Result(0, &result), 1U);  // though a record could be made by now
    EXPECT_EQ(result.status, 77U);
    machine.expect(Command::admin(16, 0, {1 | 2 << 3}).on(1));
    EXPECT_EQ(update("", 1, 2, 0).result, 0U);
    EXPECT_EQ(QRX_Adapter_Flash_Result(1, nullptr), 1U);
    EXPECT_EQ(QRX_Adapter_Flash_Result(1, &result), 0U);
}

TEST_F(FlashEngine, TheWorkerIsHandedOut)
{
    EXPECT_EQ(GetAdapterNvmeFlashAdapterFucntion(), thread_flash_adapter_nvme);
}

}  // namespace
