// libqrx_sim_preload.so: the C library's functions that name files or talk to devices, each of which asks the launcher
// first and goes on to the real function where it says so.
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "sim/transport/preload_client.h"

using qrx::sim::ask;
using qrx::sim::CallKind;
using qrx::sim::ClientReply;

namespace {

// The next function of that name in the program. Found once; two threads that both look find the same.
template <class Function>
Function* real(Function*& known, const char* name)
{
    if (known == nullptr) {
        known = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
    }
    return known;
}

QRX_U64 word(const void* address)
{
    return reinterpret_cast<QRX_U64>(address);
}
QRX_U64 word(int value)
{
    return static_cast<QRX_U64>(static_cast<unsigned>(value));
}

ClientReply ask_open(int dirfd, const char* path, int flags, mode_t mode)
{
    return ask(CallKind::open, word(dirfd), word(path), word(flags), mode);
}

ClientReply ask_stat(int dirfd, const char* path, const void* status, int flags)
{
    return ask(CallKind::stat, word(dirfd), word(path), word(status), word(flags));
}

// A node's file is an anonymous one, which has no name in any directory. Others need no question.
bool may_be_node(const struct stat* status)
{
    return S_ISREG(status->st_mode) && status->st_nlink == 0;
}

bool is_known_request(unsigned long request)
{
    for (const QRX_U32 known : qrx::sim::kBlockRequests) {
        if (request == known) {
            return true;
        }
    }
    return qrx::sim::is_nvme_request(request);
}

// The flags of fopen's mode, or -1 for none that it knows.
int flags_of(const char* mode)
{
    int flags = 0;
    switch (mode[0]) {
    case 'r':
        flags = O_RDONLY;
        break;
    case 'w':
        flags = O_WRONLY | O_CREAT | O_TRUNC;
        break;
    case 'a':
        flags = O_WRONLY | O_CREAT | O_APPEND;
        break;
    default:
        return -1;
    }
    for (const char* letter = mode + 1; *letter != '\0' && *letter != ','; ++letter) {
        if (*letter == '+') {
            flags = (flags & ~O_ACCMODE) | O_RDWR;
        } else if (*letter == 'e') {
            flags |= O_CLOEXEC;
        } else if (*letter == 'x') {
            flags |= O_EXCL;
        }
    }
    return flags;
}

using OpenFunction = int(const char*, int, ...);
using OpenAtFunction = int(int, const char*, int, ...);
using FopenFunction = FILE*(const char*, const char*);

int open_by(OpenFunction* next, const char* path, int flags, mode_t mode)
{
    const ClientReply reply = ask_open(AT_FDCWD, path, flags, mode);
    return reply.ours ? static_cast<int>(reply.value) : next(path, flags, mode);
}

int open_at_by(OpenAtFunction* next, int dirfd, const char* path, int flags, mode_t mode)
{
    const ClientReply reply = ask_open(dirfd, path, flags, mode);
    return reply.ours ? static_cast<int>(reply.value) : next(dirfd, path, flags, mode);
}

FILE* fopen_by(FopenFunction* next, const char* path, const char* mode)
{
    const int flags = flags_of(mode);
    // Asked without the right to make a file: what is not ours is for the real function to make.
    const ClientReply reply = flags < 0 ? ClientReply{} : ask_open(AT_FDCWD, path, flags, 0666);
    if (!reply.ours) {
        return next(path, mode);
    }
    return reply.value < 0 ? nullptr : fdopen(static_cast<int>(reply.value), mode);
}

// A directory opened by the launcher; `ours` is false when it is not its business.
DIR* open_directory(int dirfd, const char* path, bool& ours)
{
    const ClientReply reply = ask_open(dirfd, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK, 0);
    ours = reply.ours;
    return reply.ours && reply.value >= 0 ? fdopendir(static_cast<int>(reply.value)) : nullptr;
}

// All that scandir does with a directory that is open.
int scan(DIR* directory, struct dirent*** list, int (*filter)(const struct dirent*),
         int (*compare)(const struct dirent**, const struct dirent**))
{
    struct dirent** found = nullptr;
    size_t count = 0;
    bool failed = false;
    while (const struct dirent* entry = readdir(directory)) {
        if (filter != nullptr && filter(entry) == 0) {
            continue;
        }
        auto* const more = static_cast<struct dirent**>(realloc(found, (count + 1) * sizeof(struct dirent*)));
        auto* const copy = static_cast<struct dirent*>(malloc(entry->d_reclen));
        if (more != nullptr) {
            found = more;
        }
        if (more == nullptr || copy == nullptr) {
            free(copy);
            failed = true;
            break;
        }
        memcpy(copy, entry, entry->d_reclen);
        found[count++] = copy;
    }
    closedir(directory);
    if (failed) {
        while (count > 0) {
            free(found[--count]);
        }
        free(found);
        errno = ENOMEM;
        return -1;
    }
    if (compare != nullptr && count > 1) {
        qsort(found, count, sizeof(struct dirent*), reinterpret_cast<int (*)(const void*, const void*)>(compare));
    }
    *list = found;
    return static_cast<int>(count);
}

}  // namespace

extern "C" {

#define QRX_MODE_ARGUMENT(flags, last)                                \
    mode_t mode = 0;                                                  \
    if (((flags)&O_CREAT) != 0 || ((flags)&O_TMPFILE) == O_TMPFILE) { \
        va_list rest;                                                 \
        va_start(rest, last);                                         \
        mode = va_arg(rest, mode_t);                                  \
        va_end(rest);                                                 \
    }

int open(const char* path, int flags, ...)
{
    static OpenFunction* next;
    QRX_MODE_ARGUMENT(flags, flags)
    return open_by(real(next, "open"), path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    static OpenFunction* next;
    QRX_MODE_ARGUMENT(flags, flags)
    return open_by(real(next, "open64"), path, flags, mode);
}

int openat(int dirfd, const char* path, int flags, ...)
{
    static OpenAtFunction* next;
    QRX_MODE_ARGUMENT(flags, flags)
    return open_at_by(real(next, "openat"), dirfd, path, flags, mode);
}

int openat64(int dirfd, const char* path, int flags, ...)
{
    static OpenAtFunction* next;
    QRX_MODE_ARGUMENT(flags, flags)
    return open_at_by(real(next, "openat64"), dirfd, path, flags, mode);
}

// What fortified programs call.
int __open_2(const char* path, int flags)
{
    return open(path, flags);
}
int __open64_2(const char* path, int flags)
{
    return open64(path, flags);
}
int __openat_2(int dirfd, const char* path, int flags)
{
    return openat(dirfd, path, flags);
}
int __openat64_2(int dirfd, const char* path, int flags)
{
    return openat64(dirfd, path, flags);
}

int creat(const char* path, mode_t mode)
{
    return open(path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}
int creat64(const char* path, mode_t mode)
{
    return open64(path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}

FILE* fopen(const char* path, const char* mode)
{
    static FopenFunction* next;
    return fopen_by(real(next, "fopen"), path, mode);
}

FILE* fopen64(const char* path, const char* mode)
{
    static FopenFunction* next;
    return fopen_by(real(next, "fopen64"), path, mode);
}

DIR* opendir(const char* path)
{
    static DIR* (*next)(const char*);
    bool ours = false;
    DIR* const directory = open_directory(AT_FDCWD, path, ours);
    return ours ? directory : real(next, "opendir")(path);
}

int scandir(const char* path, struct dirent*** list, int (*filter)(const struct dirent*),
            int (*compare)(const struct dirent**, const struct dirent**))
{
    static decltype(&scandir) next;
    bool ours = false;
    DIR* const directory = open_directory(AT_FDCWD, path, ours);
    if (!ours) {
        return real(next, "scandir")(path, list, filter, compare);
    }
    return directory == nullptr ? -1 : scan(directory, list, filter, compare);
}

// The same record on a 64-bit machine.
int scandir64(const char* path, struct dirent64*** list, int (*filter)(const struct dirent64*),
              int (*compare)(const struct dirent64**, const struct dirent64**))
{
    return scandir(path, reinterpret_cast<struct dirent***>(list),
                   reinterpret_cast<int (*)(const struct dirent*)>(filter),
                   reinterpret_cast<int (*)(const struct dirent**, const struct dirent**)>(compare));
}

int fstatat(int dirfd, const char* path, struct stat* status, int flags)
{
    static decltype(&fstatat) next;
    const ClientReply reply = ask_stat(dirfd, path, status, flags);
    return reply.ours ? static_cast<int>(reply.value) : real(next, "fstatat")(dirfd, path, status, flags);
}

int stat(const char* path, struct stat* status)
{
    return fstatat(AT_FDCWD, path, status, 0);
}
int lstat(const char* path, struct stat* status)
{
    return fstatat(AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW);
}

int fstat(int fd, struct stat* status)
{
    static decltype(&fstat) next;
    const int result = real(next, "fstat")(fd, status);
    if (result == 0 && may_be_node(status)) {
        const ClientReply reply = ask(CallKind::fstat, word(fd), word(status));
        return reply.ours ? static_cast<int>(reply.value) : result;
    }
    return result;
}

// The same record on a 64-bit machine.
int fstatat64(int dirfd, const char* path, struct stat64* status, int flags)
{
    return fstatat(dirfd, path, reinterpret_cast<struct stat*>(status), flags);
}
int stat64(const char* path, struct stat64* status)
{
    return stat(path, reinterpret_cast<struct stat*>(status));
}
int lstat64(const char* path, struct stat64* status)
{
    return lstat(path, reinterpret_cast<struct stat*>(status));
}
int fstat64(int fd, struct stat64* status)
{
    return fstat(fd, reinterpret_cast<struct stat*>(status));
}

// What programs built against an older C library call.
int __xstat(int, const char* path, struct stat* status)
{
    return stat(path, status);
}
int __xstat64(int, const char* path, struct stat64* status)
{
    return stat64(path, status);
}
int __lxstat(int, const char* path, struct stat* status)
{
    return lstat(path, status);
}
int __lxstat64(int, const char* path, struct stat64* status)
{
    return lstat64(path, status);
}
int __fxstat(int, int fd, struct stat* status)
{
    return fstat(fd, status);
}
int __fxstat64(int, int fd, struct stat64* status)
{
    return fstat64(fd, status);
}
int __fxstatat(int, int dirfd, const char* path, struct stat* status, int flags)
{
    return fstatat(dirfd, path, status, flags);
}
int __fxstatat64(int, int dirfd, const char* path, struct stat64* status, int flags)
{
    return fstatat64(dirfd, path, status, flags);
}

int statx(int dirfd, const char* path, int flags, unsigned mask, struct statx* status)
{
    static decltype(&statx) next;
    const ClientReply reply = ask(CallKind::statx, word(dirfd), word(path), word(flags), mask, word(status));
    return reply.ours ? static_cast<int>(reply.value) : real(next, "statx")(dirfd, path, flags, mask, status);
}

int faccessat(int dirfd, const char* path, int mode, int flags)
{
    static decltype(&faccessat) next;
    const ClientReply reply = ask(CallKind::access, word(dirfd), word(path), word(mode), word(flags));
    return reply.ours ? static_cast<int>(reply.value) : real(next, "faccessat")(dirfd, path, mode, flags);
}

int access(const char* path, int mode)
{
    static decltype(&access) next;
    const ClientReply reply = ask(CallKind::access, word(AT_FDCWD), word(path), word(mode), 0);
    return reply.ours ? static_cast<int>(reply.value) : real(next, "access")(path, mode);
}

int euidaccess(const char* path, int mode)
{
    return faccessat(AT_FDCWD, path, mode, AT_EACCESS);
}
int eaccess(const char* path, int mode)
{
    return faccessat(AT_FDCWD, path, mode, AT_EACCESS);
}

ssize_t readlinkat(int dirfd, const char* path, char* buffer, size_t size)
{
    static decltype(&readlinkat) next;
    const ClientReply reply = ask(CallKind::readlink, word(dirfd), word(path), word(buffer), size);
    return reply.ours ? reply.value : real(next, "readlinkat")(dirfd, path, buffer, size);
}

ssize_t readlink(const char* path, char* buffer, size_t size)
{
    static decltype(&readlink) next;
    const ClientReply reply = ask(CallKind::readlink, word(AT_FDCWD), word(path), word(buffer), size);
    return reply.ours ? reply.value : real(next, "readlink")(path, buffer, size);
}

// What fortified programs call; the check for room is the compiler's.
ssize_t __readlink_chk(const char* path, char* buffer, size_t size, size_t)
{
    return readlink(path, buffer, size);
}
ssize_t __readlinkat_chk(int dirfd, const char* path, char* buffer, size_t size, size_t)
{
    return readlinkat(dirfd, path, buffer, size);
}

ssize_t getxattr(const char* path, const char* name, void* value, size_t size)
{
    static decltype(&getxattr) next;
    const ClientReply reply = ask(CallKind::xattr, word(AT_FDCWD), word(path), 0);
    return reply.ours ? reply.value : real(next, "getxattr")(path, name, value, size);
}

ssize_t lgetxattr(const char* path, const char* name, void* value, size_t size)
{
    static decltype(&lgetxattr) next;
    const ClientReply reply = ask(CallKind::xattr, word(AT_FDCWD), word(path), AT_SYMLINK_NOFOLLOW);
    return reply.ours ? reply.value : real(next, "lgetxattr")(path, name, value, size);
}

ssize_t listxattr(const char* path, char* list, size_t size)
{
    static decltype(&listxattr) next;
    const ClientReply reply = ask(CallKind::xattr, word(AT_FDCWD), word(path), 0);
    return reply.ours ? reply.value : real(next, "listxattr")(path, list, size);
}

ssize_t llistxattr(const char* path, char* list, size_t size)
{
    static decltype(&llistxattr) next;
    const ClientReply reply = ask(CallKind::xattr, word(AT_FDCWD), word(path), AT_SYMLINK_NOFOLLOW);
    return reply.ours ? reply.value : real(next, "llistxattr")(path, list, size);
}

int ioctl(int fd, unsigned long request, ...)
{
    static decltype(&ioctl) next;
    va_list rest;
    va_start(rest, request);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    if (is_known_request(request & 0xffffffffUL)) {
        const ClientReply reply = ask(CallKind::ioctl, word(fd), request, word(argument));
        if (reply.ours) {
            return static_cast<int>(reply.value);
        }
    }
    return real(next, "ioctl")(fd, request, argument);
}

}  // extern "C"
