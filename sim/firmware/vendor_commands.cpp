// The vendor admin commands of the controller.
#include "api/src/interface/wire/command.h"
#include "sim/firmware/controller.h"
#include "sim/firmware/opcodes.h"
#include "sim/firmware/reply.h"

namespace qrx::sim {

Completion Controller::vendor_admin(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    switch (command.opcode) {
    case kVendorRead:
        return vendor_read(command, data);
    case kPairSend:
        return pair_send(command, data);
    case kPairReceive:
        return pair_receive(command, data);
    default:
        return complete(status::kInvalidOpcode);
    }
}

Completion Controller::vendor_read(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    const auto argument = static_cast<QRX_U16>(command.cdw12 >> 16);
    switch (static_cast<QRX_U16>(command.cdw12)) {
    case vendor::kReadAdapterInfo:
        return reply_with(data, adapter.record(address));
    case vendor::kReadAdapterConfig:
        return adapter.raid() ? reply_with(data, config.record()) : reply(data, Verdict::kNotSupported);
    case vendor::kWriteAdapterConfig:
        return write_config(command.cdw14);
    case vendor::kSetTime:
        return set_time(command.cdw13, command.cdw14);
    case vendor::kReadHbaInfo: {
        const auto page = data.first(std::min(data.size(), wire::kPageSize));
        std::fill(page.begin(), page.end(), QRX_U8{0});
        put(page, 0, hba_info());  // this one comes without an envelope
        return complete(status::kSuccess);
    }
    case vendor::kReadPdInfo:
        return read_pd(command.cdw14, data);
    case vendor::kReadVdInfo:
        return read_vd(command.cdw14, data);
    case vendor::kReadBgaStatus:
        return read_activity(command.cdw14, data);
    case vendor::kReadNsList:
        return read_namespaces(data);
    case vendor::kReadNsListOfVd:
        return read_namespaces_of(static_cast<QRX_U8>(argument), data);
    case vendor::kReadNsSharing:
        return read_sharing(argument, data);
    default:
        return complete(status::kInvalidField);
    }
}

Completion Controller::read_pd(QRX_U32 id, std::span<QRX_U8> data) const
{
    const Drive* const drive = find_drive(id);
    return drive != nullptr ? reply_with(data, pd_record(*drive)) : reply(data, Verdict::kInvalidPd);
}

Completion Controller::read_vd(QRX_U32 id, std::span<QRX_U8> data) const
{
    if (!adapter.raid()) {
        return reply(data, Verdict::kNotSupported);
    }
    const VirtualDisk* const vd = find_virtual_disk(id);
    return vd != nullptr ? reply_with(data, vd_record(*vd)) : reply(data, Verdict::kInvalidVd);
}

Completion Controller::read_activity(QRX_U32 id, std::span<QRX_U8> data) const
{
    if (!adapter.raid()) {
        return reply(data, Verdict::kNotSupported);
    }
    const VirtualDisk* const vd = find_virtual_disk(id);
    return vd != nullptr ? reply_with(data, vd->activity_record()) : reply(data, Verdict::kInvalidVd);
}

Completion Controller::read_namespaces(std::span<QRX_U8> data) const
{
    const auto payload = open_reply(data, Verdict::kGood);
    std::size_t offset = 0;
    for (const Namespace& ns : namespaces) {
        put(payload, offset, ns_record(ns));
        offset += sizeof(NVME_NS_Info);
    }
    return complete(status::kSuccess);
}

void Controller::put_namespaces_of(QRX_U8 vd, std::span<QRX_U8> payload) const
{
    std::size_t offset = 0;
    for (const Namespace& ns : namespaces) {
        if (ns.parent_kind == kNsParentVd && (vd == kAllVirtualDisks || ns.parent == vd)) {
            put(payload, offset, ns_record(ns));
            offset += sizeof(NVME_NS_Info);
        }
    }
}

Completion Controller::read_namespaces_of(QRX_U8 vd, std::span<QRX_U8> data) const
{
    if (!adapter.raid()) {
        return reply(data, Verdict::kNotSupported);
    }
    if (vd != kAllVirtualDisks && find_virtual_disk(vd) == nullptr) {
        return reply(data, Verdict::kInvalidVd);
    }
    put_namespaces_of(vd, open_reply(data, Verdict::kGood));
    return complete(status::kSuccess);
}

Completion Controller::read_sharing(QRX_U16 nsid, std::span<QRX_U8> data) const
{
    const Namespace* const ns = find_namespace(*this, nsid);
    return ns != nullptr ? reply_with(data, ns->sharing()) : reply(data, Verdict::kInvalidParameter);
}

Completion Controller::write_config(QRX_U32 word)
{
    if (!adapter.raid()) {
        return complete(Verdict::kNotSupported);
    }
    return complete(config.set(static_cast<QRX_U8>(word), static_cast<QRX_U8>(word >> 8)));
}

Completion Controller::set_time(QRX_U32 high, QRX_U32 low)
{
    // Bits 47 to 32 stand below bits 31 to 16 in the first word; the last 16 bits have the second one.
    const QRX_U64 seconds = QRX_U64{high & 0xFFFF} << 32 | QRX_U64{high >> 16} << 16 | (low & 0xFFFF);
    set_clock(seconds * 1000);
    return complete(Verdict::kGood);
}

}  // namespace qrx::sim
