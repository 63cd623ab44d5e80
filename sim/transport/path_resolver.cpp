#include "sim/transport/path_resolver.h"

#include <unistd.h>

#include <array>
#include <climits>
#include <optional>
#include <vector>

namespace qrx::sim {
namespace {

constexpr int kMostLinks = 40;  // as in the kernel

// The names of a path still to be walked, the next one last.
class Pending {
public:
    void push(std::string_view path)
    {
        const std::size_t start = names_.size();
        while (!path.empty()) {
            const std::size_t slash = path.find('/');
            const std::string_view name = path.substr(0, slash);
            if (!name.empty() && name != ".") {
                names_.emplace_back(name);
            }
            path = slash == std::string_view::npos ? std::string_view{} : path.substr(slash + 1);
        }
        for (std::size_t low = start, high = names_.size(); low + 1 < high; ++low) {
            std::swap(names_[low], names_[--high]);
        }
    }
    [[nodiscard]] bool empty() const { return names_.empty(); }
    std::string pop()
    {
        std::string name = std::move(names_.back());
        names_.pop_back();
        return name;
    }

private:
    std::vector<std::string> names_;
};

void go_up(std::string& path)
{
    const std::size_t slash = path.rfind('/');
    path.erase(slash == std::string::npos ? 0 : slash);
}

std::optional<std::string> real_link(const std::string& path)
{
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    if (length <= 0) {
        return std::nullopt;
    }
    return std::string(target.data(), static_cast<std::size_t>(length));
}

}  // namespace

Resolution resolve(const PrivateTree& tree, std::string_view base, std::string_view path, bool follow)
{
    Resolution result;
    result.wants_directory = !path.empty() && path.back() == '/';
    const bool absolute = !path.empty() && path.front() == '/';

    // The walk, without the slash at the end; empty stands for the root.
    std::string& current = result.path;
    bool in_tree = false;  // it starts from a descriptor of the private tree
    if (!absolute) {
        current = tree.path_of(base);
        in_tree = !current.empty();
        if (!in_tree) {
            current = base;
        }
        if (current == "/") {
            current.clear();
        }
    }
    bool moved = false;  // it left the road that the kernel would take
    int links = 0;
    Pending pending;
    pending.push(path);
    while (!pending.empty()) {
        const std::string name = pending.pop();
        if (name == "..") {
            go_up(current);
            moved = moved || in_tree;
            continue;
        }
        const std::size_t parent_size = current.size();
        current += '/';
        current += name;
        if (current == "/proc") {
            return result;  // its links differ from process to process
        }
        const OverlayEntry* entry = tree.overlay().find(current);
        const bool last = pending.empty();
        const bool may_follow = !last || follow || result.wants_directory;
        std::optional<std::string> target;
        if (entry != nullptr) {
            if (entry->kind == OverlayEntry::Kind::link && may_follow) {
                target = entry->content;
                moved = true;
            }
        } else if (is_real_nvme(current)) {
            result.kind = Resolution::Kind::hidden;
            return result;
        } else if (may_follow) {
            target = real_link(current);
        }
        if (target) {
            if (++links > kMostLinks) {
                return result;  // the kernel says ELOOP
            }
            current.erase(target->front() == '/' ? 0 : parent_size);
            pending.push(*target);
        }
    }
    result.entry = tree.overlay().find(current);
    if (result.entry != nullptr) {
        result.kind = Resolution::Kind::overlay;
    } else if (moved) {
        result.kind = Resolution::Kind::real;
        if (current.empty()) {
            current = "/";
        }
    }
    return result;
}

}  // namespace qrx::sim
