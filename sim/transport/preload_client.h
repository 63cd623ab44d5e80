// The preload library's side of the talk with the launcher. No C++ runtime, no heap: it lives in other people's
// programs.
#pragma once

#include "api/src/interface/wire/types.h"
#include "sim/transport/call_kind.h"

namespace qrx::sim {

struct ClientReply {
    bool ours = false;  // false: the real function is to be called, errno is as before
    long value = 0;     // what the call returns, -1 with errno set
};

// Asks the launcher. Without one every call is for the real function.
[[nodiscard]] ClientReply ask(CallKind kind, QRX_U64 a0, QRX_U64 a1 = 0, QRX_U64 a2 = 0, QRX_U64 a3 = 0,
                              QRX_U64 a4 = 0);

}  // namespace qrx::sim
