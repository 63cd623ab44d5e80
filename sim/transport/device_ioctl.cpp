#include "sim/transport/device_ioctl.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <span>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/nvme_ioctl.h"

namespace qrx::sim {
namespace {

// More than any command of a controller moves; the driver refuses such lengths as well.
constexpr std::size_t kMostData = 16U << 20;

// The argument of the 64-bit pass-through requests: as nvme_admin_cmd up to timeout_ms, then a wide result.
constexpr std::size_t kResultOffset = offsetof(nvme_admin_cmd, result);
constexpr std::size_t kResult64Offset = 72;

// The argument of SUBMIT_IO on a block device.
struct UserIo {
    QRX_U8 opcode;
    QRX_U8 flags;
    QRX_U16 control;
    QRX_U16 nblocks;  // blocks less 1
    QRX_U16 reserved;
    QRX_U64 metadata;
    QRX_U64 addr;
    QRX_U64 slba;
    QRX_U32 dsmgmt;
    QRX_U32 reftag;
    QRX_U16 apptag;
    QRX_U16 appmask;
};
constexpr std::size_t kUserIoSize = 44;  // without the padding at its end
static_assert(offsetof(UserIo, appmask) + 2 == kUserIoSize);

// An opcode tells which way its data go.
bool returns_data(QRX_U8 opcode)
{
    return (opcode & 2) != 0;
}

template <class Record>
std::span<QRX_U8> bytes_of(Record& record)
{
    static_assert(std::is_trivially_copyable_v<Record>);
    return {reinterpret_cast<QRX_U8*>(&record), sizeof(Record)};
}

std::optional<NamespaceNode> find_namespace(const Host& host, const Node& node)
{
    for (const ControllerNode& controller : host.controllers()) {
        if (controller.number != node.controller) {
            continue;
        }
        for (const NamespaceNode& space : controller.namespaces) {
            if (space.nsid == node.nsid) {
                return space;
            }
        }
    }
    return std::nullopt;
}

class Request {
public:
    Request(Host& host, const Node& node, const Caller& caller, TransferBuffer& buffer)
        : host_(host), node_(node), caller_(caller), buffer_(buffer)
    {
    }

    // A pass-through command of `size` bytes, whose result goes to `result_offset` of it.
    IoctlResult pass_through(QRX_U64 argument, bool admin, bool wide)
    {
        nvme_admin_cmd command{};
        if (!fetch(argument, command)) {
            return {0, EFAULT};
        }
        command.result = 0;
        if (wide) {
            return run(command, admin, argument + kResult64Offset, sizeof(QRX_U64));
        }
        return run(command, admin, argument + kResultOffset, sizeof(QRX_U32));
    }

    IoctlResult submit(QRX_U64 argument)
    {
        const std::optional<NamespaceNode> space = find_namespace(host_, node_);
        if (!space) {
            return {0, ENODEV};
        }
        UserIo io{};
        if (!caller_.read(argument, bytes_of(io).first(kUserIoSize))) {
            return {0, EFAULT};
        }
        nvme_admin_cmd command{};
        command.opcode = io.opcode;
        command.flags = io.flags;
        command.nsid = node_.nsid;
        command.metadata = io.metadata;
        command.addr = io.addr;
        command.data_len = (io.nblocks + 1U) * space->sector_size;
        command.cdw10 = static_cast<QRX_U32>(io.slba);
        command.cdw11 = static_cast<QRX_U32>(io.slba >> 32);
        command.cdw12 = io.nblocks | static_cast<QRX_U32>(io.control) << 16;
        command.cdw13 = io.dsmgmt;
        command.cdw14 = io.reftag;
        command.cdw15 = io.apptag | static_cast<QRX_U32>(io.appmask) << 16;
        return run(command, false, 0, 0);
    }

    template <class Value>
    IoctlResult put(QRX_U64 argument, Value value)
    {
        return {0, caller_.write(argument, bytes_of(value)) ? 0 : EFAULT};
    }

private:
    // Reads the record at `argument` and, on the chance, the data of the last command.
    bool fetch(QRX_U64 argument, nvme_admin_cmd& command)
    {
        std::vector<QRX_U8>& data = buffer_.data;
        if (data.empty() || buffer_.pid != caller_.pid() || buffer_.argument != argument) {
            buffer_.pid = caller_.pid();
            buffer_.argument = argument;
            return caller_.read(argument, bytes_of(command));
        }
        const std::size_t got = caller_.read(argument, bytes_of(command), buffer_.address, data);
        have_data_ =
            got == sizeof command + data.size() && command.addr == buffer_.address && command.data_len == data.size();
        return got >= sizeof command;
    }

    // Carries the command out and puts its result, of `result_size` bytes, to `result_address`.
    IoctlResult run(const nvme_admin_cmd& command, bool admin, QRX_U64 result_address, std::size_t result_size)
    {
        if (command.data_len > kMostData) {
            return {0, EINVAL};
        }
        std::vector<QRX_U8>& data = buffer_.data;
        if (!have_data_) {
            data.resize(command.data_len);
            buffer_.address = command.addr;
            if (!data.empty() && !caller_.read(command.addr, data)) {
                return {0, EFAULT};
            }
        }
        const Completion done = admin ? host_.admin(node_, command, data) : host_.io(node_, command, data);
        if (done.error != 0) {
            return {0, done.error};
        }
        QRX_U64 result = done.result;
        const std::span<const QRX_U8> result_bytes = bytes_of(result).first(result_size);
        const bool returns = !data.empty() && returns_data(command.opcode);
        bool written = true;
        if (returns && result_size != 0) {
            written = caller_.write(command.addr, data, result_address, result_bytes);
        } else if (returns) {
            written = caller_.write(command.addr, data);
        } else if (result_size != 0) {
            written = caller_.write(result_address, result_bytes);
        }
        return {static_cast<long>(done.status), written ? 0 : EFAULT};
    }

    Host& host_;
    const Node& node_;
    const Caller& caller_;
    TransferBuffer& buffer_;
    bool have_data_ = false;  // the data of the command are in the buffer
};

IoctlResult block_ioctl(const Host& host, Request& call, const Node& node, unsigned long request, QRX_U64 argument)
{
    const std::optional<NamespaceNode> space = find_namespace(host, node);
    if (!space) {
        return {0, ENODEV};
    }
    const QRX_U64 bytes = space->sectors * space->sector_size;
    switch (request) {
    case kBlockReadOnly:
        return call.put(argument, QRX_U32{0});
    case kBlockSectors:
        return call.put(argument, bytes / 512);
    case kBlockFlush:
        return {};
    case kBlockSectorSize:
    case kBlockPhysicalSectorSize:
        return call.put(argument, space->sector_size);
    case kBlockBytes:
        return call.put(argument, bytes);
    default:
        return {0, ENOTTY};
    }
}

}  // namespace

IoctlResult device_ioctl(Host& host, const Node& node, const Caller& caller, unsigned long request, QRX_U64 argument,
                         TransferBuffer& buffer)
{
    Request call(host, node, caller, buffer);
    const bool block = node.nsid != 0;
    switch (request) {
    case NVME_IOCTL_ID:
        // A controller's node has no namespace to tell; the driver knows the request on block devices alone.
        return block ? IoctlResult{static_cast<long>(node.nsid), 0} : IoctlResult{0, ENOTTY};
    case NVME_IOCTL_ADMIN_CMD:
        return call.pass_through(argument, true, false);
    case NVME_IOCTL_ADMIN64_CMD:
        return call.pass_through(argument, true, true);
    case NVME_IOCTL_IO_CMD:
        return call.pass_through(argument, false, false);
    case NVME_IOCTL_IO64_CMD:
        return call.pass_through(argument, false, true);
    case NVME_IOCTL_SUBMIT_IO:
        // On the controller's node it comes with a pass-through record, on a namespace's with its own.
        return block ? call.submit(argument) : call.pass_through(argument, false, false);
    case NVME_IOCTL_SUBMIT_IO_64:
        return block ? call.submit(argument) : IoctlResult{0, ENOTTY};
    case NVME_IOCTL_RESET:
    case NVME_IOCTL_SUBSYS_RESET:
    case NVME_IOCTL_RESCAN:
        // The driver's own work, nothing for a controller that is always there.
        return block ? IoctlResult{0, ENOTTY} : IoctlResult{};
    default:
        return block && !is_nvme_request(request) ? block_ioctl(host, call, node, request, argument)
                                                  : IoctlResult{0, ENOTTY};
    }
}

}  // namespace qrx::sim
