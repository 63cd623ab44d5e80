// Finds out what a path of a program means on the simulated machine.
#pragma once

#include <string>
#include <string_view>

#include "sim/transport/overlay.h"
#include "sim/transport/private_tree.h"

namespace qrx::sim {

struct Resolution {
    enum class Kind {
        native,   // the kernel finds the right thing by itself
        overlay,  // an entry of the machine
        real,     // a real file, but not the one that the kernel would find: `path` tells where
        hidden,   // a device of the real machine: does not exist here
    };

    Kind kind = Kind::native;
    std::string path;                     // where the walk ended, as the machine names it
    const OverlayEntry* entry = nullptr;  // of an overlay's entry; valid until the tree is updated
    bool wants_directory = false;         // the path ends in a slash
};

// Walks `path`, an absolute one or one relative to `base` (a directory as /proc shows it: one in the private tree is
// taken for the machine's), following links, the last one too when `follow` is set.
[[nodiscard]] Resolution resolve(const PrivateTree& tree, std::string_view base, std::string_view path, bool follow);

}  // namespace qrx::sim
