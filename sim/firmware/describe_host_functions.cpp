// The text form of the controller's host functions.
#include <algorithm>

#include "sim/firmware/describe.h"

namespace qrx::sim {

template <class Io>
void describe(Io& io, HostFunctions& functions)
{
    io.list("changed", functions.changed, Controller::kHostFunctions, [](auto& inner, HostFunction& function) {
        inner.number("id", function.id, 0, Controller::kHostFunctions - 1);
        inner.number("queues", function.resources.at(HostFunction::kQueues), 0, HostFunctions::kPool);
        inner.number("interrupts", function.resources.at(HostFunction::kInterrupts), 0, HostFunctions::kPool);
        inner.number("wanted_queues", function.wanted.at(HostFunction::kQueues), 0, HostFunctions::kPool);
        inner.number("wanted_interrupts", function.wanted.at(HostFunction::kInterrupts), 0, HostFunctions::kPool);
        inner.flag("online", function.online);
    });
    const auto& changed = functions.changed;
    io.check(std::adjacent_find(changed.begin(), changed.end(),
                                [](const HostFunction& left, const HostFunction& right) {
                                    return left.id >= right.id;
                                }) == changed.end(),
             "changed", "must have rising ids");
}

template void describe(JsonReader&, HostFunctions&);
template void describe(JsonWriter&, HostFunctions&);

}  // namespace qrx::sim
