#include "sim/transport/private_tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <system_error>
#include <utility>

namespace qrx::sim {
namespace {

namespace fs = std::filesystem;

// Where the private directory goes: the place that TMPDIR names, else memory, since hundreds of small files come and go
// with every run, else /tmp.
fs::path base_directory()
{
    constexpr const char* kMemory = "/dev/shm";
    if (std::getenv("TMPDIR") == nullptr && access(kMemory, W_OK | X_OK) == 0) {
        return kMemory;
    }
    std::error_code ignored;
    const fs::path base = fs::canonical(fs::temp_directory_path(ignored), ignored);
    return base.empty() ? fs::path("/tmp") : base;
}

}  // namespace

PrivateTree::PrivateTree()
{
    directory_ = base_directory() / "qrx_sim.XXXXXX";
    if (mkdtemp(directory_.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot make a private directory '" + directory_ + "'");
    }
    root_ = directory_ + "/root";
    fs::create_directory(root_);
}

PrivateTree::~PrivateTree()
{
    std::error_code ignored;
    fs::remove_all(directory_, ignored);
}

void PrivateTree::update(Overlay overlay)
{
    const Overlay::Entries& before = overlay_.entries();
    // What is gone, or changes its kind.
    for (const auto& [path, entry] : before) {
        const OverlayEntry* now = overlay.find(path);
        if (now == nullptr || now->kind != entry.kind) {
            fs::remove_all(place_of(path));
        }
    }
    std::set<std::string> listings;
    for (const auto& [path, entry] : overlay.entries()) {
        const OverlayEntry* old = overlay_.find(path);
        if (old != nullptr && *old == entry) {
            continue;
        }
        write_entry(path, entry);
        if (entry.kind == OverlayEntry::Kind::directory) {
            listings.insert(path);
        }
    }
    overlay_ = std::move(overlay);
    for (const std::string& path : listings) {
        refresh_links(path);
    }
}

void PrivateTree::write_entry(const std::string& path, const OverlayEntry& entry)
{
    const std::string place = place_of(path);
    fs::create_directories(fs::path(place).parent_path());
    if (entry.kind == OverlayEntry::Kind::directory) {
        fs::create_directory(place);
        return;
    }
    // Never written in place: a program that holds the old file reads on in it.
    fs::remove(place);
    if (entry.kind == OverlayEntry::Kind::link) {
        fs::create_symlink(entry.content, place);
        return;
    }
    std::ofstream file(place, std::ios::binary);
    file << entry.content;
    file.close();
    if (!file) {
        throw std::system_error(errno, std::generic_category(), "cannot write '" + place + "'");
    }
    fs::permissions(place, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
}

void PrivateTree::refresh_links(const std::string& directory)
{
    std::error_code ignored;
    const fs::path here = directory;
    std::set<std::string> wanted;
    for (const fs::directory_entry& real : fs::directory_iterator(here, ignored)) {
        const std::string path = real.path().string();
        if (overlay_.find(path) == nullptr && !is_real_nvme(path)) {
            wanted.insert(real.path().filename().string());
        }
    }
    for (const fs::directory_entry& present : fs::directory_iterator(place_of(directory), ignored)) {
        const fs::path name = present.path().filename();
        if (wanted.erase(name.string()) == 0 && overlay_.find((here / name).string()) == nullptr) {
            fs::remove_all(present.path(), ignored);
        }
    }
    for (const std::string& name : wanted) {
        const fs::path real = here / name;
        fs::create_symlink(real, place_of(real.string()), ignored);
    }
}

std::string PrivateTree::path_of(std::string_view place) const
{
    if (!place.starts_with(root_)) {
        return {};
    }
    const std::string_view path = place.substr(root_.size());
    if (path.empty()) {
        return "/";
    }
    return path.front() == '/' ? std::string(path) : std::string();
}

}  // namespace qrx::sim
