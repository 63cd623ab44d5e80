#include "sim/transport/descriptor_passing.h"

#include <sys/socket.h>
#include <sys/uio.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace qrx::sim {
namespace {

struct alignas(cmsghdr) ControlSpace {
    std::array<char, CMSG_SPACE(sizeof(int))> bytes{};
};

}  // namespace

bool send_with_descriptor(int socket, std::span<const QRX_U8> bytes, int fd)
{
    iovec piece{const_cast<QRX_U8*>(bytes.data()), bytes.size()};  // sendmsg only reads
    ControlSpace control;
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    if (fd >= 0) {
        message.msg_control = control.bytes.data();
        message.msg_controllen = control.bytes.size();
        cmsghdr* const header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof fd);
        std::memcpy(CMSG_DATA(header), &fd, sizeof fd);
    }
    ssize_t sent = 0;
    do {
        sent = sendmsg(socket, &message, MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent == static_cast<ssize_t>(bytes.size());
}

Received receive_with_descriptor(int socket, std::span<QRX_U8> bytes)
{
    iovec piece{bytes.data(), bytes.size()};
    ControlSpace control;
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    message.msg_control = control.bytes.data();
    message.msg_controllen = control.bytes.size();
    Received received;
    do {
        received.length = recvmsg(socket, &message, MSG_CMSG_CLOEXEC);
    } while (received.length < 0 && errno == EINTR);
    if (received.length < 0) {
        return received;
    }
    for (cmsghdr* header = CMSG_FIRSTHDR(&message); header != nullptr; header = CMSG_NXTHDR(&message, header)) {
        if (header->cmsg_level == SOL_SOCKET && header->cmsg_type == SCM_RIGHTS) {
            int fd = -1;
            std::memcpy(&fd, CMSG_DATA(header), sizeof fd);
            received.fd.reset(fd);
        }
    }
    return received;
}

}  // namespace qrx::sim
