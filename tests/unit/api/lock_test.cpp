#include "api/src/function/lock/lock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;
using std::chrono::steady_clock;

struct CloseLock {
    void operator()(PQRXLock lock) const { lock->close(lock); }
};
using OwnedLock = std::unique_ptr<QRXLock, CloseLock>;

// Semaphores of a name that no other process has, gone at the end.
class DeviceLock : public testing::Test {
protected:
    DeviceLock() : name("qrx-test-" + std::to_string(getpid())) { sem_unlink(name.c_str()); }
    ~DeviceLock() override { sem_unlink(name.c_str()); }

    OwnedLock open() const
    {
        OwnedLock lock(CreateQRXLockInstance());
        lock->init(lock.get(), name.c_str());
        return lock;
    }
    static int value(const OwnedLock& lock)
    {
        int count = -1;
        sem_getvalue(lock->m_handle, &count);
        return count;
    }
    static double seconds(steady_clock::time_point since)
    {
        return std::chrono::duration<double>(steady_clock::now() - since).count();
    }
    // Makes every wait time out at once, and tells for how long it would have waited.
    void shortenWaits()
    {
        libc.onGettimeofday = [](timeval* now) {
            *now = {.tv_sec = 1000, .tv_usec = 250000};
            return 0;
        };
        libc.onSemTimedwait = [this](sem_t* semaphore, const timespec* deadline) {
            last_deadline = *deadline;
            if (sem_trywait(semaphore) == 0) {
                return 0;
            }
            ++timeouts;
            errno = ETIMEDOUT;
            return -1;
        };
    }

    std::string name;
    Libc libc;
    timespec last_deadline{};
    int timeouts = 0;
};

TEST_F(DeviceLock, ThatAnotherProcessMadeInBetweenStaysHeld)
{
    const OwnedLock theirs = open();
    theirs->lock(theirs.get());
    int opens = 0;
    libc.onSemOpen = [&](const char*, int flags) {
        errno = ENOENT;
        EXPECT_EQ((flags & O_CREAT) != 0, opens > 0);
        return opens++ == 0 ? static_cast<sem_t*>(SEM_FAILED) : theirs->m_handle;
    };
    const OwnedLock ours = open();
    EXPECT_EQ(opens, 2);
    EXPECT_EQ(value(ours), 0);
}

TEST_F(DeviceLock, StartsWithoutASemaphore)
{
    const OwnedLock lock(CreateQRXLockInstance());
    EXPECT_EQ(lock->m_handle, nullptr);
    EXPECT_STREQ(lock->lockName, "");
}

TEST_F(DeviceLock, CreatesItsSemaphoreWithCountOne)
{
    const OwnedLock lock = open();
    ASSERT_NE(lock->m_handle, nullptr);
    EXPECT_EQ(lock->lockName, name);
    EXPECT_EQ(value(lock), 1);
}

TEST_F(DeviceLock, ItsSemaphoreIsForAllUsers)
{
    const mode_t mask = umask(0);
    const OwnedLock lock = open();
    (void)umask(mask);
    struct stat status {};
    ASSERT_EQ(stat(("/dev/shm/sem." + name).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, mode_t{0777});
}

TEST_F(DeviceLock, JoinsASemaphoreThatExists)
{
    const OwnedLock first = open();
    first->lock(first.get());
    const OwnedLock second = open();
    EXPECT_EQ(value(second), 0);
    first->unlock(first.get());
    EXPECT_EQ(value(second), 1);
}

TEST_F(DeviceLock, TakesTheCountAndGivesItBack)
{
    const OwnedLock lock = open();
    lock->lock(lock.get());
    EXPECT_EQ(value(lock), 0);
    lock->unlock(lock.get());
    EXPECT_EQ(value(lock), 1);
}

TEST_F(DeviceLock, StaysInTheSystemWhenClosed)
{
    OwnedLock lock = open();
    lock->lock(lock.get());
    lock.reset();
    const OwnedLock later = open();
    EXPECT_EQ(value(later), 0);
}

TEST_F(DeviceLock, WaitsForFiveSeconds)
{
    shortenWaits();
    const OwnedLock lock = open();
    lock->lock(lock.get());
    EXPECT_EQ(last_deadline.tv_sec, 1005);
    EXPECT_EQ(last_deadline.tv_nsec, 250000000);
    EXPECT_EQ(timeouts, 0);
}

TEST_F(DeviceLock, AfterATimeOutNothingIsGivenBack)
{
    shortenWaits();
    const OwnedLock holder = open();
    const OwnedLock other = open();
    holder->lock(holder.get());
    for (int command = 1; command <= 2; ++command) {
        other->lock(other.get());
        EXPECT_EQ(timeouts, command);
        other->unlock(other.get());
        EXPECT_EQ(value(other), 0);
    }
    holder->unlock(holder.get());
    EXPECT_EQ(value(other), 1);
}

TEST_F(DeviceLock, ALeftoverCountOfZeroCostsEachHolderTheFullWaitAndNoMore)
{
    OwnedLock dead = open();
    dead->lock(dead.get());
    dead.reset();
    const OwnedLock lock = open();
    const auto start = steady_clock::now();
    lock->lock(lock.get());
    EXPECT_GE(seconds(start), 4.9);
    EXPECT_LT(seconds(start), 8.0);
    lock->unlock(lock.get());
    EXPECT_EQ(value(lock), 0);
}

TEST_F(DeviceLock, KeepsTwoProcessesApart)
{
    // Both add to a counter that they read and write apart; without the lock, additions get lost.
    struct Shared {
        std::atomic<int> inside;
        std::atomic<int> collisions;
        volatile int counter;
    };
    auto* shared =
        static_cast<Shared*>(mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(static_cast<void*>(shared), MAP_FAILED);
    constexpr int kRounds = 200;
    const OwnedLock parent = open();
    const auto work = [&](PQRXLock lock) {
        for (int round = 0; round < kRounds; ++round) {
            lock->lock(lock);
            shared->collisions += shared->inside.exchange(1);
            const int before = shared->counter;
            std::this_thread::yield();
            shared->counter = before + 1;
            shared->inside = 0;
            lock->unlock(lock);
        }
    };
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const OwnedLock own = open();
        work(own.get());
        _exit(0);
    }
    work(parent.get());
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(shared->collisions, 0);
    EXPECT_EQ(shared->counter, 2 * kRounds);
    EXPECT_EQ(value(parent), 1);
    munmap(shared, sizeof(Shared));
}

TEST_F(DeviceLock, AWaitingProcessGetsTheLockWhenTheHolderGivesItBack)
{
    const OwnedLock lock = open();
    lock->lock(lock.get());
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const OwnedLock own = open();
        own->lock(own.get());
        _exit(own->m_held ? 0 : 1);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, WNOHANG), 0);
    lock->unlock(lock.get());
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST_F(DeviceLock, WithoutASemaphoreItDoesNothing)
{
    std::vector<int> flags;
    libc.onSemOpen = [&](const char* given, int flag) {
        EXPECT_EQ(given, name);
        flags.push_back(flag);
        errno = EACCES;
        return static_cast<sem_t*>(SEM_FAILED);
    };
    const OwnedLock lock = open();
    EXPECT_EQ(flags, (std::vector<int>{O_RDWR, O_CREAT | O_RDWR}));
    EXPECT_EQ(lock->m_handle, nullptr);
    lock->lock(lock.get());
    lock->unlock(lock.get());
    EXPECT_FALSE(lock->m_held);
}

TEST_F(DeviceLock, NullLocksAreLeftAlone)
{
    const OwnedLock lock(CreateQRXLockInstance());
    lock->init(nullptr, "x");
    lock->lock(nullptr);
    lock->unlock(nullptr);
    lock->close(nullptr);
    EXPECT_EQ(lock->m_handle, nullptr);
}

TEST_F(DeviceLock, CutsANameThatIsTooLong)
{
    std::string opened;
    libc.onSemOpen = [&](const char* given, int) {
        opened = given;
        return static_cast<sem_t*>(SEM_FAILED);
    };
    const OwnedLock lock(CreateQRXLockInstance());
    lock->init(lock.get(), std::string(500, 'n').c_str());
    EXPECT_EQ(opened, std::string(127, 'n'));
}

TEST_F(DeviceLock, ShortMemoryGivesNoLock)
{
    libc.failAllocation(1);
    EXPECT_EQ(CreateQRXLockInstance(), nullptr);
}

}  // namespace
