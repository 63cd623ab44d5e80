// Tells quickly which node a caller's descriptor is of.
//
// A descriptor seen before is kept here as well; one comparison of the kernel then tells whether the caller's number
// still means the same open file. So a number that was closed and taken again by something else is never mistaken.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <optional>

#include "sim/firmware/host.h"
#include "sim/transport/caller.h"
#include "sim/transport/device_files.h"
#include "sim/transport/unique_fd.h"

namespace qrx::sim {

class DescriptorCache {
public:
    explicit DescriptorCache(const DeviceFiles& files) : files_(files) {}

    // The node of descriptor `fd` of the caller; empty when it is no node's.
    [[nodiscard]] std::optional<Node> find(const Caller& caller, int fd);

private:
    struct Entry {
        pid_t pid = 0;
        int fd = -1;
        UniqueFd kept;
        Node node;
    };

    const DeviceFiles& files_;
    std::array<Entry, 8> entries_;
    std::size_t next_ = 0;
};

}  // namespace qrx::sim
