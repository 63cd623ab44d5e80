// A host around a host: passes everything on. What a decorator changes, it overrides.
#pragma once

#include "sim/firmware/host.h"

namespace qrx::sim {

class Decorator : public Host {
public:
    // `inner` must outlive the decorator.
    explicit Decorator(Host& inner) : inner_(inner) {}

    [[nodiscard]] std::vector<ControllerNode> controllers() const override { return inner_.controllers(); }
    [[nodiscard]] std::string mount_table() const override { return inner_.mount_table(); }
    Completion admin(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data) override
    {
        return inner_.admin(node, command, data);
    }
    Completion io(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data) override
    {
        return inner_.io(node, command, data);
    }

protected:
    [[nodiscard]] Host& inner() { return inner_; }

private:
    Host& inner_;
};

}  // namespace qrx::sim
