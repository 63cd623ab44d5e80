#include "sim/firmware/host_functions.h"

#include <algorithm>
#include <bit>

#include "api/src/interface/wire/ns_format.h"
#include "sim/firmware/status.h"

namespace qrx::sim {

Completion HostFunctions::manage(const nvme_admin_cmd& command)
{
    const auto words = std::bit_cast<_virtualization_management>(command.cdw10);
    const auto id = static_cast<QRX_U16>(words.controller_identifier);
    const bool of_primary = words.action == kVirtualizationAllocate;
    const bool of_secondary = words.action >= kVirtualizationOffline && words.action <= kVirtualizationOnline;
    if (!of_primary && !of_secondary) {
        return complete(status::kInvalidField);
    }
    if (id >= UCD_HIU_NUM || (id < kPrimary) != of_primary) {
        return complete(status::kInvalidControllerId);
    }
    HostFunction function = this->function(id);
    if (words.action == kVirtualizationOffline) {
        store({id});
        return complete(status::kSuccess);
    }
    if (words.action == kVirtualizationOnline) {
        return switch_on(function);
    }
    if (words.resource_type >= HostFunction::kResources) {
        return complete(status::kInvalidResourceId);
    }
    const auto kind = static_cast<HostFunction::Resource>(words.resource_type);
    return of_primary ? allocate(function, kind, command.cdw11) : assign(function, kind, command.cdw11);
}

Completion HostFunctions::allocate(HostFunction function, HostFunction::Resource kind, QRX_U32 count)
{
    if (count > left(kind, function.id)) {
        return complete(status::kInvalidResourceCount);
    }
    function.wanted.at(kind) = static_cast<QRX_U16>(count);
    store(function);
    return complete(status::kSuccess, count);
}

Completion HostFunctions::assign(HostFunction function, HostFunction::Resource kind, QRX_U32 count)
{
    if (function.online) {
        return complete(status::kInvalidSecondaryState);
    }
    if (count > kSecondaryMost || count > left(kind, function.id)) {
        return complete(status::kInvalidResourceCount);
    }
    function.resources.at(kind) = static_cast<QRX_U16>(count);
    store(function);
    return complete(status::kSuccess, count);
}

Completion HostFunctions::switch_on(HostFunction function)
{
    if (function.resources.at(HostFunction::kQueues) < kOnlineLeast) {
        return complete(status::kInvalidSecondaryState);
    }
    function.online = true;
    store(function);
    return complete(status::kSuccess);
}

void HostFunctions::reset()
{
    for (HostFunction& function : changed) {
        if (function.id < kPrimary) {
            function.resources = function.wanted;
        }
    }
}

HostFunction HostFunctions::function(QRX_U16 id) const
{
    const auto found =
        std::find_if(changed.begin(), changed.end(), [id](const HostFunction& one) { return one.id == id; });
    return found != changed.end() ? *found : HostFunction{id};
}

void HostFunctions::store(const HostFunction& function)
{
    std::erase_if(changed, [&](const HostFunction& one) { return one.id == function.id; });
    if (function != HostFunction{function.id}) {
        const auto place =
            std::find_if(changed.begin(), changed.end(), [&](const HostFunction& one) { return one.id > function.id; });
        changed.insert(place, function);
    }
}

QRX_U32 HostFunctions::left(HostFunction::Resource kind, QRX_U16 besides) const
{
    QRX_U32 used = 0;
    for (const HostFunction& one : changed) {
        used += one.id == besides ? 0U : std::max(one.resources.at(kind), one.wanted.at(kind));
    }
    return kPool - std::min<QRX_U32>(used, kPool);
}

}  // namespace qrx::sim
