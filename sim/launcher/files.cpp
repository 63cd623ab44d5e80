#include "sim/launcher/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "sim/transport/unique_fd.h"

namespace qrx::sim {
namespace {

namespace fs = std::filesystem;

bool write_all(int fd, std::string_view content)
{
    while (!content.empty()) {
        const ssize_t written = write(fd, content.data(), content.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        content.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return true;
}

// The rights of the file that is replaced, or those of a new one.
mode_t wanted_mode(const std::string& path)
{
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) {
        return status.st_mode & 07777;
    }
    const mode_t mask = umask(0);
    (void)umask(mask);
    return 0666 & ~mask;
}

}  // namespace

std::optional<std::string> read_file(const std::string& path)
{
    const UniqueFd fd(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!fd) {
        return std::nullopt;
    }
    std::string content;
    std::array<char, 65536> piece{};
    for (;;) {
        const ssize_t got = read(fd.get(), piece.data(), piece.size());
        if (got == 0) {
            return content;
        }
        if (got < 0 && errno != EINTR) {
            return std::nullopt;
        }
        content.append(piece.data(), got < 0 ? 0 : static_cast<std::size_t>(got));
    }
}

bool replace_file(const std::string& path, std::string_view content)
{
    std::error_code failure;
    const fs::path target = fs::is_symlink(path, failure) ? fs::weakly_canonical(path, failure) : fs::path(path);
    std::string temporary = target.string() + ".XXXXXX";
    UniqueFd fd(mkostemp(temporary.data(), O_CLOEXEC));
    if (!fd) {
        return false;
    }
    const bool written = write_all(fd.get(), content) && fchmod(fd.get(), wanted_mode(target.string())) == 0 &&
                         fsync(fd.get()) == 0 && std::rename(temporary.c_str(), target.c_str()) == 0;
    if (!written) {
        const int error = errno;
        (void)unlink(temporary.c_str());
        errno = error;
        return false;
    }
    const fs::path parent = target.parent_path();
    const UniqueFd directory(open(parent.empty() ? "." : parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory) {
        (void)fsync(directory.get());  // not every file system knows it for a directory
    }
    return true;
}

}  // namespace qrx::sim
