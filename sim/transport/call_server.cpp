#include "sim/transport/call_server.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <optional>
#include <utility>

namespace qrx::sim {
namespace {

using Kind = OverlayEntry::Kind;

Reply pass_on()
{
    return {};
}

Reply fail(int error)
{
    Reply reply;
    reply.kind = Reply::Kind::error;
    reply.value = error;
    return reply;
}

Reply succeed(long value = 0)
{
    Reply reply;
    reply.kind = Reply::Kind::value;
    reply.value = value;
    return reply;
}

Reply hand_over(UniqueFd file, int flags)
{
    if (!file) {
        return fail(errno);
    }
    Reply reply;
    reply.kind = Reply::Kind::descriptor;
    reply.file = std::move(file);
    reply.close_on_exec = (flags & O_CLOEXEC) != 0;
    return reply;
}

template <class Record>
std::span<const QRX_U8> bytes_of(const Record& record)
{
    static_assert(std::is_trivially_copyable_v<Record>);
    return {reinterpret_cast<const QRX_U8*>(&record), sizeof(Record)};
}

template <class Record>
Reply put(const Caller& caller, QRX_U64 address, const Record& record)
{
    return caller.write(address, bytes_of(record)) ? succeed() : fail(EFAULT);
}

mode_t device_mode(const Node& node)
{
    return (node.nsid == 0 ? S_IFCHR : S_IFBLK) | 0666;
}

// Makes the status of a node out of that of a plain file.
void mark_as_device(struct stat& status, const Node& node)
{
    const DeviceNumber number = device_number(node);
    status.st_mode = device_mode(node);
    status.st_rdev = makedev(number.major, number.minor);
    status.st_uid = 0;
    status.st_gid = 0;
    status.st_size = 0;
    status.st_blocks = 0;
}

void mark_as_device(struct statx& status, const Node& node)
{
    const DeviceNumber number = device_number(node);
    status.stx_mode = static_cast<QRX_U16>(device_mode(node));
    status.stx_rdev_major = number.major;
    status.stx_rdev_minor = number.minor;
    status.stx_uid = 0;
    status.stx_gid = 0;
    status.stx_size = 0;
    status.stx_blocks = 0;
}

// What an existing entry allows. Devices are everybody's, everything else is there to be read.
int check_access(const OverlayEntry& entry, int mode)
{
    const bool writes = (mode & W_OK) != 0 && entry.kind != Kind::device;
    const bool executes = (mode & X_OK) != 0 && entry.kind != Kind::directory;
    return writes || executes ? EACCES : 0;
}

int int_argument(QRX_U64 value)
{
    return static_cast<int>(static_cast<QRX_U32>(value));
}

// The reply to a call on a path, where the path alone tells it.
std::optional<Reply> settled(const Resolution& at)
{
    switch (at.kind) {
    case Resolution::Kind::native:
        return pass_on();
    case Resolution::Kind::hidden:
        return fail(ENOENT);
    case Resolution::Kind::real:
        return std::nullopt;
    case Resolution::Kind::overlay:
        break;
    }
    return at.wants_directory && at.entry->kind != Kind::directory ? std::optional<Reply>(fail(ENOTDIR)) : std::nullopt;
}

}  // namespace

CallServer::CallServer(Host& host) : host_(host), view_(view_of(host))
{
    tree_.update(make_overlay(view_));
}

Reply CallServer::answer(const Call& call)
{
    const Caller caller(call.pid);
    switch (call.kind) {
    case CallKind::ioctl:
        return ioctl(caller, call);
    case CallKind::fstat:
        return stat_descriptor(caller, int_argument(call.arguments[0]), call.arguments[1]);
    case CallKind::open:
        return open(caller, call);
    case CallKind::stat:
        return stat_path(caller, call);
    case CallKind::statx:
        return statx_path(caller, call);
    case CallKind::access:
        return access(caller, call);
    case CallKind::readlink:
        return readlink(caller, call);
    case CallKind::xattr:
        return xattr(caller, call);
    }
    return pass_on();
}

void CallServer::refresh()
{
    if (!std::exchange(commands_ran_, false)) {
        return;
    }
    MachineView now = view_of(host_);
    if (now != view_) {
        view_ = std::move(now);
        tree_.update(make_overlay(view_));
    }
}

Resolution CallServer::look_up(const Caller& caller, QRX_U64 dirfd, QRX_U64 address, bool follow)
{
    const std::optional<std::string> path = caller.read_path(address);
    if (!path || path->empty()) {
        return {};
    }
    std::optional<std::string> base;
    if (path->front() != '/') {
        base = caller.directory(int_argument(dirfd));
        if (!base) {
            return {};
        }
    }
    refresh();
    Resolution found = resolve(tree_, base.value_or(""), *path, follow);
    if (found.kind != Resolution::Kind::native && !caller.shares_our_root()) {
        return {};
    }
    return found;
}

Reply CallServer::open_entry(const Resolution& at, int flags)
{
    const OverlayEntry& entry = *at.entry;
    const bool writes = (flags & O_ACCMODE) != O_RDONLY || (flags & O_TRUNC) != 0;
    if ((flags & O_CREAT) != 0 && (flags & O_EXCL) != 0) {
        return fail(EEXIST);
    }
    if (entry.kind == Kind::device) {
        if ((flags & O_DIRECTORY) != 0) {
            return fail(ENOTDIR);
        }
        return hand_over(devices_.open(entry.node, flags), flags);
    }
    if (writes && (flags & O_PATH) == 0) {
        return fail(entry.kind == Kind::directory ? EISDIR : EACCES);
    }
    if (entry.kind == Kind::directory) {
        tree_.refresh_links(at.path);
    }
    return hand_over(UniqueFd(::open(tree_.place_of(at.path).c_str(), (flags & ~O_CREAT) | O_CLOEXEC)), flags);
}

Reply CallServer::open(const Caller& caller, const Call& call)
{
    const int flags = int_argument(call.arguments[2]);
    const Resolution at = look_up(caller, call.arguments[0], call.arguments[1], (flags & O_NOFOLLOW) == 0);
    if (std::optional<Reply> reply = settled(at)) {
        return std::move(*reply);
    }
    if (at.kind == Resolution::Kind::real) {
        return hand_over(UniqueFd(::open(at.path.c_str(), flags | O_CLOEXEC, static_cast<mode_t>(call.arguments[3]))),
                         flags);
    }
    return open_entry(at, flags);
}

Reply CallServer::stat_descriptor(const Caller& caller, int fd, QRX_U64 address)
{
    const std::optional<FileIdentity> identity = caller.identity(fd);
    const std::optional<Node> node = identity ? devices_.find(*identity) : std::nullopt;
    if (!node) {
        return pass_on();
    }
    struct stat status {};
    status.st_dev = identity->device;
    status.st_ino = identity->inode;
    status.st_nlink = 1;
    status.st_blksize = 4096;
    mark_as_device(status, *node);
    return put(caller, address, status);
}

Reply CallServer::stat_path(const Caller& caller, const Call& call)
{
    const int flags = int_argument(call.arguments[3]);
    const bool follow = (flags & AT_SYMLINK_NOFOLLOW) == 0;
    if ((flags & AT_EMPTY_PATH) != 0) {
        const std::optional<std::string> path = caller.read_path(call.arguments[1]);
        if (!path || path->empty()) {
            return stat_descriptor(caller, int_argument(call.arguments[0]), call.arguments[2]);
        }
    }
    const Resolution at = look_up(caller, call.arguments[0], call.arguments[1], follow);
    if (std::optional<Reply> reply = settled(at)) {
        return std::move(*reply);
    }
    const bool overlay = at.kind == Resolution::Kind::overlay;
    struct stat status {};
    const std::string place = overlay ? tree_.place_of(at.path) : at.path;
    if (fstatat(AT_FDCWD, place.c_str(), &status, overlay || !follow ? AT_SYMLINK_NOFOLLOW : 0) != 0) {
        return fail(errno);
    }
    if (overlay && at.entry->kind == Kind::device) {
        mark_as_device(status, at.entry->node);
    }
    return put(caller, call.arguments[2], status);
}

Reply CallServer::statx_path(const Caller& caller, const Call& call)
{
    const int flags = int_argument(call.arguments[2]);
    const unsigned mask = static_cast<unsigned>(call.arguments[3]);
    const bool follow = (flags & AT_SYMLINK_NOFOLLOW) == 0;
    struct statx status {};
    if ((flags & AT_EMPTY_PATH) != 0) {
        const std::optional<std::string> path = caller.read_path(call.arguments[1]);
        if (!path || path->empty()) {
            const std::optional<FileIdentity> identity = caller.identity(int_argument(call.arguments[0]));
            const std::optional<Node> node = identity ? devices_.find(*identity) : std::nullopt;
            if (!node) {
                return pass_on();
            }
            status.stx_mask = STATX_BASIC_STATS;
            status.stx_nlink = 1;
            status.stx_blksize = 4096;
            status.stx_ino = identity->inode;
            status.stx_dev_major = major(identity->device);
            status.stx_dev_minor = minor(identity->device);
            mark_as_device(status, *node);
            return put(caller, call.arguments[4], status);
        }
    }
    const Resolution at = look_up(caller, call.arguments[0], call.arguments[1], follow);
    if (std::optional<Reply> reply = settled(at)) {
        return std::move(*reply);
    }
    const bool overlay = at.kind == Resolution::Kind::overlay;
    const std::string place = overlay ? tree_.place_of(at.path) : at.path;
    const int how = (flags & ~AT_EMPTY_PATH) | (overlay ? AT_SYMLINK_NOFOLLOW : 0);
    if (::statx(AT_FDCWD, place.c_str(), how, mask, &status) != 0) {
        return fail(errno);
    }
    if (overlay && at.entry->kind == Kind::device) {
        mark_as_device(status, at.entry->node);
    }
    return put(caller, call.arguments[4], status);
}

Reply CallServer::access(const Caller& caller, const Call& call)
{
    const int mode = int_argument(call.arguments[2]);
    const int flags = int_argument(call.arguments[3]);
    const Resolution at = look_up(caller, call.arguments[0], call.arguments[1], (flags & AT_SYMLINK_NOFOLLOW) == 0);
    if (std::optional<Reply> reply = settled(at)) {
        return std::move(*reply);
    }
    if (at.kind == Resolution::Kind::real) {
        return faccessat(AT_FDCWD, at.path.c_str(), mode, 0) == 0 ? succeed() : fail(errno);
    }
    const int error = check_access(*at.entry, mode);
    return error == 0 ? succeed() : fail(error);
}

Reply CallServer::readlink(const Caller& caller, const Call& call)
{
    const Resolution at = look_up(caller, call.arguments[0], call.arguments[1], false);
    if (std::optional<Reply> reply = settled(at)) {
        return std::move(*reply);
    }
    const std::string place = at.kind == Resolution::Kind::overlay ? tree_.place_of(at.path) : at.path;
    std::array<QRX_U8, PATH_MAX> text{};
    const ssize_t got = ::readlink(place.c_str(), reinterpret_cast<char*>(text.data()), text.size());
    if (got < 0) {
        return fail(errno);
    }
    const int room = int_argument(call.arguments[3]);
    if (room <= 0) {
        return fail(EINVAL);
    }
    const std::size_t length = std::min(static_cast<std::size_t>(got), static_cast<std::size_t>(room));
    return caller.write(call.arguments[2], std::span(text).first(length)) ? succeed(static_cast<long>(length))
                                                                          : fail(EFAULT);
}

Reply CallServer::xattr(const Caller& caller, const Call& call)
{
    const bool follow = (int_argument(call.arguments[2]) & AT_SYMLINK_NOFOLLOW) == 0;
    const Resolution at = look_up(caller, call.arguments[0], call.arguments[1], follow);
    switch (at.kind) {
    case Resolution::Kind::overlay:
        return fail(EOPNOTSUPP);
    case Resolution::Kind::hidden:
        return fail(ENOENT);
    default:
        return pass_on();
    }
}

Reply CallServer::ioctl(const Caller& caller, const Call& call)
{
    const unsigned long request = static_cast<QRX_U32>(call.arguments[1]);
    const std::optional<Node> node = descriptors_.find(caller, int_argument(call.arguments[0]));
    if (!node) {
        // Whatever it is, it is no device of the simulated machine, and must not be one of the real machine.
        const bool open = caller.identity(int_argument(call.arguments[0])).has_value();
        return open && is_nvme_request(request) ? fail(ENOTTY) : pass_on();
    }
    commands_ran_ = true;
    const IoctlResult done = device_ioctl(host_, *node, caller, request, call.arguments[2], transfer_);
    return done.error != 0 ? fail(done.error) : succeed(done.value);
}

}  // namespace qrx::sim
