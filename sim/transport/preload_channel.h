// The way in by the preload library: calls come over sockets, one for each process that uses the library.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>

#include "sim/transport/call_server.h"
#include "sim/transport/channel.h"
#include "sim/transport/unique_fd.h"

namespace qrx::sim {

class PreloadChannel : public Channel {
public:
    // Listens at a socket in the server's private directory. Throws std::system_error.
    explicit PreloadChannel(CallServer& server);

    [[nodiscard]] const std::string& socket_path() const { return path_; }
    [[nodiscard]] int descriptor() const override { return epoll_.get(); }
    void serve() override;
    [[nodiscard]] bool deserted() override { return connections_.empty(); }

private:
    struct Connection {
        UniqueFd socket;
        pid_t pid = 0;
    };

    void accept_one();
    // False when the connection has ended.
    [[nodiscard]] bool serve_one(const Connection& connection);

    CallServer& server_;
    std::string path_;
    UniqueFd epoll_;
    UniqueFd listener_;
    std::map<int, Connection> connections_;
};

}  // namespace qrx::sim
