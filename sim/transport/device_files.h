// The files that stand for a simulated machine's device nodes in its programs' descriptor tables.
//
// A program that opens a node gets a descriptor of an anonymous file made for that node alone, and keeps it over dup,
// fork and exec. The file's device and inode number tell the node, so no table of descriptor numbers is kept that
// could go stale.
#pragma once

#include <sys/types.h>

#include <map>
#include <optional>

#include "sim/firmware/host.h"
#include "sim/transport/unique_fd.h"

namespace qrx::sim {

struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
    friend bool operator<(const FileIdentity& a, const FileIdentity& b)
    {
        return a.device != b.device ? a.device < b.device : a.inode < b.inode;
    }
};

// Of one of our own descriptors.
[[nodiscard]] std::optional<FileIdentity> identity_of(int fd);

class DeviceFiles {
public:
    // A new descriptor of the node's file with the access mode and status flags of `flags`, or an empty one with errno
    // set.
    [[nodiscard]] UniqueFd open(const Node& node, int flags);
    // The node whose file this is.
    [[nodiscard]] std::optional<Node> find(const FileIdentity& identity) const;

private:
    struct File {
        UniqueFd fd;
        FileIdentity identity;
    };
    // Kept to the end, so that no identity is given out twice.
    std::map<Node, File> files_;
    std::map<FileIdentity, Node> nodes_;
};

}  // namespace qrx::sim
