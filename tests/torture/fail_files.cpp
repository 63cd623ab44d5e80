// A preload library that makes one file call of a program fail: see fail_nth.h.
//
// Counted are the calls that open, read, write, flush, seek and close files, directories and pipes; what is printed on
// standard output and standard error is not. QRX_FAIL_HOW says how the call fails:
//
//     error    it fails with EIO (default); a file that is closed is closed all the same
//     short    a read gives half of what there is, or nothing, and no error; a write takes half and says so
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <string_view>

#include "tests/torture/fail_nth.h"

namespace {

qrx::torture::FailNth calls;
bool shortens = false;

__attribute__((constructor)) void begin()
{
    const char* how = std::getenv("QRX_FAIL_HOW");
    shortens = how != nullptr && std::string_view(how) == "short";
    calls.begin();
}

__attribute__((destructor)) void end()
{
    calls.end();
}

// The function that this library stands in front of.
template <class Function>
Function* next(const char* name, Function* /*type*/)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}
#define NEXT(name) static auto* const real = next(#name, &::name)

// True for the call that is to fail with an error.
bool fails()
{
    if (!calls.now()) {
        return false;
    }
    errno = EIO;
    return true;
}

bool isOurs(const FILE* file)
{
    return file != nullptr && file != stdout && file != stderr;
}

// A call on `file` that is to fail: the file remembers its error as it would.
bool failsOn(FILE* file)
{
    constexpr int kErrorSeen = 0x20;  // of the C library's own flags
    if (!isOurs(file) || !fails()) {
        return false;
    }
    if (!shortens) {
        file->_flags |= kErrorSeen;
    }
    return true;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...)
{
    NEXT(open);
    va_list more;
    va_start(more, flags);
    const auto mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : mode_t{0};
    va_end(more);
    return fails() ? -1 : real(path, flags, mode);
}

int close(int file)
{
    NEXT(close);
    const bool failed = fails();
    const int result = real(file);
    if (failed) {
        errno = EIO;
    }
    return failed ? -1 : result;
}

ssize_t read(int file, void* buffer, std::size_t size)
{
    NEXT(read);
    if (fails()) {
        return shortens ? real(file, buffer, size / 2) : -1;
    }
    return real(file, buffer, size);
}

off_t lseek(int file, off_t offset, int from)
{
    NEXT(lseek);
    return fails() ? -1 : real(file, offset, from);
}

int fstat(int file, struct stat* status)
{
    NEXT(fstat);
    return fails() ? -1 : real(file, status);
}

DIR* opendir(const char* path)
{
    NEXT(opendir);
    return fails() ? nullptr : real(path);
}

FILE* fopen(const char* path, const char* mode)
{
    NEXT(fopen);
    return fails() ? nullptr : real(path, mode);
}

FILE* fdopen(int file, const char* mode)
{
    NEXT(fdopen);
    return fails() ? nullptr : real(file, mode);
}

FILE* popen(const char* command, const char* mode)
{
    NEXT(popen);
    return fails() ? nullptr : real(command, mode);
}

int pclose(FILE* file)
{
    NEXT(pclose);
    const bool failed = fails();
    const int result = real(file);
    return failed ? -1 : result;
}

int fclose(FILE* file)
{
    NEXT(fclose);
    const bool failed = isOurs(file) && fails();
    const int result = real(file);
    if (failed) {
        errno = EIO;
    }
    return failed ? EOF : result;
}

std::size_t fread(void* buffer, std::size_t size, std::size_t count, FILE* file)
{
    NEXT(fread);
    if (failsOn(file)) {
        return shortens ? real(buffer, size, count / 2, file) : 0;
    }
    return real(buffer, size, count, file);
}

char* fgets(char* line, int size, FILE* file)
{
    NEXT(fgets);
    return failsOn(file) ? nullptr : real(line, size, file);
}

std::size_t fwrite(const void* data, std::size_t size, std::size_t count, FILE* file)
{
    NEXT(fwrite);
    if (failsOn(file)) {
        return shortens ? real(data, size, count / 2, file) : 0;
    }
    return real(data, size, count, file);
}

int fputs(const char* text, FILE* file)
{
    NEXT(fputs);
    return failsOn(file) ? EOF : real(text, file);
}

int fputc(int c, FILE* file)
{
    NEXT(fputc);
    return failsOn(file) ? EOF : real(c, file);
}

int vfprintf(FILE* file, const char* format, va_list arguments)
{
    NEXT(vfprintf);
    return failsOn(file) ? -1 : real(file, format, arguments);
}

int fprintf(FILE* file, const char* format, ...)
{
    NEXT(vfprintf);
    if (failsOn(file)) {
        return -1;
    }
    va_list arguments;
    va_start(arguments, format);
    const int result = real(file, format, arguments);
    va_end(arguments);
    return result;
}

int fflush(FILE* file)
{
    NEXT(fflush);
    return failsOn(file) ? EOF : real(file);
}

int fseek(FILE* file, long offset, int from)
{
    NEXT(fseek);
    return failsOn(file) ? -1 : real(file, offset, from);
}

long ftell(FILE* file)
{
    NEXT(ftell);
    return failsOn(file) ? -1 : real(file);
}
}
