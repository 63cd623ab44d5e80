#include "sim/launcher/show_children.h"

#include <array>

namespace qrx::sim {

namespace {

const char* state_text(QRX_U8 state)
{
    constexpr std::array<const char*, 4> kTexts{"running", "paused", "shut down", "failed"};
    return kTexts.at(state);
}

std::string qos_text(const ChildQos& qos)
{
    constexpr std::array<const char*, 3> kPolicies{"reserve", "limit", "mix"};
    std::string text = std::string(", QoS ") + kPolicies.at(qos.policy);
    for (const QRX_U32 number : qos.numbers) {
        text += " " + std::to_string(number);
    }
    return text;
}

}  // namespace

std::string show_children(const Controller& controller)
{
    const ChildControllers& children = controller.children;
    std::string text = "controller " + std::to_string(controller.number) + ": " +
                       (children.multiple ? "multiple" : "single") + " mode, privilege " +
                       (children.admin ? "admin" : "user") + "\n";
    for (const ChildController& child : children.children) {
        text += "  child " + std::to_string(child.id) + ": " + state_text(child.state) + ", serial number " +
                child.serial + ", queue pairs " + std::to_string(child.queue_pairs) + ", interrupts " +
                std::to_string(child.interrupts) + ", namespaces " + std::to_string(child.namespaces) +
                ", storage units " + std::to_string(child.storage) + ", erasures " + std::to_string(child.erasures) +
                (child.qos ? qos_text(*child.qos) : "") + "\n";
    }
    return text;
}

}  // namespace qrx::sim
