#include "sim/firmware/machine.h"

#include <algorithm>
#include <cerrno>

namespace qrx::sim {

std::vector<ControllerNode> Machine::controllers() const
{
    std::vector<ControllerNode> nodes;
    for (const Controller& controller : parts_.controllers) {
        nodes.push_back(controller.node());
    }
    for (const Ssd& ssd : parts_.ssds) {
        nodes.push_back(ssd.node());
    }
    std::sort(nodes.begin(), nodes.end(),
              [](const ControllerNode& left, const ControllerNode& right) { return left.number < right.number; });
    return nodes;
}

NvmeFunction* Machine::find(const Node& node)
{
    NvmeFunction* function = nullptr;
    for (Controller& controller : parts_.controllers) {
        if (controller.number == node.controller) {
            function = &controller;
        }
    }
    for (Ssd& ssd : parts_.ssds) {
        if (ssd.number == node.controller) {
            function = &ssd;
        }
    }
    if (function == nullptr || node.nsid == 0) {
        return function;
    }
    const Namespace* const ns = NvmeFunction::find_namespace(*function, node.nsid);
    return ns != nullptr && ns->valid && ns->active ? function : nullptr;
}

void Machine::wait_for(const Node& node)
{
    Controller* const stalled = controller(node.controller);
    if (stalled == nullptr || stalled->diagnostics.stall == 0) {
        return;
    }
    const Clock::Duration left(stalled->diagnostics.stall);
    if (!wait_) {
        advance(left);
        return;
    }
    wait_(left);  // the clock catches up with the next tick
    stalled->diagnostics.stall = 0;
}

Completion Machine::admin(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    wait_for(node);
    NvmeFunction* const function = find(node);
    return function != nullptr ? function->execute_admin(command, data) : Completion{0, 0, ENODEV};
}

Completion Machine::io(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    wait_for(node);
    NvmeFunction* const function = find(node);
    if (function == nullptr) {
        return {0, 0, ENODEV};
    }
    if (node.nsid != 0 && command.nsid != node.nsid) {
        return {0, 0, EINVAL};
    }
    return function->execute_io(command, data);
}

Controller* Machine::controller(unsigned number)
{
    const auto found = std::find_if(parts_.controllers.begin(), parts_.controllers.end(),
                                    [number](const Controller& controller) { return controller.number == number; });
    return found == parts_.controllers.end() ? nullptr : &*found;
}

void Machine::advance(Clock::Duration passed)
{
    for (Controller& controller : parts_.controllers) {
        controller.advance(passed);
    }
    for (Ssd& ssd : parts_.ssds) {
        ssd.advance(passed);
    }
}

}  // namespace qrx::sim
