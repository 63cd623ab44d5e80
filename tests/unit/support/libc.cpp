#include "tests/unit/support/libc.h"

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cassert>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>
#include <system_error>

namespace qrx::test {
namespace {

Libc* current = nullptr;

// Where an open of `path` really goes; null, with errno set, when it is refused.
const char* resolved(const char* path)
{
    if (current == nullptr) {
        return path;
    }
    current->opened.emplace_back(path);
    if (const auto refused = current->refused.find(path); refused != current->refused.end()) {
        errno = refused->second;
        return nullptr;
    }
    const auto target = current->redirected.find(path);
    return target != current->redirected.end() ? target->second.c_str() : path;
}

bool allocationFails()
{
    return current != nullptr && current->allocation_to_fail > 0 && --current->allocation_to_fail == 0;
}

}  // namespace

Libc::Libc()
{
    assert(current == nullptr);
    current = this;
}

Libc::~Libc()
{
    current = nullptr;
}

Scratch::Scratch()
{
    std::string name = (std::filesystem::temp_directory_path() / "qrx-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "mkdtemp");
    }
    directory_ = name;
}

Scratch::~Scratch()
{
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
}

std::string Scratch::file(const std::string& name, const std::string& content) const
{
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
}

}  // namespace qrx::test

// The linker sends each call here (--wrap), and __real_ to the C library.
extern "C" {

using qrx::test::current;

int __real_open(const char* path, int flags, ...);
int __real_close(int fd);
ssize_t __real_read(int fd, void* buffer, std::size_t count);
off_t __real_lseek(int fd, off_t offset, int whence);
int __real_fstat(int fd, struct stat* status);
int __real_ioctl(int fd, unsigned long request, ...);
FILE* __real_fopen(const char* path, const char* mode);
DIR* __real_opendir(const char* path);
FILE* __real_popen(const char* command, const char* mode);
int __real_pclose(FILE* file);
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag);
std::time_t __real_time(std::time_t* result);
int __real_gettimeofday(timeval* now, void* zone);
sem_t* __real_sem_open(const char* name, int flags, ...);
int __real_sem_timedwait(sem_t* semaphore, const timespec* deadline);
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*), void* argument);

int __wrap_open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = static_cast<mode_t>((flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, unsigned) : 0U);
    va_end(arguments);
    const char* target = qrx::test::resolved(path);
    return target != nullptr ? __real_open(target, flags, mode) : -1;
}

int __wrap_close(int fd)
{
    if (current != nullptr) {
        current->closed.push_back(fd);
    }
    return __real_close(fd);
}

ssize_t __wrap_read(int fd, void* buffer, std::size_t count)
{
    return current != nullptr && current->onRead ? current->onRead(fd, buffer, count) : __real_read(fd, buffer, count);
}

off_t __wrap_lseek(int fd, off_t offset, int whence)
{
    return current != nullptr && current->onLseek ? current->onLseek(fd, offset) : __real_lseek(fd, offset, whence);
}

int __wrap_fstat(int fd, struct stat* status)
{
    return current != nullptr && current->onFstat ? current->onFstat(fd, status) : __real_fstat(fd, status);
}

int __wrap_ioctl(int fd, unsigned long request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    return current != nullptr && current->onIoctl ? current->onIoctl(fd, request, argument)
                                                  : __real_ioctl(fd, request, argument);
}

FILE* __wrap_fopen(const char* path, const char* mode)
{
    const char* target = qrx::test::resolved(path);
    return target != nullptr ? __real_fopen(target, mode) : nullptr;
}

DIR* __wrap_opendir(const char* path)
{
    const char* target = qrx::test::resolved(path);
    return target != nullptr ? __real_opendir(target) : nullptr;
}

FILE* __wrap_popen(const char* command, const char* mode)
{
    return current != nullptr && current->onPopen ? current->onPopen(command, mode) : __real_popen(command, mode);
}

int __wrap_pclose(FILE* file)
{
    return current != nullptr && current->onPclose ? current->onPclose(file) : __real_pclose(file);
}

void* __wrap_malloc(std::size_t size)
{
    return qrx::test::allocationFails() ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size)
{
    return qrx::test::allocationFails() ? nullptr : __real_calloc(count, size);
}

void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag)
{
    return qrx::test::allocationFails() ? nullptr : __real__ZnwmRKSt9nothrow_t(size, tag);
}

std::time_t __wrap_time(std::time_t* result)
{
    if (current == nullptr || !current->onTime) {
        return __real_time(result);
    }
    const std::time_t now = current->onTime();
    if (result != nullptr) {
        *result = now;
    }
    return now;
}

int __wrap_gettimeofday(timeval* now, void* zone)
{
    return current != nullptr && current->onGettimeofday ? current->onGettimeofday(now)
                                                         : __real_gettimeofday(now, zone);
}

sem_t* __wrap_sem_open(const char* name, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = static_cast<mode_t>((flags & O_CREAT) != 0 ? va_arg(arguments, unsigned) : 0U);
    const unsigned value = (flags & O_CREAT) != 0 ? va_arg(arguments, unsigned) : 0U;
    va_end(arguments);
    return current != nullptr && current->onSemOpen ? current->onSemOpen(name, flags)
                                                    : __real_sem_open(name, flags, mode, value);
}

int __wrap_sem_timedwait(sem_t* semaphore, const timespec* deadline)
{
    return current != nullptr && current->onSemTimedwait ? current->onSemTimedwait(semaphore, deadline)
                                                         : __real_sem_timedwait(semaphore, deadline);
}

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*), void* argument)
{
    return current != nullptr && current->onThreadCreate ? current->onThreadCreate()
                                                         : __real_pthread_create(thread, attributes, start, argument);
}

}  // extern "C"
