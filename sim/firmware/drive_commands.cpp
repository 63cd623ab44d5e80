// What a drive behind the controller does to its namespaces: format, make, delete, attach.
#include <algorithm>

#include "api/src/interface/wire/buffer.h"
#include "sim/firmware/drive.h"

namespace qrx::sim {

namespace {

constexpr QRX_U32 kBroadcast = 0xFFFFFFFF;
constexpr std::array<QRX_U32, 2> kFormats{512, 4096};  // bytes of a sector

}  // namespace

Completion Drive::format(const nvme_admin_cmd& command)
{
    constexpr QRX_U32 kEraseByKey = 2;
    const QRX_U32 index = command.cdw10 & 0xF;
    const QRX_U32 protection =
        command.cdw10 >> 4 & 0x1F;  // metadata and protection information, of which there is none
    const QRX_U32 erase = command.cdw10 >> 9 & 7;
    if (command.nsid != kBroadcast && (command.nsid == 0 || find_namespace(*this, command.nsid) == nullptr)) {
        return complete(status::kInvalidNamespace);
    }
    if (index >= kFormats.size() || protection != 0) {
        return complete(status::kInvalidFormat);
    }
    if (erase > kEraseByKey) {
        return complete(status::kInvalidField);
    }
    const QRX_U32 size = kFormats.at(index);
    for (Namespace& ns : namespaces) {
        if (command.nsid == kBroadcast || ns.nsid == command.nsid) {
            ns.sectors = ns.sectors * ns.sector_size / size;
            ns.sector_size = size;
            ns.data = {};
        }
    }
    if (namespaces.size() == 1) {
        sectors = bytes() / size;
        sector_size = size;
    }
    return complete(status::kSuccess);
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
    if (wanted->flbas >= kFormats.size()) {
        return complete(status::kInvalidFormat);
    }
    const QRX_U32 size = kFormats.at(wanted->flbas);
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
