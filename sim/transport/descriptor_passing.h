// Descriptors from one process to another over a local socket.
#pragma once

#include <cstddef>
#include <span>

#include "api/src/interface/wire/types.h"
#include "sim/transport/unique_fd.h"

namespace qrx::sim {

// Sends `bytes` (at least one) as one message with `fd`, which may be -1 for none. False with errno set. No heap:
// usable between fork and exec.
[[nodiscard]] bool send_with_descriptor(int socket, std::span<const QRX_U8> bytes, int fd);

struct Received {
    long length = 0;  // bytes; 0 at the end, -1 with errno set
    UniqueFd fd;      // closes on exec
};
[[nodiscard]] Received receive_with_descriptor(int socket, std::span<QRX_U8> bytes);

}  // namespace qrx::sim
