// What a drive behind the controller does to its namespaces: format, make, delete, attach.
#include <algorithm>

#include "api/src/interface/wire/buffer.h"
#include "sim/firmware/drive.h"

namespace qrx::sim {

namespace {

constexpr QRX_U32 kBroadcast = 0xFFFFFFFF;

}  // namespace

Completion Drive::format(const nvme_admin_cmd& command)
{
    const Completion completion = reformat(command);
    if (completion.status == status::kSuccess && namespaces.size() == 1) {
        sectors = bytes() / namespaces.front().sector_size;
        sector_size = namespaces.front().sector_size;
    }
    return completion;
}

Completion Drive::manage(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    constexpr QRX_U32 kCreate = 0;
    constexpr QRX_U32 kDelete = 1;
    switch (command.cdw10 & 0xF) {
    case kCreate:
        return create_namespace(command, data);
    case kDelete:
        return delete_namespace(command.nsid);
    default:
        return complete(status::kInvalidField);
    }
}

Completion Drive::create_namespace(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    const auto wanted = wire::read<_nvme_id_ns>(data);
    if (!wanted || command.nsid != 0 || wanted->nsze == 0 || wanted->dps != 0 || (wanted->nmic & 1) != 0) {
        return complete(status::kInvalidField);
    }
    if (wanted->ncap != wanted->nsze) {
        return complete(status::kThinProvisioning);
    }
    const std::optional<QRX_U32> format = format_size(wanted->flbas);
    if (!format) {
        return complete(status::kInvalidFormat);
    }
    const QRX_U32 size = *format;
    if (wanted->nsze > capacity().unallocated / size) {
        return complete(status::kInsufficientCapacity);
    }
    QRX_U8 free = 1;
    while (find_namespace(*this, free) != nullptr) {
        ++free;
    }
    if (free > kNamespacesMax) {
        return complete(status::kNamespaceIdUnavailable);
    }
    Namespace ns;
    ns.nsid = free;
    ns.parent_kind = kNsParentPd;
    ns.active = false;
    ns.sectors = wanted->nsze;
    ns.sector_size = size;
    ns.derive_identifiers(serial);
    const auto place = std::find_if(namespaces.begin(), namespaces.end(),
                                    [&](const Namespace& other) { return other.nsid > ns.nsid; });
    namespaces.insert(place, std::move(ns));
    return complete(status::kSuccess, free);
}

Completion Drive::delete_namespace(QRX_U32 which)
{
    if (which == kBroadcast) {
        namespaces.clear();
        return complete(status::kSuccess);
    }
    const std::size_t gone = std::erase_if(namespaces, [which](const Namespace& ns) { return ns.nsid == which; });
    return complete(gone != 0 ? status::kSuccess : status::kInvalidNamespace);
}

Completion Drive::attach(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    constexpr QRX_U32 kDetach = 1;
    const QRX_U32 operation = command.cdw10 & 0xF;
    const auto list = wire::read<_controller_list_format>(data);
    if (operation > kDetach || !list) {
        return complete(status::kInvalidField);
    }
    Namespace* const ns = find_namespace(*this, command.nsid);
    if (ns == nullptr) {
        return complete(status::kInvalidNamespace);
    }
    if (list->num_of_id != 1) {
        return complete(status::kControllerListInvalid);  // it has one controller
    }
    if (list->id[0] != controller_id) {
        return complete(status::kInvalidControllerId);
    }
    const bool attached = operation != kDetach;
    if (ns->active == attached) {
        return complete(attached ? status::kNamespaceAttached : status::kNamespaceNotAttached);
    }
    ns->active = attached;
    return complete(status::kSuccess);
}

}  // namespace qrx::sim
