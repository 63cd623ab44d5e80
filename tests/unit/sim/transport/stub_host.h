// A machine with one controller at /dev/nvme0 and one namespace, for tests of the ways in: it keeps the commands it
// gets and answers each in a way that tells which it was.
#pragma once

#include <algorithm>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "sim/firmware/host.h"

namespace qrx::sim {

class StubHost : public Host {
public:
    struct Seen {
        Node node;
        nvme_admin_cmd command;
        std::vector<QRX_U8> data;
        bool admin = false;
    };

    StubHost()
    {
        ControllerNode controller;
        controller.number = 0;
        controller.address = "0000:03:00.0";
        controller.vendor_id = 0x7a51;
        controller.device_id = 0x3317;
        controller.subsystem_vendor_id = 0x1234;
        controller.subsystem_device_id = 0xabcd;
        controller.controller_id = 5;
        controller.slot_id = 7;
        controller.model = "STUB MODEL";
        controller.serial = "STUBSERIAL01";
        controller.firmware = "1.2.3";
        controller.subnqn = "nqn.2024-01.test:stub";
        controller.namespaces.push_back({1, 2048, 512, "00112233445566778899aabbccddeeff"});
        nodes.push_back(controller);
    }

    [[nodiscard]] std::vector<ControllerNode> controllers() const override { return nodes; }
    [[nodiscard]] std::string mount_table() const override { return mounts; }
    Completion admin(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data) override
    {
        return execute(node, command, data, true);
    }
    Completion io(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data) override
    {
        return execute(node, command, data, false);
    }

    std::vector<ControllerNode> nodes;
    std::string mounts = "/dev/nvme0n1p1 /boot ext4 rw 0 0\n";
    std::vector<Seen> seen;

private:
    // Data come back with every byte one higher, the status and the result are what the command asks for in its words
    // 14 and 15, and word 13 is the errno. Word 12 of 1 takes the namespace away, 2 gives it back.
    Completion execute(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data, bool admin)
    {
        if (keep_commands) {
            seen.push_back({node, command, {data.begin(), data.end()}, admin});
        }
        std::ranges::for_each(data, [](QRX_U8& byte) { ++byte; });
        if (command.cdw12 == 1) {
            nodes.front().namespaces.clear();
        } else if (command.cdw12 == 2) {
            nodes.front().namespaces.push_back({2, 4096, 4096, ""});
        }
        return {command.cdw14, command.cdw15, static_cast<int>(command.cdw13)};
    }

public:
    bool keep_commands = true;
};

}  // namespace qrx::sim
