// A simulated machine: controllers, SSDs of other makers beside them, and a mount table.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "sim/firmware/controller.h"
#include "sim/firmware/host.h"
#include "sim/firmware/ssd.h"

namespace qrx::sim {

class Machine : public Host {
public:
    // What the machine is made of. Of the numbers of controllers and SSDs no two are equal.
    struct Parts {
        std::string mount_table;  // whole lines; empty: the real one of the host
        std::vector<Controller> controllers;
        std::vector<Ssd> ssds;

        friend bool operator==(const Parts&, const Parts&) = default;
    };

    explicit Machine(Parts parts) : parts_(std::move(parts)) {}

    [[nodiscard]] std::vector<ControllerNode> controllers() const override;
    [[nodiscard]] std::string mount_table() const override { return parts_.mount_table; }
    // A node that does not exist fails with ENODEV. An I/O command on a namespace's node for another namespace
    // fails with EINVAL.
    Completion admin(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data) override;
    Completion io(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data) override;

    // Lets simulated time go by, on all devices. Nothing else does, but a command that sets a device's clock, and one
    // to a controller that stalls.
    void advance(Clock::Duration passed);

    [[nodiscard]] const Parts& parts() const { return parts_; }

    // For those who change the machine from outside, as a hand in a lab does.
    [[nodiscard]] Controller* controller(unsigned number);
    // How a command waits for a controller that stalls, on a machine whose time goes by like the real one: `wait` lets
    // so much of that go by. On any other machine the simulated time goes by at once.
    void wait_with(std::function<void(Clock::Duration)> wait) { wait_ = std::move(wait); }
    void set_mount_table(std::string text) { parts_.mount_table = std::move(text); }

private:
    [[nodiscard]] NvmeFunction* find(const Node& node);
    void wait_for(const Node& node);

    Parts parts_;
    std::function<void(Clock::Duration)> wait_;  // may be empty
};

}  // namespace qrx::sim
