// The dispatch of standard commands; Identify, logs, features and I/O have files of their own.
#include "sim/firmware/nvme_function.h"

#include <algorithm>

#include "sim/firmware/opcodes.h"

namespace qrx::sim {

namespace {

// Commands that reach the model through the driver carry no identifier of their own, so entries of the error log
// are told apart by their number alone.
constexpr QRX_U16 kUnknownCommandId = 0;
constexpr QRX_U8 kFirstVendorOpcode = 0xC0;

}  // namespace

Completion NvmeFunction::execute_admin(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    const Completion completion = admin(command, data);
    if (completion.status != status::kSuccess) {
        log_error(0, command, completion, 0);
    }
    return completion;
}

Completion NvmeFunction::execute_io(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    const Completion completion = io(command, data);
    io_ended(command, completion);
    if (completion.status != status::kSuccess) {
        log_error(1, command, completion, QRX_U64{command.cdw11} << 32 | command.cdw10);
    }
    return completion;
}

Completion NvmeFunction::admin(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    switch (command.opcode) {
    case admin::kIdentify:
        return identify(command, data);
    case admin::kGetLogPage:
        return get_log_page(command, data);
    case admin::kGetFeatures:
        return get_features(command, data);
    case admin::kSetFeatures:
        return set_features(command, data);
    case admin::kNamespaceAttachment:
        return attaches_namespaces() ? attach(command, data) : complete(status::kInvalidOpcode);
    case admin::kNamespaceManagement:
        return manages_namespaces() ? manage(command, data) : complete(status::kInvalidOpcode);
    case admin::kFirmwareDownload:
        return download_firmware(command, data);
    case admin::kFirmwareCommit:
        return commit_firmware(command);
    case admin::kVirtualizationManagement:
        return virtualizes() ? virtualize(command) : complete(status::kInvalidOpcode);
    case admin::kManagementSend:
        return has_management_endpoint() ? management_send(command, data) : complete(status::kInvalidOpcode);
    case admin::kManagementReceive:
        return has_management_endpoint() ? management_receive(command, data) : complete(status::kInvalidOpcode);
    case admin::kFormat:
        return formats() ? format(command) : complete(status::kInvalidOpcode);
    case admin::kAbort:
        return complete(status::kSuccess, 1);  // nothing is in flight: not aborted
    case admin::kAsynchronousEvent:
        return complete(status::kAerLimitExceeded);  // the driver holds the one that may be outstanding
    case admin::kDeleteSubmissionQueue:
    case admin::kCreateSubmissionQueue:
    case admin::kDeleteCompletionQueue:
    case admin::kCreateCompletionQueue:
        return complete(status::kInvalidQueueId);  // all queues are the driver's
    default:
        break;
    }
    return command.opcode >= kFirstVendorOpcode ? vendor_admin(command, data) : complete(status::kInvalidOpcode);
}

Completion NvmeFunction::vendor_admin(const nvme_admin_cmd& /*command*/, std::span<QRX_U8> /*data*/)
{
    return complete(status::kInvalidOpcode);
}

Completion NvmeFunction::attach(const nvme_admin_cmd& /*command*/, std::span<const QRX_U8> /*data*/)
{
    return complete(status::kInvalidOpcode);
}

Completion NvmeFunction::manage(const nvme_admin_cmd& /*command*/, std::span<const QRX_U8> /*data*/)
{
    return complete(status::kInvalidOpcode);
}

Completion NvmeFunction::format(const nvme_admin_cmd& /*command*/)
{
    return complete(status::kInvalidOpcode);
}

Completion NvmeFunction::virtualize(const nvme_admin_cmd& /*command*/)
{
    return complete(status::kInvalidOpcode);
}

Completion NvmeFunction::management_send(const nvme_admin_cmd& /*command*/, std::span<const QRX_U8> /*data*/)
{
    return complete(status::kInvalidOpcode);
}

Completion NvmeFunction::management_receive(const nvme_admin_cmd& /*command*/, std::span<QRX_U8> /*data*/)
{
    return complete(status::kInvalidOpcode);
}

NvmeFunction::Capacity NvmeFunction::capacity() const
{
    Capacity capacity;
    for (const Namespace& ns : namespaces) {
        capacity.total += ns.sectors * ns.sector_size;
    }
    return capacity;
}

ControllerNode NvmeFunction::node() const
{
    const Identity own = identity();
    ControllerNode node;
    node.number = number;
    node.address = address.text();
    node.vendor_id = vendor_id;
    node.device_id = device_id;
    node.subsystem_vendor_id = own.subsystem_vendor_id;
    node.subsystem_device_id = own.subsystem_device_id;
    node.controller_id = controller_id;
    node.slot_id = slot;
    node.model = own.model;
    node.serial = own.serial;
    node.firmware = slots.running();
    node.subnqn = own.subnqn;
    for (const Namespace& ns : namespaces) {
        if (ns.valid && ns.active) {
            node.namespaces.push_back(ns.node());
        }
    }
    return node;
}

void NvmeFunction::advance(Clock::Duration passed)
{
    health.advance(passed);
    // Step by step, so that what starts when another thing ends has the rest of the time.
    while (passed > Clock::Duration::zero()) {
        const Clock::Duration step = std::min(passed, next_change());
        clock.advance(step);
        advance_back_end(step);
        passed -= step;
    }
}

void NvmeFunction::log_error(QRX_U16 queue, const nvme_admin_cmd& command, const Completion& completion, QRX_U64 lba)
{
    errors.add({0, queue, kUnknownCommandId, completion.status, lba, command.nsid});
}

}  // namespace qrx::sim
