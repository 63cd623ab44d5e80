// What the preload libraries of the torture share: they count certain calls that a program makes, and one of them
// fails.
//
//     export QRX_FAIL_PROGRAM=qrx_cli QRX_FAIL_NTH=7 QRX_FAIL_SEEN=/tmp/seen
//     LD_PRELOAD=libqrx_fail_files.so qrx_cli info -o hba
//
// When the program ends, the file of QRX_FAIL_SEEN gets the number of calls that there were. QRX_FAIL_NTH=0 counts
// alone. Other programs that inherit the preload are left alone.
#pragma once

#include <sys/syscall.h>
#include <unistd.h>

#include <fcntl.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace qrx::torture {

class FailNth {
public:
    // True for the call that is to fail.
    bool now() { return active_ && calls_.fetch_add(1, std::memory_order_relaxed) + 1 == wanted_; }

    // Called when the program starts, and when it ends.
    void begin()
    {
        const char* program = std::getenv("QRX_FAIL_PROGRAM");
        active_ = program != nullptr && std::string_view(program_invocation_short_name) == program;
        if (const char* wish = std::getenv("QRX_FAIL_NTH"); wish != nullptr) {
            wanted_ = std::atol(wish);
        }
    }

    void end()
    {
        const char* seen = std::getenv("QRX_FAIL_SEEN");
        if (!active_ || seen == nullptr) {
            return;
        }
        active_ = false;
        char text[32];
        const int length = std::snprintf(text, sizeof text, "%ld\n", calls_.load());
        // Straight to the system: the calls of this name may be those that count.
        const long file = ::syscall(SYS_openat, AT_FDCWD, seen, O_CREAT | O_WRONLY | O_TRUNC | O_CLOEXEC, 0600);
        (void)::syscall(SYS_write, file, text, static_cast<std::size_t>(length));
        (void)::syscall(SYS_close, file);
    }

private:
    bool active_ = false;
    long wanted_ = 0;
    std::atomic<long> calls_ = 0;
};

}  // namespace qrx::torture
