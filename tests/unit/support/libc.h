// Stands between the code under test and the C library: files that are elsewhere, calls that fail, a device driver.
//
//     Libc libc;                                     // one at a time; all is as before at its end
//     libc.redirect("/etc/mtab", scratch.file("mtab", "..."));
//     libc.onIoctl = [](int fd, unsigned long request, void* argument) { ...; return 0; };
//     libc.failAllocation(3);
//
// It reaches the calls made by the objects of the program (and of the test), not those inside shared libraries. A
// test links it by linking qrx_test_support.
#pragma once

#include <semaphore.h>
#include <sys/stat.h>
#include <sys/time.h>

#include <cstdio>
#include <ctime>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace qrx::test {

class Libc {
public:
    Libc();
    ~Libc();
    Libc(const Libc&) = delete;
    Libc& operator=(const Libc&) = delete;

    // open, fopen and opendir of `path` go to `target`.
    void redirect(const std::string& path, const std::string& target) { redirected[path] = target; }
    // open, fopen and opendir of `path` fail with `error`.
    void refuse(const std::string& path, int error) { refused[path] = error; }
    // The n-th malloc, calloc or new(nothrow) from now on fails (1: the next one); the others work.
    void failAllocation(int n) { allocation_to_fail = n; }

    // When set, called instead of the real thing. Those that return -1 set errno.
    std::function<int(int fd, unsigned long request, void* argument)> onIoctl;
    std::function<FILE*(const char* command, const char* mode)> onPopen;
    std::function<int(FILE*)> onPclose;
    std::function<std::time_t()> onTime;
    std::function<int(timeval*)> onGettimeofday;
    std::function<sem_t*(const char* name, int flags)> onSemOpen;
    std::function<int(sem_t*, const timespec*)> onSemTimedwait;
    std::function<ssize_t(int fd, void* buffer, std::size_t count)> onRead;
    std::function<off_t(int fd, off_t offset)> onLseek;
    std::function<int(int fd, struct stat*)> onFstat;
    std::function<int()> onThreadCreate;  // what pthread_create returns

    std::map<std::string, std::string> redirected;
    std::map<std::string, int> refused;
    int allocation_to_fail = 0;
    std::vector<std::string> opened;  // each path given to open, fopen and opendir, in order
    std::vector<int> closed;          // each descriptor given to close
};

// A directory for the files of one test, removed with all in it.
class Scratch {
public:
    Scratch();
    ~Scratch();
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    [[nodiscard]] std::string path(const std::string& name) const { return directory_ + "/" + name; }
    // Writes a file and returns its path.
    std::string file(const std::string& name, const std::string& content) const;

private:
    std::string directory_;
};

}  // namespace qrx::test
