#include "sim/transport/caller.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <string_view>

namespace qrx::sim {
namespace {

constexpr std::size_t kPageSize = 4096;

iovec remote(QRX_U64 address, std::size_t length)
{
    // The address is the caller's and never followed here.
    return {reinterpret_cast<void*>(static_cast<std::uintptr_t>(address)), length};
}

iovec local(std::span<const QRX_U8> bytes)
{
    // process_vm_writev only reads here; iovec knows no const.
    return {const_cast<QRX_U8*>(bytes.data()), bytes.size()};
}

// "/proc/<pid>/<what>" without a look at the heap: this is on the road of every command.
struct ProcPath {
    ProcPath(pid_t pid, const char* what) { (void)std::snprintf(text.data(), text.size(), "/proc/%d/%s", pid, what); }
    ProcPath(pid_t pid, int fd) { (void)std::snprintf(text.data(), text.size(), "/proc/%d/fd/%d", pid, fd); }
    std::array<char, 64> text{};
};

std::optional<std::string> read_link(const ProcPath& path)
{
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlink(path.text.data(), target.data(), target.size());
    if (length <= 0) {
        return std::nullopt;
    }
    return std::string(target.data(), static_cast<std::size_t>(length));
}

}  // namespace

bool Caller::read(QRX_U64 address, std::span<QRX_U8> bytes) const
{
    const iovec to = local(bytes);
    const iovec from = remote(address, bytes.size());
    return process_vm_readv(pid_, &to, 1, &from, 1, 0) == static_cast<ssize_t>(bytes.size());
}

bool Caller::write(QRX_U64 address, std::span<const QRX_U8> bytes) const
{
    const iovec from = local(bytes);
    const iovec to = remote(address, bytes.size());
    return process_vm_writev(pid_, &from, 1, &to, 1, 0) == static_cast<ssize_t>(bytes.size());
}

bool Caller::write(QRX_U64 address1, std::span<const QRX_U8> bytes1, QRX_U64 address2,
                   std::span<const QRX_U8> bytes2) const
{
    const std::array<iovec, 2> from = {local(bytes1), local(bytes2)};
    const std::array<iovec, 2> to = {remote(address1, bytes1.size()), remote(address2, bytes2.size())};
    return process_vm_writev(pid_, from.data(), from.size(), to.data(), to.size(), 0) ==
           static_cast<ssize_t>(bytes1.size() + bytes2.size());
}

std::size_t Caller::read(QRX_U64 address1, std::span<QRX_U8> bytes1, QRX_U64 address2, std::span<QRX_U8> bytes2) const
{
    const std::array<iovec, 2> to = {local(bytes1), local(bytes2)};
    const std::array<iovec, 2> from = {remote(address1, bytes1.size()), remote(address2, bytes2.size())};
    const ssize_t got = process_vm_readv(pid_, to.data(), to.size(), from.data(), from.size(), 0);
    return got < 0 ? 0 : static_cast<std::size_t>(got);
}

std::optional<std::string> Caller::read_path(QRX_U64 address) const
{
    std::string text;
    while (text.size() < PATH_MAX) {
        // Up to the end of the page: the next one need not be there.
        std::array<char, kPageSize> piece{};
        const std::size_t length = std::min<std::size_t>(kPageSize - address % kPageSize, PATH_MAX - text.size());
        const iovec to = {piece.data(), length};
        const iovec from = remote(address, length);
        if (process_vm_readv(pid_, &to, 1, &from, 1, 0) != static_cast<ssize_t>(length)) {
            return std::nullopt;
        }
        const std::string_view got(piece.data(), length);
        const std::size_t end = got.find('\0');
        text.append(got.substr(0, end));
        if (end != std::string_view::npos) {
            return text;
        }
        address += length;
    }
    return std::nullopt;
}

std::optional<std::string> Caller::directory(int dirfd) const
{
    return dirfd == AT_FDCWD ? read_link(ProcPath(pid_, "cwd")) : read_link(ProcPath(pid_, dirfd));
}

std::optional<FileIdentity> Caller::identity(int fd) const
{
    struct stat status {};
    if (fd < 0 || stat(ProcPath(pid_, fd).text.data(), &status) != 0) {
        return std::nullopt;
    }
    return FileIdentity{status.st_dev, status.st_ino};
}

bool Caller::shares_our_root() const
{
    const std::optional<std::string> root = read_link(ProcPath(pid_, "root"));
    return root && *root == "/";
}

}  // namespace qrx::sim
