// What the Linux kernel would show of a simulated machine: device nodes, sysfs, SMBIOS tables, mount table.
#pragma once

#include <string>
#include <vector>

#include "sim/firmware/host.h"
#include "sim/transport/overlay.h"

namespace qrx::sim {

// All of a machine that its files depend on. While two views are equal, so are the files.
struct MachineView {
    std::vector<ControllerNode> controllers;
    std::string mount_table;

    friend bool operator==(const MachineView&, const MachineView&) = default;
};

[[nodiscard]] MachineView view_of(const Host& host);

// The files of the machine. Without a mount table of its own it shows the real one's.
[[nodiscard]] Overlay make_overlay(const MachineView& view);

// Path of a node, "/dev/nvme0" or "/dev/nvme0n1".
[[nodiscard]] std::string device_path(const Node& node);

// Major and minor number of a node: a character device of major 240, or a block device of major 259.
struct DeviceNumber {
    unsigned major = 0;
    unsigned minor = 0;
};
[[nodiscard]] DeviceNumber device_number(const Node& node);

}  // namespace qrx::sim
