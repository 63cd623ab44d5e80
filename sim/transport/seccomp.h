// The way in by seccomp user notification: the kernel stops the program at the calls of interest and asks us.
#pragma once

#include <sys/types.h>

#include <string>

#include "sim/transport/call_server.h"
#include "sim/transport/channel.h"
#include "sim/transport/unique_fd.h"

namespace qrx::sim {

// In the process that is to become the program: sets no_new_privs and installs the filter, for good. The listener, or
// an empty descriptor with errno set. Safe between fork and exec.
[[nodiscard]] UniqueFd install_seccomp_filter();

// Answers the notifications of one listener.
class SeccompChannel : public Channel {
public:
    SeccompChannel(UniqueFd listener, CallServer& server);

    [[nodiscard]] int descriptor() const override { return listener_.get(); }
    void serve() override;
    [[nodiscard]] bool deserted() override;

private:
    UniqueFd listener_;
    CallServer& server_;
};

// Tries the whole road with a child of its own. Empty when it works, otherwise why not.
[[nodiscard]] std::string probe_seccomp();

}  // namespace qrx::sim
