// What a simulated machine adds to the file system that its programs see: a map from absolute path to entry.
//
// An entry stands in front of whatever the real file system has at its path. A directory is listed with what is
// added below it and with what the real directory of that name holds; see PrivateTree for how that comes about.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "sim/firmware/host.h"

namespace qrx::sim {

struct OverlayEntry {
    enum class Kind { directory, file, link, device };

    Kind kind = Kind::directory;
    std::string content;  // of a file its bytes, of a link its target
    Node node;            // of a device

    friend bool operator==(const OverlayEntry&, const OverlayEntry&) = default;
};

class Overlay {
public:
    // Ordered by path, so that a directory comes before what is in it.
    using Entries = std::map<std::string, OverlayEntry, std::less<>>;

    // Paths are absolute and normalised. A later entry replaces an earlier one of the same path.
    void add_directory(std::string path) { entries_[std::move(path)] = {OverlayEntry::Kind::directory, {}, {}}; }
    void add_file(std::string path, std::string content)
    {
        entries_[std::move(path)] = {OverlayEntry::Kind::file, std::move(content), {}};
    }
    void add_link(std::string path, std::string target)
    {
        entries_[std::move(path)] = {OverlayEntry::Kind::link, std::move(target), {}};
    }
    void add_device(std::string path, Node node) { entries_[std::move(path)] = {OverlayEntry::Kind::device, {}, node}; }

    // Null when nothing is added at `path`.
    [[nodiscard]] const OverlayEntry* find(std::string_view path) const
    {
        const auto found = entries_.find(path);
        return found == entries_.end() ? nullptr : &found->second;
    }
    [[nodiscard]] const Entries& entries() const { return entries_; }

private:
    Entries entries_;
};

// True when `path` belongs to the NVMe devices of the real machine's file system (device nodes and what sysfs shows of
// them). Programs under the simulator never reach these.
[[nodiscard]] bool is_real_nvme(std::string_view path);

}  // namespace qrx::sim
