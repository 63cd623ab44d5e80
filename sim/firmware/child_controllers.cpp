#include "sim/firmware/child_controllers.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "sim/firmware/opcodes.h"
#include "sim/firmware/text.h"

namespace qrx::sim {

namespace {

constexpr QRX_U8 kSanitize = 0x84;

// The first word and the numbers behind it of a wire record.
ChildQos qos_of(const _MSFT_CHILD_CTRL_QOS& record)
{
    ChildQos qos;
    qos.policy = record.qos_policy;
    std::memcpy(qos.numbers.data(), &record.reserved_read_bandwidth_in_MB, sizeof(qos.numbers));
    return qos;
}

template <class Of>
QRX_U64 sum(const std::vector<ChildController>& children, Of of)
{
    return std::accumulate(children.begin(), children.end(), QRX_U64{0},
                           [of](QRX_U64 total, const ChildController& child) { return total + of(child); });
}

auto field(QRX_U16 ChildController::*of)
{
    return [of](const ChildController& child) { return QRX_U64{child.*of}; };
}

QRX_U64 storage_of(const ChildController& child)
{
    return child.storage;
}

auto reserved(unsigned number)
{
    return [number](const ChildController& child) {
        return child.qos ? QRX_U64{child.qos->reserved(number)} : QRX_U64{0};
    };
}

// What is left of `total`.
template <class Number>
Number left(Number total, QRX_U64 used)
{
    return static_cast<Number>(used < total ? total - used : 0);
}

void start(ChildController& child)
{
    child.state = ChildController::kRunning;
    child.critical_warning = 0;
    ++child.starts;
}

}  // namespace

_MSFT_CHILD_CTRL_ENTRY ChildController::record() const
{
    _MSFT_CHILD_CTRL_ENTRY entry{};
    entry.ccid = id;
    pad_with_zeros(entry.sn, serial);
    entry.flags = static_cast<QRX_U16>(kMfndCountsValid | (qos ? kMfndQosValid : 0));
    entry.IO_queue_pair_cnt = queue_pairs;
    entry.MSI_X_msg_cnt = interrupts;
    entry.ns_cnt = namespaces;
    entry.storage_provision_unit_cnt = storage;
    if (qos) {
        entry.QOS.qos_policy = qos->policy;
        std::memcpy(&entry.QOS.reserved_read_bandwidth_in_MB, qos->numbers.data(), sizeof(qos->numbers));
    }
    return entry;
}

bool ChildController::apply(const _MSFT_CHILD_CTRL_ENTRY& entry)
{
    const bool all = (entry.flags & kMfndCountsValid) != 0;
    const auto take = [all](auto& count, auto value) { count = all || value != 0 ? value : count; };
    take(queue_pairs, entry.IO_queue_pair_cnt);
    take(interrupts, entry.MSI_X_msg_cnt);
    take(namespaces, entry.ns_cnt);
    take(storage, entry.storage_provision_unit_cnt);
    const ChildQos wanted = qos_of(entry.QOS);
    if ((entry.flags & kMfndQosValid) != 0 || wanted != ChildQos{}) {
        qos = wanted;
    }
    const auto* const end = std::find(std::begin(entry.sn), std::end(entry.sn), QRX_U8{0});
    const std::string name(std::begin(entry.sn), end);
    if (!name.empty()) {
        serial = name;
    }
    return std::all_of(name.begin(), name.end(), [](char letter) { return letter >= ' ' && letter <= '~'; });
}

std::vector<ChildPermission> ChildControllers::factory_permissions()
{
    return {{admin::kGetLogPage, true, true},
            {admin::kIdentify, true, false},
            {admin::kSetFeatures, true, true},
            {admin::kGetFeatures, true, false},
            {admin::kNamespaceManagement, false, true},
            {admin::kFirmwareCommit, false, false},
            {admin::kFirmwareDownload, false, false},
            {admin::kFormat, true, true},
            {kSanitize, false, true}};
}

const ChildController* ChildControllers::find(QRX_U16 id) const
{
    const auto found =
        std::find_if(children.begin(), children.end(), [id](const ChildController& child) { return child.id == id; });
    return found == children.end() ? nullptr : &*found;
}

bool ChildControllers::permits(QRX_U8 opcode) const
{
    const auto found = std::find_if(permissions.begin(), permissions.end(),
                                    [opcode](const ChildPermission& one) { return one.opcode == opcode; });
    return found != permissions.end() && found->allowed;
}

std::vector<ChildController*> ChildControllers::named(std::vector<ChildController>& of, QRX_U16 id)
{
    std::vector<ChildController*> result;
    for (ChildController& child : of) {
        if (id == kMfndAllChildren || child.id == id) {
            result.push_back(&child);
        }
    }
    return result;
}

QRX_U32 ChildControllers::check(const std::vector<ChildController>& of) const
{
    const auto too_many = [&of](auto used, QRX_U64 most) { return sum(of, used) > most; };
    const bool bad_policy = std::any_of(
        of.begin(), of.end(), [](const auto& child) { return child.qos && child.qos->policy > ChildQos::kMix; });
    if (bad_policy) {
        return status::kInvalidField;
    }
    if (std::any_of(of.begin(), of.end(),
                    [this](const auto& child) { return child.namespaces > limits.namespaces_of_one; }) ||
        too_many(field(&ChildController::namespaces), limits.namespaces)) {
        return status::kNamespaceIdUnavailable;
    }
    if (too_many(storage_of, limits.storage)) {
        return status::kInsufficientCapacity;
    }
    const bool without_queue = std::any_of(
        of.begin(), of.end(), [](const auto& child) { return child.queue_pairs == 0 || child.interrupts == 0; });
    const bool bandwidth = too_many(reserved(ChildQos::kReservedBandwidth), limits.read_bandwidth) ||
                           too_many(reserved(ChildQos::kReservedBandwidth + 1), limits.write_bandwidth) ||
                           too_many(reserved(ChildQos::kReservedIops), limits.read_iops) ||
                           too_many(reserved(ChildQos::kReservedIops + 1), limits.write_iops);
    const bool resources = of.size() > limits.functions || without_queue || bandwidth ||
                           too_many(field(&ChildController::queue_pairs), limits.queue_pairs) ||
                           too_many(field(&ChildController::interrupts), limits.interrupts);
    return resources ? status::kInvalidResourceCount : status::kSuccess;
}

QRX_U32 ChildControllers::take(std::vector<ChildController> next)
{
    const QRX_U32 verdict = check(next);
    if (verdict == status::kSuccess) {
        children = std::move(next);
    }
    return verdict;
}

QRX_U32 ChildControllers::create(QRX_U16 id, const _MSFT_CHILD_CTRL_ENTRY& entry, std::string_view parent)
{
    if (!multiple) {
        return status::kSequenceError;
    }
    ChildController child;
    child.id = entry.ccid != 0 ? entry.ccid : id;
    for (QRX_U16 free = 1; child.id == 0; ++free) {
        child.id = find(free) == nullptr ? free : QRX_U16{0};
    }
    if (child.id > kMaxId) {
        return status::kInvalidControllerId;
    }
    if (find(child.id) != nullptr) {
        return status::kInvalidResourceId;
    }
    child.serial = std::string(parent) + "-" + std::to_string(child.id);
    if (!child.apply(entry)) {
        return status::kInvalidField;
    }
    std::vector<ChildController> next = children;
    next.insert(std::find_if(next.begin(), next.end(), [&](const auto& other) { return other.id > child.id; }), child);
    return take(std::move(next));
}

QRX_U32 ChildControllers::update(QRX_U16 id, const _MSFT_CHILD_CTRL_ENTRY& entry)
{
    std::vector<ChildController> next = children;
    const std::vector<ChildController*> wanted = named(next, id);
    if (wanted.empty()) {
        return status::kInvalidControllerId;
    }
    if (entry.ccid != 0 && entry.ccid != id) {
        return status::kInvalidResourceId;  // a child keeps its id
    }
    if (!std::all_of(wanted.begin(), wanted.end(), [&](ChildController* child) { return child->apply(entry); })) {
        return status::kInvalidField;
    }
    return take(std::move(next));
}

QRX_U32 ChildControllers::remove(QRX_U16 id)
{
    const auto removed = std::erase_if(
        children, [id](const ChildController& child) { return id == kMfndAllChildren || child.id == id; });
    return removed == 0 ? status::kInvalidControllerId : status::kSuccess;
}

QRX_U32 ChildControllers::reset(QRX_U8 count, std::string_view parent)
{
    ChildControllers next = *this;
    next.children.clear();
    next.events.clear();
    for (unsigned i = 0; i < count; ++i) {
        if (const QRX_U32 verdict = next.create(0, {}, parent)) {
            return verdict;
        }
    }
    *this = std::move(next);
    return status::kSuccess;
}

QRX_U32 ChildControllers::control(QRX_U16 id, QRX_U8 selector)
{
    if (selector > kMfndShutDown) {
        return status::kInvalidField;
    }
    if (selector == kMfndSecureErase && !permits(admin::kFormat)) {
        return status::kOperationDenied;
    }
    std::vector<ChildController> next = children;
    const std::vector<ChildController*> wanted = named(next, id);
    if (wanted.empty()) {
        return status::kInvalidControllerId;
    }
    for (ChildController* const child : wanted) {
        const bool runs = child->state == ChildController::kRunning;
        const bool paused = child->state == ChildController::kPaused;
        const bool down = child->state == ChildController::kShutDown;
        switch (selector) {
        case kMfndSecureErase:
            if (!runs && !paused) {
                return status::kInvalidSecondaryState;
            }
            ++child->erasures;
            break;
        case kMfndPause:
            if (!runs) {
                return status::kInvalidSecondaryState;
            }
            child->state = ChildController::kPaused;
            break;
        case kMfndResume:
            if (!paused && !down) {
                return status::kInvalidSecondaryState;
            }
            if (down) {
                start(*child);
            }
            child->state = ChildController::kRunning;
            break;
        default:
            if (down) {
                return status::kInvalidSecondaryState;
            }
            child->state = ChildController::kShutDown;
            break;
        }
    }
    children = std::move(next);
    return status::kSuccess;
}

void ChildControllers::restart()
{
    for (ChildController& child : children) {
        start(child);
    }
    events.clear();
}

QRX_U32 ChildControllers::set_operation(QRX_U32 word)
{
    constexpr QRX_U32 kFlag = 1U << 4;
    const bool flag = (word & kFlag) != 0;
    switch (word & ~kFlag) {
    case 0:
        if (!flag && !children.empty()) {
            return status::kSequenceError;  // they would be left over
        }
        multiple = flag;
        return status::kSuccess;
    case 1:
        admin = flag;
        return status::kSuccess;
    default:
        return status::kInvalidField;
    }
}

QRX_U32 ChildControllers::set_properties(const _MSFT_CHILD_CTRL_PROPERTIES& wanted)
{
    constexpr QRX_U8 kProtectionTypes = 3;
    constexpr QRX_U16 kProtectionBytes = 8;
    const bool sector = wanted.lbads == 9 || wanted.lbads == 12;
    const bool protects =
        wanted.ms == kProtectionBytes ? wanted.dps <= kProtectionTypes : wanted.ms == 0 && wanted.dps == 0;
    if (!sector || !protects || wanted.nmic > 1) {
        return status::kInvalidField;
    }
    metadata = wanted.ms;
    sector_shift = wanted.lbads;
    protection = wanted.dps;
    sharing = wanted.nmic;
    return status::kSuccess;
}

QRX_U32 ChildControllers::set_permissions(const _MSFT_CHILD_CTRL_PERMISSION_LIST& list)
{
    std::vector<ChildPermission> next = permissions;
    for (std::size_t i = 0; i < list.numOfEntries; ++i) {
        const QRX_U8 opcode = list.entries[i].adminCmdOpcode;
        const bool allowed = (list.entries[i].flags & kMfndAllowed) != 0;
        const auto at =
            std::find_if(next.begin(), next.end(), [opcode](const auto& one) { return one.opcode >= opcode; });
        if (at == next.end() || at->opcode != opcode) {
            next.insert(at, {opcode, allowed, true});
        } else if (at->changeable) {
            at->allowed = allowed;  // whether it stays changeable is the firmware's word
        } else if (at->allowed != allowed) {
            return status::kFeatureNotChangeable;
        }
    }
    if (next.size() > kPermissions) {
        return status::kInvalidField;
    }
    permissions = std::move(next);
    return status::kSuccess;
}

void ChildControllers::add_event(QRX_U16 child, QRX_U32 flags)
{
    const bool page = (flags & kMfndEventHasLogPage) != 0;
    events.push_back({static_cast<QRX_U8>(child), page ? kHealthPage : QRX_U8{0}, flags});
    if (events.size() > kEvents) {
        events.erase(events.begin());
    }
}

std::optional<Failure> ChildControllers::befall(QRX_U16 id, std::string_view what)
{
    constexpr QRX_U8 kUnreliable = 4;
    const std::vector<ChildController*> found =
        id == kMfndAllChildren ? std::vector<ChildController*>() : named(children, id);
    if (found.empty()) {
        return Failure{"there is no child controller " + std::to_string(id)};
    }
    ChildController& child = *found.front();
    if (what == "fatal") {
        child.state = ChildController::kFailed;
        add_event(id, kMfndEventIsFatal);
    } else if (what == "health") {
        child.critical_warning = kUnreliable;
        add_event(id, kMfndEventHasLogPage);
    } else if (what == "other") {
        add_event(id, 0);
    } else {
        return Failure{"'" + std::string(what) + "' is none of fatal, health, other"};
    }
    return std::nullopt;
}

QRX_U32 ChildControllers::operation() const
{
    return (multiple ? QRX_U32{0} : kMfndSingleMode) | (admin ? QRX_U32{0} : kMfndUserPrivilege);
}

_MSFT_MFND_CAPABILITIES ChildControllers::capabilities() const
{
    _MSFT_MFND_CAPABILITIES record{};
    std::memcpy(record.sign, "MFND", sizeof(record.sign));
    record.major_ver = 1;
    record.sub_ver = 0;
    record.max_physical_fun_cnt = limits.functions;
    record.avail_physical_fun_cnt = left(limits.functions, children.size());
    record.max_queue_pair_cnt = limits.queue_pairs;
    record.avail_queue_pair_cnt = left(limits.queue_pairs, sum(children, field(&ChildController::queue_pairs)));
    record.max_MSI_X_msg_cnt = limits.interrupts;
    record.avail_MSI_X_msg_cnt = left(limits.interrupts, sum(children, field(&ChildController::interrupts)));
    record.max_ns_cnt = limits.namespaces;
    record.avail_ns_cnt = left(limits.namespaces, sum(children, field(&ChildController::namespaces)));
    record.total_NVM_storage_size = limits.storage;
    record.avail_NVM_storage_size = left(limits.storage, sum(children, storage_of));
    record.storage_provision_granularity = limits.granularity;
    record.total_read_bandwidth = limits.read_bandwidth;
    record.avail_read_bandwidth = left(limits.read_bandwidth, sum(children, reserved(ChildQos::kReservedBandwidth)));
    record.total_write_bandwidth = limits.write_bandwidth;
    record.avail_write_bandwidth =
        left(limits.write_bandwidth, sum(children, reserved(ChildQos::kReservedBandwidth + 1)));
    record.total_read_iops = limits.read_iops;
    record.avail_read_iops = left(limits.read_iops, sum(children, reserved(ChildQos::kReservedIops)));
    record.total_write_iops = limits.write_iops;
    record.avail_write_iops = left(limits.write_iops, sum(children, reserved(ChildQos::kReservedIops + 1)));
    record.features = 1;  // QoS
    record.max_support_child_controller_ns_cnt = limits.namespaces_of_one;
    return record;
}

_MSFT_CHILD_CTRL_PROPERTIES ChildControllers::properties() const
{
    _MSFT_CHILD_CTRL_PROPERTIES record{};
    record.ms = metadata;
    record.lbads = sector_shift;
    record.dps = protection;
    record.nmic = sharing;
    return record;
}

_MSFT_CHILD_CTRL_PERMISSION_LIST ChildControllers::permission_list() const
{
    _MSFT_CHILD_CTRL_PERMISSION_LIST list{};
    for (const ChildPermission& permission : permissions) {
        _MSFT_CHILD_CTRL_PERMISSION_ENTRY& entry = list.entries[list.numOfEntries++];
        entry.adminCmdOpcode = permission.opcode;
        entry.flags = (permission.allowed ? kMfndAllowed : 0U) | (permission.changeable ? kMfndChangeable : 0U);
    }
    return list;
}

std::vector<QRX_U8> ChildControllers::event_log() const
{
    std::vector<QRX_U8> log(sizeof(_MSFT_CHILD_CTRL_EVENT));
    log[offsetof(_MSFT_CHILD_CTRL_EVENT, numOfEntries)] = static_cast<QRX_U8>(events.size());
    std::size_t at = offsetof(_MSFT_CHILD_CTRL_EVENT, entries);
    std::for_each(events.rbegin(), events.rend(), [&](const ChildEvent& event) {
        _MSFT_CHILD_CTRL_EVENT_ENTRY entry{};
        entry.childCtrlID = event.child;
        entry.childLogPageIdentifier = event.log_page;
        entry.flags = event.flags;
        (void)wire::write(std::span(log), at, entry);
        at += sizeof(_MSFT_CHILD_CTRL_PROPERTIES);
    });
    return log;
}

std::vector<QRX_U8> ChildControllers::list(QRX_U16 id) const
{
    std::vector<QRX_U8> bytes(sizeof(_MSFT_CHILD_CTRL_LIST));
    _MSFT_CHILD_CTRL_LIST head{};
    for (const ChildController& child : children) {
        if (id == 0 || id == kMfndAllChildren || child.id == id) {
            const std::size_t at = bytes.size();
            bytes.resize(at + sizeof(_MSFT_CHILD_CTRL_ENTRY));
            (void)wire::write(std::span(bytes), at, child.record());
            ++head.mumber_of_child_controller;
        }
    }
    (void)wire::write(std::span(bytes), 0, head);
    return bytes;
}

}  // namespace qrx::sim
