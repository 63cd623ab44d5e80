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
    enum class Outcome { served, nothing, ended };
    [[nodiscard]] Outcome serve_one(const Connection& connection, int flags);
    // Serves the connection that called last for as long as it goes on calling. False when it has nothing to say.
    bool serve_latest();

    CallServer& server_;
    std::string path_;
    UniqueFd epoll_;
    UniqueFd listener_;
    std::map<int, Connection> connections_;
    int latest_ = -1;     // the connection that was served last is the likeliest to call next
    bool apart_ = false;  // its process runs on another processor than we
};

}  // namespace qrx::sim
