#include "sim/transport/device_files.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <string>
#include <utility>

#include "sim/transport/machine_view.h"

namespace qrx::sim {

std::optional<FileIdentity> identity_of(int fd)
{
    struct stat status {};
    if (fstat(fd, &status) != 0) {
        return std::nullopt;
    }
    return FileIdentity{status.st_dev, status.st_ino};
}

UniqueFd DeviceFiles::open(const Node& node, int flags)
{
    auto found = files_.find(node);
    if (found == files_.end()) {
        File file{UniqueFd(memfd_create(device_path(node).c_str(), MFD_CLOEXEC)), {}};
        const std::optional<FileIdentity> identity = file.fd ? identity_of(file.fd.get()) : std::nullopt;
        if (!identity) {
            return {};
        }
        file.identity = *identity;
        nodes_.emplace(file.identity, node);
        found = files_.emplace(node, std::move(file)).first;
    }
    const std::string path = "/proc/self/fd/" + std::to_string(found->second.fd.get());
    return UniqueFd(::open(path.c_str(), (flags & ~(O_CREAT | O_EXCL | O_TRUNC | O_NOFOLLOW | O_DIRECT)) | O_CLOEXEC));
}

std::optional<Node> DeviceFiles::find(const FileIdentity& identity) const
{
    const auto found = nodes_.find(identity);
    return found == nodes_.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace qrx::sim
