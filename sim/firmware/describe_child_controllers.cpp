// The text form of child controllers.
#include "sim/firmware/describe.h"

namespace qrx::sim {

namespace {

constexpr auto kPolicyWords =
    std::to_array<JsonWord>({{ChildQos::kReserve, "reserve"}, {ChildQos::kLimit, "limit"}, {ChildQos::kMix, "mix"}});
constexpr auto kStateWords = std::to_array<JsonWord>({{ChildController::kRunning, "running"},
                                                      {ChildController::kPaused, "paused"},
                                                      {ChildController::kShutDown, "shut-down"},
                                                      {ChildController::kFailed, "failed"}});

template <class Io>
void describe(Io& io, ChildLimits& limits)
{
    io.number("functions", limits.functions, 0, ChildControllers::kMaxId);
    io.number("queue_pairs", limits.queue_pairs, 0, kAny16);
    io.number("interrupts", limits.interrupts, 0, kAny16);
    io.number("namespaces", limits.namespaces, 0, kAny16);
    io.number("namespaces_of_one", limits.namespaces_of_one, 0, kAny8);
    io.number("storage", limits.storage, 0, kAny32);
    io.number("granularity", limits.granularity, 0, kAny32);
    io.number("read_bandwidth", limits.read_bandwidth, 0, kAny32);
    io.number("write_bandwidth", limits.write_bandwidth, 0, kAny32);
    io.number("read_iops", limits.read_iops, 0, kAny32);
    io.number("write_iops", limits.write_iops, 0, kAny32);
}

template <class Io>
void describe(Io& io, ChildQos& qos)
{
    static constexpr std::array<const char*, 8> kKeys{
        "reserved_read_bandwidth", "reserved_write_bandwidth", "read_bandwidth_limit", "write_bandwidth_limit",
        "reserved_read_iops",      "reserved_write_iops",      "read_iops_limit",      "write_iops_limit"};
    io.code("policy", qos.policy, kPolicyWords);
    for (std::size_t i = 0; i < kKeys.size(); ++i) {
        io.number(kKeys.at(i), qos.numbers.at(i), 0, kAny32);
    }
}

template <class Io>
void describe(Io& io, ChildController& child)
{
    io.number("id", child.id, 1, ChildControllers::kMaxId);
    io.text("serial", child.serial, ChildControllers::kSerialMax);
    io.number("queue_pairs", child.queue_pairs, 1, kAny16);
    io.number("interrupts", child.interrupts, 1, kAny16);
    io.number("namespaces", child.namespaces, 0, kAny16);
    io.number("storage", child.storage, 0, kAny32);
    io.optional("qos", child.qos, [](auto& inner, ChildQos& qos) { describe(inner, qos); });
    io.code("state", child.state, kStateWords);
    io.check(child.state <= ChildController::kFailed, "state", "is none of a child controller");
    io.number("critical_warning", child.critical_warning, 0, kAny8);
    io.number("starts", child.starts, 0, kAny32);
    io.number("erasures", child.erasures, 0, kAny32);
}

// Whether no two neighbours of an ordered list have the same key.
template <class Items, class Key>
bool distinct(const Items& items, Key key)
{
    return std::adjacent_find(items.begin(), items.end(), [key](const auto& left, const auto& right) {
               return left.*key == right.*key;
           }) == items.end();
}

}  // namespace

template <class Io>
void describe(Io& io, ChildControllers& children)
{
    io.object("limits", [&](auto& inner) { describe(inner, children.limits); });
    io.flag("multiple", children.multiple);
    io.flag("admin", children.admin);
    io.object("properties", [&](auto& inner) {
        inner.number("metadata", children.metadata, 0, kAny16);
        inner.number("sector_shift", children.sector_shift, 0, kAny8);
        inner.number("protection", children.protection, 0, kAny8);
        inner.number("sharing", children.sharing, 0, kAny8);
    });
    io.list("permissions", children.permissions, ChildControllers::kPermissions,
            [](auto& inner, ChildPermission& permission) {
                inner.number("opcode", permission.opcode, 0, kAny8);
                inner.flag("allowed", permission.allowed);
                inner.flag("changeable", permission.changeable);
            });
    sort_by(children.permissions, &ChildPermission::opcode);
    io.check(distinct(children.permissions, &ChildPermission::opcode), "permissions", "has an opcode twice");
    io.list("children", children.children, ChildControllers::kMaxId,
            [](auto& inner, ChildController& child) { describe(inner, child); });
    sort_by(children.children, &ChildController::id);
    io.check(distinct(children.children, &ChildController::id), "children", "has an id twice");
    io.check(children.check(children.children) == status::kSuccess, "children",
             "takes more than 'limits' has to give, or has a policy that is none");
    io.check(children.multiple || children.children.empty(), "children", "needs 'multiple'");
    io.list("events", children.events, ChildControllers::kEvents, [](auto& inner, ChildEvent& event) {
        inner.number("child", event.child, 0, kAny8);
        inner.number("log_page", event.log_page, 0, kAny8);
        inner.number("flags", event.flags, 0, kAny32);
    });
}

template void describe(JsonReader&, ChildControllers&);
template void describe(JsonWriter&, ChildControllers&);

}  // namespace qrx::sim
