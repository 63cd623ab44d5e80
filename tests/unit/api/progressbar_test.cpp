#include "api/src/function/progressbar/common/ProgressBar.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "api/src/function/progressbar/common/ProgressBarManagement.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

class ProgressBar : public testing::Test {
protected:
    ProgressBar() { progressbar_management_init(); }
    ~ProgressBar() override { progressbar_management_close(); }
};

// A worker that goes the way of an update: up to 100, a result, its own end.
void* climb(void* argument)
{
    auto* bar = static_cast<PQRXProgressBar>(argument);
    for (QRX_U8 percentage = 1; percentage <= 100; ++percentage) {
        bar->setPercentage(bar, percentage);
    }
    bar->setResult(bar, 0x106);
    bar->closeThread(bar);
    return nullptr;
}

TEST_F(ProgressBar, EachControllerHasItsOwnRecordMadeOnFirstUse)
{
    PQRXProgressBar first = progressbar_management_get_instance(0);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(progressbar_management_get_instance(0), first);
    EXPECT_NE(progressbar_management_get_instance(1087), first);
    EXPECT_NE(progressbar_management_get_instance(1087), nullptr);
    EXPECT_EQ(progressbar_management_get_instance(1088), nullptr);
    EXPECT_EQ(progressbar_management_get_instance(65535), nullptr);
    EXPECT_EQ(first->getPercentage(first), 0);
    EXPECT_EQ(first->getResult(first), 0U);
    EXPECT_EQ(first->getStatus(first), 0U);
    EXPECT_EQ(first->m_function, nullptr);
}

TEST_F(ProgressBar, KeepsWhatIsSet)
{
    PQRXProgressBar bar = progressbar_management_get_instance(3);
    bar->setPercentage(bar, 161);
    bar->setResult(bar, 0xFFFFFFFF);
    EXPECT_EQ(bar->getPercentage(bar), 161);
    EXPECT_EQ(bar->getResult(bar), 0xFFFFFFFF);
}

TEST_F(ProgressBar, ClosingEmptiesTheList)
{
    PQRXProgressBar bar = progressbar_management_get_instance(3);
    bar->setResult(bar, 7);
    progressbar_management_close();
    bar = progressbar_management_get_instance(3);
    EXPECT_EQ(bar->getResult(bar), 0U);
    progressbar_management_close();
    progressbar_management_close();
}

TEST_F(ProgressBar, APollerSeesProgressAndThenTheResult)
{
    PQRXProgressBar bar = progressbar_management_get_instance(0);
    bar->startThread(bar, climb, bar, 0);
    QRX_U8 last = 0;
    while (bar->getStatus(bar) == 1) {
        const QRX_U8 now = bar->getPercentage(bar);
        EXPECT_GE(now, last);
        last = now;
        std::this_thread::yield();
    }
    EXPECT_EQ(bar->getPercentage(bar), 100);
    EXPECT_EQ(bar->getResult(bar), 0x106U);
}

TEST_F(ProgressBar, StartingResetsTheRecord)
{
    PQRXProgressBar bar = progressbar_management_get_instance(0);
    static std::atomic<bool> go;
    go = false;
    bar->setPercentage(bar, 55);
    bar->setResult(bar, 9);
    bar->startThread(
        bar,
        [](void* argument) -> void* {
            while (!go) {
                std::this_thread::yield();
            }
            auto* self = static_cast<PQRXProgressBar>(argument);
            self->closeThread(self);
            return nullptr;
        },
        bar, 100);
    EXPECT_EQ(bar->getPercentage(bar), 0);
    EXPECT_EQ(bar->getResult(bar), 0U);
    EXPECT_EQ(bar->getStatus(bar), 1U);
    go = true;
    while (bar->getStatus(bar) == 1) {
        std::this_thread::yield();
    }
}

TEST_F(ProgressBar, TheRecordIsUsedAgainAndAgain)
{
    PQRXProgressBar bar = progressbar_management_get_instance(0);
    for (int update = 0; update < 300; ++update) {
        bar->startThread(bar, climb, bar, 0);
        while (bar->getStatus(bar) == 1) {
            std::this_thread::yield();
        }
        EXPECT_EQ(bar->getResult(bar), 0x106U);
    }
}

TEST_F(ProgressBar, ClosingFromOutsideWaitsForTheWorker)
{
    PQRXProgressBar bar = progressbar_management_get_instance(0);
    static std::atomic<bool> done;
    done = false;
    bar->startThread(
        bar,
        [](void*) -> void* {
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            done = true;
            return nullptr;
        },
        nullptr, 0);
    bar->closeThread(bar);
    EXPECT_TRUE(done);
    EXPECT_EQ(bar->getStatus(bar), 0U);
    bar->closeThread(bar);
}

TEST_F(ProgressBar, WithoutAThreadTheWorkIsOverAndFailed)
{
    Libc libc;
    libc.onThreadCreate = [] { return EAGAIN; };
    PQRXProgressBar bar = progressbar_management_get_instance(0);
    bar->startThread(bar, climb, bar, 0);
    EXPECT_EQ(bar->getStatus(bar), 0U);
    EXPECT_EQ(bar->getResult(bar), 1U);
    EXPECT_EQ(bar->getPercentage(bar), 0);
}

TEST_F(ProgressBar, ShortMemoryGivesNoRecord)
{
    Libc libc;
    libc.failAllocation(1);
    EXPECT_EQ(progressbar_management_get_instance(5), nullptr);
    EXPECT_NE(progressbar_management_get_instance(5), nullptr);
}

}  // namespace
