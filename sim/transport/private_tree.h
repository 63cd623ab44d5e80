// The files of a simulated machine, laid out in a private directory of the host.
//
// Under the root of the tree every entry of an overlay stands at its own path, and each of its directories also holds
// a symbolic link to each entry that the real directory of that name has besides. So descriptors into the tree behave
// as any descriptor: what is opened, listed or looked up relative to one needs no help.
#pragma once

#include <string>
#include <string_view>

#include "sim/transport/overlay.h"
#include "sim/transport/unique_fd.h"

namespace qrx::sim {

class PrivateTree {
public:
    // Makes a directory of its own under $TMPDIR, /dev/shm or /tmp. Throws std::system_error.
    PrivateTree();
    PrivateTree(const PrivateTree&) = delete;
    PrivateTree& operator=(const PrivateTree&) = delete;
    ~PrivateTree();  // removes it

    // Brings the files in line with `overlay`: writes what is new or different, removes what is gone.
    void update(Overlay overlay);
    [[nodiscard]] const Overlay& overlay() const { return overlay_; }

    // Brings the links to the real entries of an overlay's directory up to date.
    void refresh_links(const std::string& directory);

    // Where `path` of the machine lies on the host.
    [[nodiscard]] std::string place_of(std::string_view path) const { return root_ + std::string(path); }
    // The machine's path of a host's path within the tree; empty when it lies elsewhere.
    [[nodiscard]] std::string path_of(std::string_view place) const;
    // The private directory; the tree is the part "/root" of it.
    [[nodiscard]] const std::string& directory() const { return directory_; }

private:
    void write_entry(const std::string& path, const OverlayEntry& entry);

    std::string directory_;
    std::string root_;
    Overlay overlay_;
};

}  // namespace qrx::sim
