// The ioctls of the NVMe driver, and those of a block device, on a simulated machine's nodes.
#pragma once

#include <vector>

#include "sim/firmware/host.h"
#include "sim/transport/call_kind.h"
#include "sim/transport/caller.h"

namespace qrx::sim {

// Requests of the driver beside those of nvme_ioctl.h.
inline constexpr unsigned long NVME_IOCTL_SUBMIT_IO_64 = 0x40304e42;  // with a nvme_user_io of 64-bit alignment
inline constexpr unsigned long NVME_IOCTL_RESET = 0x4e44;
inline constexpr unsigned long NVME_IOCTL_SUBSYS_RESET = 0x4e45;
inline constexpr unsigned long NVME_IOCTL_RESCAN = 0x4e46;
inline constexpr unsigned long NVME_IOCTL_ADMIN64_CMD = 0xc0504e47;
inline constexpr unsigned long NVME_IOCTL_IO64_CMD = 0xc0504e48;

// What the ioctl returns: 0 or a positive NVMe status; or it fails with the errno `error`.
struct IoctlResult {
    long value = 0;
    int error = 0;
};

// Memory for the data of one command, kept from one to the next, and where the last one lay: programs tend to use the
// same places again, so the next command's data are fetched together with its record on the chance.
struct TransferBuffer {
    std::vector<QRX_U8> data;
    pid_t pid = 0;
    QRX_U64 argument = 0;
    QRX_U64 address = 0;
};

[[nodiscard]] IoctlResult device_ioctl(Host& host, const Node& node, const Caller& caller, unsigned long request,
                                       QRX_U64 argument, TransferBuffer& buffer);

}  // namespace qrx::sim
