#include "api/src/function/lock/lock.h"

#include <fcntl.h>
#include <sys/time.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "api/src/function/log/log.h"

namespace {

constexpr mode_t kEverybody = 0777;
constexpr unsigned kFree = 1;
constexpr time_t kLongestWait = 5;  // seconds: a guard against a holder that died

int valueOf(sem_t* semaphore)
{
    int value = 0;
    sem_getvalue(semaphore, &value);
    return value;
}

void QRXLock_init(PQRXLock lock, const char* name)
{
    if (lock == nullptr) {
        return;
    }
    std::snprintf(lock->lockName, sizeof(lock->lockName), "%s", name);
    lock->m_handle = sem_open(lock->lockName, O_RDWR, kEverybody, kFree);
    if (lock->m_handle == SEM_FAILED) {
        lock->m_handle = sem_open(lock->lockName, O_CREAT | O_RDWR, kEverybody, kFree);
        if (lock->m_handle == SEM_FAILED) {
            lock->m_handle = nullptr;
            add_log("create sem error: %s\n", std::strerror(errno));
            return;
        }
        // It is free now, if it was made just here. Nothing sets its count anew: another process may have made it in
        // between, and hold it.
    }
    add_log("init sem %s value is %u\n", lock->lockName, static_cast<unsigned>(valueOf(lock->m_handle)));
}

void QRXLock_lock(PQRXLock lock)
{
    if (lock == nullptr || lock->m_handle == nullptr) {
        return;
    }
    timeval now{};
    if (gettimeofday(&now, nullptr) != 0) {
        add_log("get time error: %s\n", std::strerror(errno));
    }
    const timespec deadline{.tv_sec = now.tv_sec + kLongestWait, .tv_nsec = now.tv_usec * 1000};
    if (sem_timedwait(lock->m_handle, &deadline) == 0) {
        std::atomic_ref(lock->m_held).store(true);
    } else {
        add_log("lock error: %s\n", std::strerror(errno));
    }
    add_log("%s after lock sem value is %u\n", lock->lockName, static_cast<unsigned>(valueOf(lock->m_handle)));
}

// Posting a count that was never taken would let two holders in for good, so only a held lock is given back.
void QRXLock_unlock(PQRXLock lock)
{
    if (lock == nullptr || lock->m_handle == nullptr) {
        return;
    }
    if (std::atomic_ref(lock->m_held).exchange(false) && sem_post(lock->m_handle) != 0) {
        add_log("lock error: %s\n", std::strerror(errno));
    }
    add_log("%s after unlock sem value is %u\n", lock->lockName, static_cast<unsigned>(valueOf(lock->m_handle)));
}

void QRXLock_close(PQRXLock lock)
{
    if (lock == nullptr) {
        return;
    }
    if (lock->m_handle != nullptr && sem_destroy(lock->m_handle) != 0) {
        add_log("endlock error: %s\n", std::strerror(errno));
    }
    std::free(lock);
}

}  // namespace

PQRXLock CreateQRXLockInstance()
{
    auto* lock = static_cast<PQRXLock>(std::calloc(1, sizeof(QRXLock)));
    if (lock != nullptr) {
        lock->init = QRXLock_init;
        lock->lock = QRXLock_lock;
        lock->unlock = QRXLock_unlock;
        lock->close = QRXLock_close;
    }
    return lock;
}
