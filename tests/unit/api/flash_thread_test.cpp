// An update in its thread, polled from another, under ThreadSanitizer: a program of its own, because everything in it
// is built for that.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "api/src/device/common/DeviceManagement.h"
#include "api/src/function/progressbar/common/ProgressBarManagement.h"
#include "api/src/interface/flash.h"

namespace {

constexpr QRX_U8 kDownload = 17;
constexpr int kSegments = 64;

std::atomic<int> failing_segment;  // -1: none
std::atomic<int> segments;
std::atomic<int> commits;

QRX_U32 take(PDevice /*device*/, QRX_U8 opcode, QRX_U32 /*nsid*/, QRX_U32* /*cmd*/, QRX_U8 /*cmd_length*/,
             void* /*in_data*/, QRX_U16 /*in_length*/, void* /*out_data*/, QRX_U16 /*out_length*/)
{
    std::this_thread::yield();
    if (opcode == kDownload) {
        return segments++ == failing_segment ? 1 : 0;
    }
    ++commits;
    return 0;
}

class FlashThread : public testing::Test {
protected:
    FlashThread()
    {
        progressbar_management_init();
        device_.sendCommand = take;
        device_.getNVMEDevice = [](PDevice self) { return self; };
        PDeviceManagement table = GetDeviceManagementInstance();
        table->m_devs[0] = &device_;
        table->m_count = 1;

        const int descriptor = mkstemp(path_.data());
        FILE* image = fdopen(descriptor, "wb");
        const std::array<char, 4096> page{'x'};
        for (int i = 0; i < kSegments; ++i) {
            std::fwrite(page.data(), 1, page.size(), image);
        }
        std::fclose(image);
    }
    ~FlashThread() override
    {
        progressbar_management_close();
        GetDeviceManagementInstance()->m_count = 0;
        std::remove(path_.c_str());
    }

    // An update, polled until its status or result tells the end, as the command does it.
    NVME_Flash_Result update(int failing)
    {
        failing_segment = failing;
        segments = 0;
        commits = 0;
        QRX_Adapter_Flash(0, path_.data(), 1, 1, 0);
        NVME_Flash_Result result{};
        do {
            QRX_Adapter_Flash_Result(0, &result);
            std::this_thread::yield();
        } while (result.result == 0 && result.status != 0);
        return result;
    }

private:
    Device device_{};
    std::string path_ = (testing::TempDir() + "qrx-flash-XXXXXX");
};

TEST_F(FlashThread, UpdatesOneAfterTheOtherDoNotRace)
{
    for (int round = 0; round < 20; ++round) {
        EXPECT_EQ(update(-1).result, 0U);
        EXPECT_EQ(segments, kSegments);
        EXPECT_EQ(commits, 1);
        EXPECT_EQ(update(round).result, 1U);
        EXPECT_EQ(segments, round + 1);
        EXPECT_EQ(commits, 0);
    }
}

TEST_F(FlashThread, TheEndWaitsForTheWorker)
{
    failing_segment = -1;
    segments = 0;
    commits = 0;
    std::string name = (testing::TempDir() + "no such image");
    QRX_Adapter_Flash(0, name.data(), 1, 2, 0);
    progressbar_management_close();
    EXPECT_EQ(commits, 1);
}

}  // namespace
