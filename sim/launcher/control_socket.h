// The socket over which `qrx_sim ctl` reaches a machine on which programs run.
#pragma once

#include <chrono>
#include <string>

#include "sim/launcher/attendant.h"
#include "sim/launcher/control_command.h"
#include "sim/transport/unique_fd.h"

namespace qrx::sim {

// Names the socket in the environment of every program under the simulator.
inline constexpr const char* kControlVariable = "QRX_SIM_CONTROL";

// The launcher's side: answers one request after the other, and lets the machine's clock follow the real one.
class ControlSocket : public Attendant {
public:
    // Listens at `path`, or at a place of its own when that is empty, and names it in this process's environment.
    // Throws std::runtime_error.
    ControlSocket(Machine& machine, const std::string& path, bool clock_runs);
    ~ControlSocket() override;

    [[nodiscard]] int descriptor() const override { return listener_.get(); }
    void tick() override;
    void serve() override;

private:
    Machine& machine_;
    bool clock_runs_;
    std::string directory_;  // to be removed at the end; empty for a path that was given
    std::string path_;
    UniqueFd listener_;
    std::chrono::steady_clock::time_point ticked_ = std::chrono::steady_clock::now();
};

// The other side: sends a request to the socket at `path` and waits for the answer. `reached` tells a refusal from a
// simulator that did not answer.
[[nodiscard]] Result<std::string> ask(const std::string& path, const ControlRequest& request, bool& reached);

}  // namespace qrx::sim
