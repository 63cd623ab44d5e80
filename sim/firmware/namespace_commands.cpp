// Namespaces: making them, sharing them between host functions, attaching them, taking them over.
#include <algorithm>

#include <functional>

#include "api/src/interface/wire/buffer.h"
#include "sim/firmware/controller.h"

namespace qrx::sim {

namespace {

constexpr QRX_U32 kBroadcast = 0xFFFFFFFF;

QRX_U32 block_size(QRX_U32 sector_size)
{
    return sector_size == 4096 ? 4096 : 512;
}

}  // namespace

std::optional<QRX_U8> Controller::free_nsid() const
{
    for (unsigned nsid = 1; nsid <= adapter.max_ns; ++nsid) {
        if (find_namespace(*this, nsid) == nullptr) {
            return static_cast<QRX_U8>(nsid);
        }
    }
    return std::nullopt;
}

std::size_t Controller::free_nsids() const
{
    return adapter.max_ns - std::min<std::size_t>(namespaces.size(), adapter.max_ns);
}

std::size_t Controller::namespaces_on(QRX_U8 parent_kind, QRX_U16 parent) const
{
    return static_cast<std::size_t>(std::count_if(namespaces.begin(), namespaces.end(), [&](const Namespace& ns) {
        return ns.parent_kind == parent_kind && ns.parent == parent;
    }));
}

Namespace& Controller::make_namespace(QRX_U8 parent_kind, QRX_U16 parent, QRX_U64 sectors, QRX_U32 sector_size)
{
    Namespace ns;
    ns.nsid = free_nsid().value();
    ns.parent_kind = parent_kind;
    ns.parent = parent;
    ns.waiting = true;
    ns.active = false;
    ns.sectors = sectors;
    ns.sector_size = sector_size;
    ns.owner = static_cast<QRX_U8>(controller_id);
    ns.derive_identifiers(serial, ++namespaces_made);
    tell(Event::kNs, ns.nsid,
         std::string("created on ") + (parent_kind == kNsParentVd ? "VD " : "PD ") + std::to_string(parent) + " with " +
             std::to_string(sectors) + " sectors",
         "_CREATED");
    const auto place = std::find_if(namespaces.begin(), namespaces.end(),
                                    [&](const Namespace& other) { return other.nsid > ns.nsid; });
    return *namespaces.insert(place, std::move(ns));
}

void Controller::drop_namespaces(QRX_U8 parent_kind, QRX_U16 parent)
{
    const auto on_it = [&](const Namespace& ns) { return ns.parent_kind == parent_kind && ns.parent == parent; };
    for (const Namespace& ns : namespaces) {
        if (on_it(ns)) {
            tell(Event::kNs, ns.nsid, "deleted", "_DELETE");
        }
    }
    std::erase_if(namespaces, on_it);
}

Verdict Controller::initialize_namespaces(QRX_U16 pd, QRX_U32 count)
{
    if (adapter.raid()) {
        return Verdict::kNotSupported;
    }
    Drive* const drive = reachable_drive(pd);
    if (drive == nullptr) {
        return Verdict::kInvalidPd;
    }
    if (drive->failed) {
        return Verdict::kFailed;
    }
    if (count == 0 || count > adapter.max_ns_per_vd || count > drive->sectors) {
        return Verdict::kInvalidNamespaceCount;
    }
    for (const Namespace& ns : namespaces) {
        if (ns.parent_kind == kNsParentPd && ns.parent == pd && !ns.attached_to(controller_id).empty()) {
            return Verdict::kNamespaceAttached;
        }
    }
    if (count > free_nsids() + namespaces_on(kNsParentPd, pd)) {
        return Verdict::kNoNamespaceSlot;
    }
    drop_namespaces(kNsParentPd, pd);
    drive->importable = false;  // what another controller left on it is gone
    drive->foreign_namespaces.clear();
    for (QRX_U32 i = 0; i < count; ++i) {
        make_namespace(kNsParentPd, pd, drive->sectors / count, block_size(drive->sector_size));
    }
    return Verdict::kGood;
}

Verdict Controller::create_namespace(QRX_U8 parent_plus_one, QRX_U8 owner, QRX_U64 sectors)
{
    const bool raid = adapter.raid();
    const QRX_U8 kind = raid ? kNsParentVd : kNsParentPd;
    const VirtualDisk* const vd = raid && parent_plus_one != 0 ? find_virtual_disk(parent_plus_one - 1U) : nullptr;
    const Drive* const drive = !raid && parent_plus_one != 0 ? reachable_drive(parent_plus_one - 1U) : nullptr;
    if (vd == nullptr && drive == nullptr) {
        return raid ? Verdict::kInvalidVd : Verdict::kInvalidPd;
    }
    if (vd != nullptr && (!vd->online() || vd->foreign())) {
        return Verdict::kNotFunctional;
    }
    if (drive != nullptr && drive->failed) {
        return Verdict::kFailed;
    }
    if (owner >= kHostFunctions) {
        return Verdict::kInvalidParameter;
    }
    const auto parent = static_cast<QRX_U16>(parent_plus_one - 1);
    // In bytes, since a namespace may have been formatted to other sectors than its parent's.
    const QRX_U32 sector_size = block_size(vd != nullptr ? vd->sector_size : drive->sector_size);
    QRX_U64 left = (vd != nullptr ? vd->sectors : drive->sectors) * sector_size;
    for (const Namespace& ns : namespaces) {
        const bool beside = ns.parent_kind == kind && ns.parent == parent;
        left -= beside ? std::min(left, ns.sectors * ns.sector_size) : 0;
    }
    if (sectors == 0 || sectors > left / sector_size) {
        return Verdict::kNamespaceSize;
    }
    if (namespaces_on(kind, parent) >= adapter.max_ns_per_vd) {
        return Verdict::kInvalidNamespaceCount;
    }
    if (!free_nsid()) {
        return Verdict::kNoNamespaceSlot;
    }
    make_namespace(kind, parent, sectors, sector_size).owner = owner;
    return Verdict::kGood;
}

Completion Controller::format(const nvme_admin_cmd& command)
{
    const Completion completion = reformat(command);
    if (completion.status == status::kSuccess) {
        for (const Namespace& ns : namespaces) {
            if (command.nsid == ns.nsid || command.nsid == kBroadcast) {
                tell(Event::kNs, ns.nsid, "formatted with sectors of " + std::to_string(ns.sector_size) + " bytes");
            }
        }
    }
    return completion;
}

Completion Controller::virtualize(const nvme_admin_cmd& command)
{
    const Completion completion = host_functions.manage(command);
    if (completion.status == status::kSuccess) {
        const auto id = static_cast<QRX_U16>(command.cdw10 >> 16);
        const HostFunction function = host_functions.function(id);
        const std::string who = "has host function " + std::to_string(id);
        const auto both = [](const std::array<QRX_U16, HostFunction::kResources>& resources) {
            return std::to_string(resources[HostFunction::kQueues]) + " queues and " +
                   std::to_string(resources[HostFunction::kInterrupts]) + " interrupts";
        };
        tell(Event::kAdapter, 0,
             id < HostFunctions::kPrimary
                 ? who + " get " + both(function.wanted) + " at the next reset"
                 : who + (function.online ? " online with " : " offline with ") + both(function.resources));
    }
    return completion;
}

Verdict Controller::set_sharing(QRX_U16 nsid, QRX_U32 word)
{
    if ((adapter.features & kFeatureNmic) == 0) {
        return Verdict::kNotSupported;
    }
    Namespace* const ns = find_namespace(*this, nsid);
    const auto mode = static_cast<QRX_U8>(word);
    const auto owner = static_cast<QRX_U8>(word >> 8);
    if (ns == nullptr || !ns->valid || mode > 1 || owner >= kHostFunctions) {
        return Verdict::kInvalidParameter;
    }
    if (mode == 1) {
        ns->shared = true;
        tell(Event::kNs, ns->nsid, "is shared");
        return Verdict::kGood;
    }
    for (const QRX_U16 function : ns->attached_to(controller_id)) {
        if (function != owner) {
            return Verdict::kNamespaceAttached;
        }
    }
    ns->shared = false;
    ns->owner = owner;
    tell(Event::kNs, ns->nsid, "is private to host function " + std::to_string(owner));
    return Verdict::kGood;
}

Verdict Controller::import_table(QRX_U32 pd, QRX_U16 table)
{
    if (adapter.raid() || (adapter.features & kFeatureImport) == 0) {
        return Verdict::kNotSupported;
    }
    Drive* const drive = reachable_drive(pd);
    if (drive == nullptr) {
        return Verdict::kInvalidPd;
    }
    if (drive->failed) {
        return Verdict::kFailed;
    }
    const auto wanted = [table](const ForeignNamespace& ns) { return table == kAllTables || ns.table == table; };
    const auto& foreign = drive->foreign_namespaces;
    const auto count = static_cast<std::size_t>(std::count_if(foreign.begin(), foreign.end(), wanted));
    if (count == 0) {
        return namespaces_on(kNsParentPd, drive->id) != 0 ? Verdict::kAlreadyInTable : Verdict::kNoTable;
    }
    if (!drive->importable) {
        return Verdict::kForeign;
    }
    if (count + namespaces_on(kNsParentPd, drive->id) > adapter.max_ns_per_vd) {
        return Verdict::kInvalidNamespaceCount;
    }
    if (count > free_nsids()) {
        return Verdict::kNoNamespaceSlot;
    }
    tell(Event::kPd, drive->id,
         table == kAllTables ? "namespace tables imported" : "namespace table " + std::to_string(table) + " imported");
    for (const ForeignNamespace& ns : foreign) {
        if (wanted(ns)) {
            Namespace& made = make_namespace(kNsParentPd, drive->id, ns.sectors, block_size(drive->sector_size));
            made.nguid = ns.nguid;
            made.eui64 = ns.eui64;
        }
    }
    std::erase_if(drive->foreign_namespaces, wanted);
    drive->importable = !drive->foreign_namespaces.empty();
    return Verdict::kGood;
}

Completion Controller::attach(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    constexpr QRX_U8 kAttach = 0;
    constexpr QRX_U8 kDetach = 1;
    const auto operation = static_cast<QRX_U8>(command.cdw10 & 0xF);
    const auto list = wire::read<_controller_list_format>(data);
    if (operation > kDetach || !list) {
        return complete(status::kInvalidField);
    }
    if (is_virtual()) {
        return complete(status::kOperationDenied);
    }
    Namespace* const ns = find_namespace(*this, command.nsid);
    if (ns == nullptr || !ns->valid) {
        return complete(status::kInvalidNamespace);
    }
    const std::vector<QRX_U16> before = ns->attached_to(controller_id);
    const auto attached = [&](QRX_U16 id) { return std::find(before.begin(), before.end(), id) != before.end(); };
    if (list->num_of_id == 0 || list->num_of_id > kControllerListMax) {
        return complete(status::kControllerListInvalid);
    }
    const std::vector<QRX_U16> ids(std::begin(list->id), std::begin(list->id) + list->num_of_id);
    if (std::adjacent_find(ids.begin(), ids.end(), std::greater_equal<>()) != ids.end()) {
        return complete(status::kControllerListInvalid);  // ids stand in order, each of them once
    }
    if (ids.back() >= kHostFunctions) {
        return complete(status::kInvalidControllerId);
    }
    // All of the list or nothing.
    if (operation == kDetach) {
        if (!std::all_of(ids.begin(), ids.end(), attached)) {
            return complete(status::kNamespaceNotAttached);
        }
    } else {
        if (std::any_of(ids.begin(), ids.end(), attached)) {
            return complete(status::kNamespaceAttached);
        }
        if (!ns->shared && std::any_of(ids.begin(), ids.end(), [&](QRX_U16 id) { return id != ns->owner; })) {
            return complete(status::kNamespacePrivate);
        }
    }
    std::string text;
    for (const QRX_U16 id : ids) {
        if (id == controller_id) {
            ns->active = operation == kAttach;
        } else if (operation == kAttach) {
            ns->elsewhere.insert(std::upper_bound(ns->elsewhere.begin(), ns->elsewhere.end(), id), id);
        } else {
            std::erase(ns->elsewhere, id);
        }
        text += (text.empty() ? "" : ", ") + std::to_string(id);
    }
    ns->waiting = ns->waiting && operation != kAttach;
    tell(Event::kNs, ns->nsid,
         (operation == kAttach ? "attached to host function " : "detached from host function ") + text,
         operation == kAttach ? "_ATTACH" : "_DETACH");
    return complete(status::kSuccess);
}

}  // namespace qrx::sim
