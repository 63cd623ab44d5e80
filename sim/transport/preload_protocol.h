// What the preload library and the launcher say to each other over a local socket that keeps messages apart.
//
// The library sends a call as the program made it, and the launcher answers as the kernel would. Paths, records and
// data stay in the program's memory, from which the launcher takes them and into which it puts them.
#pragma once

#include <ctime>
#include <type_traits>

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

// Environment variable with the path of the launcher's socket.
inline constexpr const char* kPreloadSocketVariable = "QRX_SIM_SOCKET";

struct PreloadRequest {
    QRX_U32 kind = 0;  // a CallKind
    QRX_U32 cpu = 0;   // on which the caller runs
    QRX_U64 arguments[6] = {};
};

// How long each side looks for the other's next message before it sleeps, while both run at the same time on two
// processors: to be woken up takes longer than most answers.
inline constexpr long kSpinNanoseconds = 30'000;

struct PreloadReply {
    enum Kind : QRX_U32 { kPassOn, kValue, kError, kDescriptor };
    QRX_U32 kind = kPassOn;
    QRX_U16 close_on_exec = 0;
    QRX_U16 cpu = 0;  // on which the launcher runs
    long value = 0;   // an errno with kError; the descriptor comes with the message
};

// Nanoseconds of a clock that never goes back.
inline long spin_clock()
{
    timespec now = {};
    (void)clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1'000'000'000L + now.tv_nsec;
}

static_assert(std::is_trivially_copyable_v<PreloadRequest> && std::is_trivially_copyable_v<PreloadReply>);

}  // namespace qrx::sim
