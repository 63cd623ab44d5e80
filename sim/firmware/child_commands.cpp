// The admin commands of the multi-function device, and the features and the log page that belong to them.
#include <algorithm>

#include "sim/firmware/controller.h"
#include "sim/firmware/opcodes.h"
#include "sim/firmware/reply.h"

namespace qrx::sim {

namespace {

// The parts of CDW10.
QRX_U8 operation_of(const nvme_admin_cmd& command)
{
    return static_cast<QRX_U8>(command.cdw10);
}
QRX_U16 child_of(const nvme_admin_cmd& command)
{
    return static_cast<QRX_U16>(command.cdw10 >> 8);
}
QRX_U8 selector_of(const nvme_admin_cmd& command)
{
    return static_cast<QRX_U8>(command.cdw10 >> 24);
}

// Fills the host's buffer with `bytes` and zeros behind them.
Completion answer(std::span<QRX_U8> data, std::span<const QRX_U8> bytes)
{
    const std::size_t length = std::min(data.size(), bytes.size());
    std::fill(std::copy_n(bytes.begin(), length, data.begin()), data.end(), QRX_U8{0});
    return complete(status::kSuccess);
}

std::string name_of(QRX_U16 child)
{
    return child == kMfndAllChildren ? "all child controllers" : "child controller " + std::to_string(child);
}

}  // namespace

Completion Controller::child_command(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    switch (operation_of(command)) {
    case kMfndIdentifyDevice:
        return command.opcode == kMfndQuery ? answer_with(data, children.capabilities())
                                            : complete(status::kInvalidField);
    case kMfndIdentifyChild:
        return command.opcode == kMfndQuery ? identify_child(command, data) : complete(status::kInvalidField);
    case kMfndChildLogPage:
        return command.opcode == kMfndQuery ? read_child_log(command, data) : complete(status::kInvalidField);
    case kMfndGetPermissions:
        return command.opcode == kMfndQuery ? answer_with(data, children.permission_list())
                                            : complete(status::kInvalidField);
    case kMfndManageChild:
    case kMfndSetPermissions:
        return command.opcode == kMfndManage ? manage_children(command, data) : complete(status::kInvalidField);
    case kMfndControlChild:
        return command.opcode == kMfndControl ? control_child(command) : complete(status::kInvalidField);
    default:
        return complete(status::kInvalidField);
    }
}

Completion Controller::identify_child(const nvme_admin_cmd& command, std::span<QRX_U8> data) const
{
    const QRX_U16 id = child_of(command);
    if (id != 0 && id != kMfndAllChildren && children.find(id) == nullptr) {
        return complete(status::kInvalidControllerId);
    }
    return answer(data, children.list(id));
}

Completion Controller::manage_children(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    if (data.size() != wire::kPageSize) {
        return complete(status::kInvalidField);
    }
    if (!children.admin) {
        return complete(status::kOperationDenied);
    }
    if (operation_of(command) == kMfndSetPermissions) {
        const QRX_U32 verdict = children.set_permissions(*wire::read<_MSFT_CHILD_CTRL_PERMISSION_LIST>(data));
        if (verdict == status::kSuccess) {
            tell(Event::kAdapter, 0, "has new permissions of its child controllers");
        }
        return complete(verdict);
    }
    const auto entry = *wire::read<_MSFT_CHILD_CTRL_ENTRY>(data);
    const QRX_U16 id = child_of(command);
    const std::string parent = identity().serial;
    QRX_U32 verdict = status::kInvalidField;
    std::string what;
    switch (selector_of(command)) {
    case kMfndCreate:
        verdict = children.create(id, entry, parent);
        what = "a child controller created";
        break;
    case kMfndUpdate:
        verdict = children.update(id, entry);
        what = name_of(id) + " changed";
        break;
    case kMfndDelete:
        verdict = children.remove(id);
        what = name_of(id) + " deleted";
        break;
    case kMfndReset:
        verdict = children.reset(static_cast<QRX_U8>(command.cdw11), parent);
        what = "its child controllers made anew, " + std::to_string(command.cdw11 & 0xFF) + " of them";
        break;
    default:
        break;
    }
    if (verdict == status::kSuccess) {
        tell(Event::kAdapter, 0, "has " + what);
    }
    return complete(verdict);
}

Completion Controller::control_child(const nvme_admin_cmd& command)
{
    if (!children.admin) {
        return complete(status::kOperationDenied);
    }
    const QRX_U8 selector = selector_of(command);
    const QRX_U32 verdict = children.control(child_of(command), selector);
    if (verdict == status::kSuccess) {
        constexpr std::array<const char*, 4> kDone{" erased", " paused", " resumed", " shut down"};
        tell(Event::kAdapter, 0, "has " + name_of(child_of(command)) + kDone.at(selector));
    }
    return complete(verdict);
}

Completion Controller::read_child_log(const nvme_admin_cmd& command, std::span<QRX_U8> data) const
{
    const ChildController* const child = children.find(child_of(command));
    if (child == nullptr) {
        return complete(status::kInvalidControllerId);
    }
    if (!children.permits(admin::kGetLogPage)) {
        return complete(status::kOperationDenied);
    }
    if (child->state == ChildController::kShutDown) {
        return complete(status::kInvalidSecondaryState);
    }
    if (static_cast<QRX_U16>(command.cdw14) != ChildControllers::kHealthPage) {
        return complete(status::kInvalidLogPage);
    }
    Health own;
    own.temperature = health.temperature;
    own.critical_warning = child->critical_warning;
    own.power_cycles = child->starts;
    own.sectors_read = own.sectors_written = own.host_reads = own.host_writes = 0;
    own.busy_minutes = own.power_on_milliseconds = own.unsafe_shutdowns = 0;
    own.used = health.used;
    std::vector<QRX_U8> page(sizeof(_qrx_smart_log));
    put(page, 0, own.log(0));
    const QRX_U64 length = (QRX_U64{command.cdw14 >> 16} + 1) * sizeof(QRX_U32);
    const QRX_U64 offset = QRX_U64{command.cdw13} << 32 | command.cdw12;
    if (offset > page.size()) {
        return complete(status::kInvalidField);
    }
    return answer(data.first(static_cast<std::size_t>(std::min<QRX_U64>(data.size(), length))),
                  std::span(page).subspan(static_cast<std::size_t>(offset)));
}

std::optional<Failure> Controller::befall_child(QRX_U16 id, std::string_view what)
{
    std::optional<Failure> failure = children.befall(id, what);
    if (!failure) {
        tell(Event::kAdapter, 0, "has an event of " + name_of(id) + ": " + std::string(what));
    }
    return failure;
}

std::optional<Completion> Controller::vendor_feature(const nvme_admin_cmd& command, std::span<QRX_U8> data) const
{
    switch (static_cast<QRX_U8>(command.cdw10)) {
    case kMfndOperationFeature:
        return complete(status::kSuccess, children.operation());
    case kMfndPropertiesFeature:
        return answer_with(data, children.properties());
    default:
        return std::nullopt;
    }
}

std::optional<Completion> Controller::set_vendor_feature(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    switch (static_cast<QRX_U8>(command.cdw10)) {
    case kMfndOperationFeature: {
        const QRX_U32 verdict = children.set_operation(command.cdw11);
        if (verdict == status::kSuccess) {
            tell(Event::kAdapter, 0,
                 std::string("is in ") + (children.multiple ? "multiple" : "single") +
                     " mode, its host has the privilege " + (children.admin ? "admin" : "user"));
        }
        return complete(verdict);
    }
    case kMfndPropertiesFeature: {
        const auto wanted = wire::read<_MSFT_CHILD_CTRL_PROPERTIES>(data);
        if (!wanted || command.cdw11 != 1) {
            return complete(status::kInvalidField);
        }
        return complete(children.admin ? children.set_properties(*wanted) : status::kOperationDenied);
    }
    default:
        return std::nullopt;
    }
}

}  // namespace qrx::sim
