#include "sim/transport/preload_client.h"

#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "sim/transport/preload_protocol.h"

namespace qrx::sim {
namespace {

// Out of the way of programs that count on low numbers.
constexpr int kLowestDescriptor = 200;

pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
int connection = -1;
// Which socket the connection was: a program may close any descriptor and open something else under its number.
QRX_U64 connection_inode = 0;
bool fork_watched = false;
bool launcher_runs_apart = false;  // on another processor, as of its last answer

// The kernel's own status, past every interposed function. 0 when there is none.
QRX_U64 inode_of(int fd)
{
    struct stat status;
    return syscall(SYS_newfstatat, fd, "", &status, AT_EMPTY_PATH) == 0 ? status.st_ino : 0;
}

void before_fork()
{
    pthread_mutex_lock(&mutex);
}
void after_fork_in_parent()
{
    pthread_mutex_unlock(&mutex);
}
void after_fork_in_child()
{
    // The connection is the parent's.
    if (connection >= 0 && inode_of(connection) == connection_inode) {
        close(connection);
    }
    connection = -1;
    pthread_mutex_unlock(&mutex);
}

bool connected()
{
    if (connection >= 0) {
        if (inode_of(connection) == connection_inode) {
            return true;
        }
        connection = -1;
    }
    const char* const path = getenv(kPreloadSocketVariable);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path == nullptr || strlen(path) >= sizeof address.sun_path) {
        return false;
    }
    memcpy(address.sun_path, path, strlen(path) + 1);
    const int low = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    if (low < 0) {
        return false;
    }
    if (connect(low, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        close(low);
        return false;
    }
    const int high = fcntl(low, F_DUPFD_CLOEXEC, kLowestDescriptor);
    connection = high >= 0 ? high : low;
    if (high >= 0) {
        close(low);
    }
    connection_inode = inode_of(connection);
    // Where only a named process may look into another's memory, the launcher is the one.
    ucred peer;
    socklen_t size = sizeof peer;
    if (getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0) {
        prctl(PR_SET_PTRACER, peer.pid, 0, 0, 0);
    }
    if (!fork_watched) {
        fork_watched = pthread_atfork(before_fork, after_fork_in_parent, after_fork_in_child) == 0;
    }
    return true;
}

bool send_request(const PreloadRequest& request)
{
    ssize_t sent = 0;
    do {
        sent = send(connection, &request, sizeof request, MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent == static_cast<ssize_t>(sizeof request);
}

bool receive_plain(PreloadReply& reply)
{
    ssize_t got = -1;
    errno = EAGAIN;
    if (launcher_runs_apart) {
        const long sleep_at = spin_clock() + kSpinNanoseconds;
        do {
            got = recv(connection, &reply, sizeof reply, MSG_DONTWAIT);
        } while (got < 0 && errno == EAGAIN && spin_clock() < sleep_at);
    }
    while (got < 0 && (errno == EINTR || errno == EAGAIN)) {
        got = recv(connection, &reply, sizeof reply, 0);
    }
    return got == static_cast<ssize_t>(sizeof reply);
}

// Takes the reply and, into `fd`, the descriptor that comes with it.
bool receive_reply(PreloadReply& reply, int& fd)
{
    iovec piece = {&reply, sizeof reply};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))];
    msghdr message = {};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    ssize_t got = 0;
    do {
        got = recvmsg(connection, &message, MSG_CMSG_CLOEXEC);
    } while (got < 0 && errno == EINTR);
    if (got != static_cast<ssize_t>(sizeof reply)) {
        return false;
    }
    const cmsghdr* const header = CMSG_FIRSTHDR(&message);
    if (header != nullptr && header->cmsg_type == SCM_RIGHTS) {
        memcpy(&fd, CMSG_DATA(header), sizeof fd);
    }
    return true;
}

ClientReply finish(const PreloadReply& reply, int fd, int old_errno)
{
    errno = old_errno;
    switch (reply.kind) {
    case PreloadReply::kValue:
        return {true, reply.value};
    case PreloadReply::kError:
        errno = static_cast<int>(reply.value);
        return {true, -1};
    case PreloadReply::kDescriptor:
        if (fd < 0) {
            errno = EMFILE;  // there was no room for it
            return {true, -1};
        }
        if (reply.close_on_exec == 0) {
            fcntl(fd, F_SETFD, 0);
        }
        return {true, fd};
    default:
        return {};
    }
}

}  // namespace

ClientReply ask(CallKind kind, QRX_U64 a0, QRX_U64 a1, QRX_U64 a2, QRX_U64 a3, QRX_U64 a4)
{
    const int old_errno = errno;
    PreloadRequest request;
    request.kind = static_cast<QRX_U32>(kind);
    const int cpu = sched_getcpu();
    request.cpu = cpu < 0 ? 0 : static_cast<QRX_U32>(cpu);
    const QRX_U64 arguments[] = {a0, a1, a2, a3, a4};
    memcpy(request.arguments, arguments, sizeof arguments);
    PreloadReply reply;
    int fd = -1;
    pthread_mutex_lock(&mutex);
    const bool answered = connected() && send_request(request) &&
                          (kind == CallKind::open ? receive_reply(reply, fd) : receive_plain(reply));
    launcher_runs_apart = answered && reply.cpu != request.cpu;
    pthread_mutex_unlock(&mutex);
    if (!answered) {
        errno = old_errno;
        return {};
    }
    return finish(reply, fd, old_errno);
}

}  // namespace qrx::sim
