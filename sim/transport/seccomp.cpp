#include "sim/transport/seccomp.h"

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/openat2.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <utility>

#include "sim/transport/descriptor_passing.h"

namespace qrx::sim {

#if defined(__x86_64__)

namespace {

// Newer than the headers that we build with.
constexpr unsigned long kNotifSetFlags = SECCOMP_IOW(4, QRX_U64);
constexpr QRX_U64 kSyncWakeUp = 1;

constexpr std::array<QRX_U32, 18> kPathCalls = {
    SYS_openat,     SYS_newfstatat, SYS_fstat,    SYS_statx,     SYS_access,    SYS_faccessat,
    SYS_faccessat2, SYS_readlink,   SYS_open,     SYS_stat,      SYS_lstat,     SYS_creat,
    SYS_openat2,    SYS_readlinkat, SYS_getxattr, SYS_lgetxattr, SYS_listxattr, SYS_llistxattr};

// A path that exists nowhere, for the probe.
constexpr const char* kRehearsalPath = "/qrx_sim/rehearsal";
constexpr int kProbeMilliseconds = 2000;

constexpr sock_filter statement(unsigned code, QRX_U32 value)
{
    return {static_cast<QRX_U16>(code), 0, 0, value};
}
constexpr sock_filter jump(unsigned code, QRX_U32 value, unsigned yes, unsigned no)
{
    return {static_cast<QRX_U16>(code), static_cast<QRX_U8>(yes), static_cast<QRX_U8>(no), value};
}

constexpr unsigned kLoad = BPF_LD | BPF_W | BPF_ABS;
constexpr unsigned kEqual = BPF_JMP | BPF_JEQ | BPF_K;
constexpr unsigned kReturn = BPF_RET | BPF_K;

// Checks of a foreign architecture (and of the x32 calls, whose numbers match none of ours): allowed. Then ioctl with
// the requests of interest, then the path calls.
constexpr std::size_t kIoctlPart = 3 + std::size(kBlockRequests) + 1;
constexpr std::size_t kFilterSize = 3 + 2 + kIoctlPart + kPathCalls.size() + 2;

constexpr std::array<sock_filter, kFilterSize> make_filter()
{
    std::array<sock_filter, kFilterSize> filter{};
    std::size_t at = 0;
    const auto add = [&](sock_filter line) { filter[at++] = line; };
    constexpr std::size_t kAllow = kFilterSize - 2;
    constexpr std::size_t kAsk = kFilterSize - 1;
    const auto distance = [&](std::size_t target) { return static_cast<unsigned>(target - at - 1); };

    add(statement(kLoad, offsetof(seccomp_data, arch)));
    add(jump(kEqual, AUDIT_ARCH_X86_64, 1, 0));
    add(statement(kReturn, SECCOMP_RET_ALLOW));
    add(statement(kLoad, offsetof(seccomp_data, nr)));
    add(jump(kEqual, SYS_ioctl, 0, kIoctlPart));
    // The request is an unsigned int for the kernel: the low word of the argument.
    add(statement(kLoad, offsetof(seccomp_data, args) + sizeof(QRX_U64)));
    for (const QRX_U32 request : kBlockRequests) {
        add(jump(kEqual, request, distance(kAsk), 0));
    }
    add(statement(BPF_ALU | BPF_AND | BPF_K, 0xfff0));
    add(jump(kEqual, 0x4e40, distance(kAsk), distance(kAllow)));
    add(statement(kReturn, SECCOMP_RET_ALLOW));
    for (const QRX_U32 call : kPathCalls) {
        add(jump(kEqual, call, distance(kAsk), 0));
    }
    add(statement(kReturn, SECCOMP_RET_ALLOW));
    add(statement(kReturn, SECCOMP_RET_USER_NOTIF));
    return filter;
}

constexpr std::array<sock_filter, kFilterSize> kFilter = make_filter();

// The call behind a notification; empty for one that the kernel shall carry out.
std::optional<Call> translate(const seccomp_notif& notification)
{
    const seccomp_data& data = notification.data;
    const auto* const a = data.args;
    constexpr QRX_U64 kHere = static_cast<QRX_U32>(AT_FDCWD);
    const auto call = [&](CallKind kind, std::array<QRX_U64, 6> arguments) {
        return Call{kind, static_cast<pid_t>(notification.pid), arguments};
    };
    switch (data.nr) {
    case SYS_ioctl:
        return call(CallKind::ioctl, {a[0], a[1], a[2]});
    case SYS_openat:
        return call(CallKind::open, {a[0], a[1], a[2], a[3]});
    case SYS_open:
        return call(CallKind::open, {kHere, a[0], a[1], a[2]});
    case SYS_creat:
        return call(CallKind::open, {kHere, a[0], O_CREAT | O_WRONLY | O_TRUNC, a[1]});
    case SYS_openat2: {
        open_how how{};
        const std::span<QRX_U8> bytes(reinterpret_cast<QRX_U8*>(&how), sizeof how);
        if (a[3] < sizeof how || !Caller(static_cast<pid_t>(notification.pid)).read(a[2], bytes) || how.resolve != 0) {
            return std::nullopt;
        }
        return call(CallKind::open, {a[0], a[1], how.flags, how.mode});
    }
    case SYS_fstat:
        return call(CallKind::fstat, {a[0], a[1]});
    case SYS_newfstatat:
        return call(CallKind::stat, {a[0], a[1], a[2], a[3]});
    case SYS_stat:
        return call(CallKind::stat, {kHere, a[0], a[1], 0});
    case SYS_lstat:
        return call(CallKind::stat, {kHere, a[0], a[1], AT_SYMLINK_NOFOLLOW});
    case SYS_statx:
        return call(CallKind::statx, {a[0], a[1], a[2], a[3], a[4]});
    case SYS_access:
        return call(CallKind::access, {kHere, a[0], a[1], 0});
    case SYS_faccessat:
        return call(CallKind::access, {a[0], a[1], a[2], 0});
    case SYS_faccessat2:
        return call(CallKind::access, {a[0], a[1], a[2], a[3]});
    case SYS_readlink:
        return call(CallKind::readlink, {kHere, a[0], a[1], a[2]});
    case SYS_readlinkat:
        return call(CallKind::readlink, {a[0], a[1], a[2], a[3]});
    case SYS_getxattr:
    case SYS_listxattr:
        return call(CallKind::xattr, {kHere, a[0], 0});
    case SYS_lgetxattr:
    case SYS_llistxattr:
        return call(CallKind::xattr, {kHere, a[0], AT_SYMLINK_NOFOLLOW});
    default:
        return std::nullopt;
    }
}

}  // namespace

UniqueFd install_seccomp_filter()
{
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) {
        return {};
    }
    std::array<sock_filter, kFilterSize> filter = kFilter;
    sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    for (const unsigned long flags : {SECCOMP_FILTER_FLAG_NEW_LISTENER | SECCOMP_FILTER_FLAG_WAIT_KILLABLE_RECV,
                                      SECCOMP_FILTER_FLAG_NEW_LISTENER}) {
        const long fd = syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, flags, &program);
        if (fd >= 0) {
            return UniqueFd(static_cast<int>(fd));
        }
        if (errno != EINVAL) {
            break;
        }
    }
    return {};
}

SeccompChannel::SeccompChannel(UniqueFd listener, CallServer& server) : listener_(std::move(listener)), server_(server)
{
    // Kernels without it wake us up a little later.
    (void)ioctl(listener_.get(), kNotifSetFlags, kSyncWakeUp);
}

void SeccompChannel::serve()
{
    seccomp_notif notification{};
    if (ioctl(listener_.get(), SECCOMP_IOCTL_NOTIF_RECV, &notification) != 0) {
        return;  // the caller died meanwhile
    }
    Reply reply;
    if (const std::optional<Call> call = translate(notification)) {
        reply = server_.answer(*call);
    }
    seccomp_notif_resp response{};
    response.id = notification.id;
    switch (reply.kind) {
    case Reply::Kind::pass_on:
        response.flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE;
        break;
    case Reply::Kind::value:
        response.val = reply.value;
        break;
    case Reply::Kind::error:
        response.error = -static_cast<int>(reply.value);
        break;
    case Reply::Kind::descriptor: {
        seccomp_notif_addfd addition{};
        addition.id = notification.id;
        addition.flags = SECCOMP_ADDFD_FLAG_SEND;
        addition.srcfd = static_cast<QRX_U32>(reply.file.get());
        addition.newfd_flags = reply.close_on_exec ? O_CLOEXEC : 0;
        int added = ioctl(listener_.get(), SECCOMP_IOCTL_NOTIF_ADDFD, &addition);
        if (added >= 0 || errno == ENOENT) {
            return;
        }
        if (errno == EINVAL) {  // a kernel that cannot answer with the same call
            addition.flags = 0;
            added = ioctl(listener_.get(), SECCOMP_IOCTL_NOTIF_ADDFD, &addition);
        }
        response.val = added;
        response.error = added < 0 ? -errno : 0;
        break;
    }
    }
    // ENOENT: the caller died meanwhile. Nobody is left to be told.
    (void)ioctl(listener_.get(), SECCOMP_IOCTL_NOTIF_SEND, &response);
}

bool SeccompChannel::deserted()
{
    pollfd wait{listener_.get(), POLLIN, 0};
    return poll(&wait, 1, 0) > 0 && (wait.revents & POLLHUP) != 0;
}

namespace {

// What the child of the probe does: it opens a path that only we can give it. Only async-signal-safe calls.
[[noreturn]] void rehearse(int socket)
{
    const UniqueFd listener = install_seccomp_filter();
    const int error = listener ? 0 : errno;
    std::array<QRX_U8, sizeof error> bytes{};
    std::memcpy(bytes.data(), &error, sizeof error);
    if (!send_with_descriptor(socket, bytes, listener.get()) || !listener) {
        _exit(1);
    }
    _exit(open(kRehearsalPath, O_RDONLY | O_CLOEXEC) >= 0 ? 0 : 1);
}

// Answers the child's one call. Empty when all of it worked.
std::string attend(int socket)
{
    int error = 0;
    std::array<QRX_U8, sizeof error> bytes{};
    Received received = receive_with_descriptor(socket, bytes);
    if (received.length != static_cast<long>(bytes.size())) {
        return "the probe's child gave no answer";
    }
    std::memcpy(&error, bytes.data(), sizeof error);
    if (error != 0 || !received.fd) {
        return std::string("the kernel refuses a listener: ") + std::strerror(error);
    }
    const int listener = received.fd.get();
    pollfd wait{listener, POLLIN, 0};
    seccomp_notif notification{};
    if (poll(&wait, 1, kProbeMilliseconds) != 1 || ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, &notification) != 0) {
        return "no notification arrives";
    }
    const std::optional<Call> call = translate(notification);
    if (!call || call->kind != CallKind::open ||
        Caller(call->pid).read_path(call->arguments[1]) != std::optional<std::string>(kRehearsalPath)) {
        return "the memory of a child cannot be read";
    }
    const UniqueFd null(open("/dev/null", O_RDONLY | O_CLOEXEC));
    seccomp_notif_addfd addition{};
    addition.id = notification.id;
    addition.srcfd = static_cast<QRX_U32>(null.get());
    seccomp_notif_resp response{};
    response.id = notification.id;
    response.val = ioctl(listener, SECCOMP_IOCTL_NOTIF_ADDFD, &addition);
    if (response.val < 0) {
        return std::string("no descriptor can be handed over: ") + std::strerror(errno);
    }
    if (ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &response) != 0) {
        return std::string("no call can be answered: ") + std::strerror(errno);
    }
    return {};
}

}  // namespace

std::string probe_seccomp()
{
    std::array<int, 2> sockets{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets.data()) != 0) {
        return std::string("no socket: ") + std::strerror(errno);
    }
    const UniqueFd ours(sockets[0]);
    UniqueFd theirs(sockets[1]);
    const pid_t child = fork();
    if (child < 0) {
        return std::string("no child: ") + std::strerror(errno);
    }
    if (child == 0) {
        rehearse(theirs.get());
    }
    theirs.reset();
    std::string why = attend(ours.get());
    if (!why.empty()) {
        (void)kill(child, SIGKILL);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (why.empty() && status != 0) {
        why = "a child does not get what it is handed";
    }
    return why;
}

#else

UniqueFd install_seccomp_filter()
{
    errno = ENOSYS;
    return {};
}

SeccompChannel::SeccompChannel(UniqueFd listener, CallServer& server) : listener_(std::move(listener)), server_(server)
{
}

void SeccompChannel::serve() {}

bool SeccompChannel::deserted()
{
    return true;
}

std::string probe_seccomp()
{
    return "not on this processor";
}

#endif

}  // namespace qrx::sim
