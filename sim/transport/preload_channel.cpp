#include "sim/transport/preload_channel.h"

#include <sched.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <span>
#include <system_error>
#include <utility>

#include "api/src/interface/wire/buffer.h"
#include "sim/transport/descriptor_passing.h"
#include "sim/transport/preload_protocol.h"

namespace qrx::sim {
namespace {

constexpr int kBacklog = 128;
constexpr unsigned kMostAtOnce = 64;

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

bool watch(int epoll, int fd)
{
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = fd;
    return epoll_ctl(epoll, EPOLL_CTL_ADD, fd, &event) == 0;
}

}  // namespace

PreloadChannel::PreloadChannel(CallServer& server)
    : server_(server),
      path_(server.tree().directory() + "/calls"),
      epoll_(epoll_create1(EPOLL_CLOEXEC)),
      listener_(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path_.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        fail("cannot listen in the temporary directory");
    }
    std::copy(path_.begin(), path_.end(), std::begin(address.sun_path));
    if (!epoll_ || !listener_ ||
        bind(listener_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener_.get(), kBacklog) != 0 || !watch(epoll_.get(), listener_.get())) {
        fail("cannot listen for the preload library");
    }
}

bool PreloadChannel::serve_latest()
{
    const auto likely = connections_.find(latest_);
    if (likely == connections_.end()) {
        return false;
    }
    bool any = false;
    long sleep_at = spin_clock() + kSpinNanoseconds;
    for (unsigned count = 0; count < kMostAtOnce;) {
        switch (serve_one(likely->second, MSG_DONTWAIT)) {
        case Outcome::served:
            any = true;
            ++count;
            sleep_at = spin_clock() + kSpinNanoseconds;
            break;
        case Outcome::nothing:
            if (!any || !apart_ || spin_clock() > sleep_at) {
                return any;
            }
            break;
        case Outcome::ended:
            connections_.erase(likely);
            return true;
        }
    }
    return false;  // the others' turn
}

void PreloadChannel::serve()
{
    if (serve_latest()) {
        return;
    }
    std::array<epoll_event, 8> events{};
    const int count = epoll_wait(epoll_.get(), events.data(), static_cast<int>(events.size()), 0);
    for (int index = 0; index < count; ++index) {
        const int fd = events[static_cast<std::size_t>(index)].data.fd;
        if (fd == listener_.get()) {
            accept_one();
            continue;
        }
        const auto found = connections_.find(fd);
        if (found != connections_.end() && serve_one(found->second, MSG_DONTWAIT) == Outcome::ended) {
            connections_.erase(found);
        }
    }
}

void PreloadChannel::accept_one()
{
    UniqueFd socket(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    ucred peer{};
    socklen_t size = sizeof peer;
    if (!socket || getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0 ||
        !watch(epoll_.get(), socket.get())) {
        return;  // the process goes on without us
    }
    const int fd = socket.get();
    connections_[fd] = {std::move(socket), peer.pid};
}

PreloadChannel::Outcome PreloadChannel::serve_one(const Connection& connection, int flags)
{
    std::array<QRX_U8, sizeof(PreloadRequest)> bytes{};
    const ssize_t got = recv(connection.socket.get(), bytes.data(), bytes.size(), flags);
    if (got != static_cast<ssize_t>(bytes.size())) {
        return got < 0 && (errno == EINTR || errno == EAGAIN) ? Outcome::nothing : Outcome::ended;
    }
    latest_ = connection.socket.get();
    const PreloadRequest request = *wire::read<PreloadRequest>(bytes);
    const int cpu = sched_getcpu();
    apart_ = static_cast<int>(request.cpu) != cpu;
    Call call;
    call.kind = static_cast<CallKind>(request.kind);
    call.pid = connection.pid;
    std::copy(std::begin(request.arguments), std::end(request.arguments), call.arguments.begin());
    const Reply reply = server_.answer(call);

    PreloadReply answer;
    answer.value = reply.value;
    answer.cpu = static_cast<QRX_U16>(cpu);
    switch (reply.kind) {
    case Reply::Kind::pass_on:
        answer.kind = PreloadReply::kPassOn;
        break;
    case Reply::Kind::value:
        answer.kind = PreloadReply::kValue;
        break;
    case Reply::Kind::error:
        answer.kind = PreloadReply::kError;
        break;
    case Reply::Kind::descriptor:
        answer.kind = PreloadReply::kDescriptor;
        answer.close_on_exec = reply.close_on_exec ? 1 : 0;
        break;
    }
    const std::span<const QRX_U8> out(reinterpret_cast<const QRX_U8*>(&answer), sizeof answer);
    if (reply.kind == Reply::Kind::descriptor) {
        return send_with_descriptor(connection.socket.get(), out, reply.file.get()) ? Outcome::served : Outcome::ended;
    }
    const ssize_t sent = send(connection.socket.get(), out.data(), out.size(), MSG_NOSIGNAL);
    return sent == static_cast<ssize_t>(out.size()) ? Outcome::served : Outcome::ended;
}

}  // namespace qrx::sim
