// I/O commands of an NVMe function.
#include "api/src/interface/wire/buffer.h"
#include "sim/firmware/nvme_function.h"
#include "sim/firmware/opcodes.h"

namespace qrx::sim {

namespace {

constexpr QRX_U32 kBroadcast = 0xFFFFFFFF;

}  // namespace

Completion NvmeFunction::io(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    switch (command.opcode) {
    case nvm::kFlush:
    case nvm::kWrite:
    case nvm::kRead:
    case nvm::kCompare:
    case nvm::kWriteZeroes:
        break;
    default:
        return complete(status::kInvalidOpcode);
    }
    if (command.opcode == nvm::kFlush && command.nsid == kBroadcast) {
        return complete(status::kSuccess);
    }
    Namespace* const target = find_namespace(*this, command.nsid);
    if (target == nullptr || !target->valid || !target->active) {
        const bool possible = command.nsid != 0 && command.nsid <= max_namespaces();
        return complete(possible ? status::kInvalidField : status::kInvalidNamespace);
    }
    if (!in_service(*target)) {
        return complete(status::kNamespaceNotReady);
    }
    return command.opcode == nvm::kFlush ? complete(status::kSuccess) : transfer(*target, command, data);
}

Completion NvmeFunction::transfer(Namespace& target, const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    const QRX_U64 lba = QRX_U64{command.cdw11} << 32 | command.cdw10;
    const QRX_U64 count = QRX_U64{command.cdw12 & 0xFFFF} + 1;
    if (lba >= target.sectors || count > target.sectors - lba) {
        return complete(status::kLbaOutOfRange);
    }
    if (command.opcode == nvm::kWriteZeroes) {
        target.data.erase(lba, count);
        health.count_writes(1, 0);
        target.count_writes(1, 0);
        return complete(status::kSuccess);
    }
    const QRX_U64 bytes = count * target.sector_size;
    if (bytes > wire::kPageSize << kMaxTransferPages) {
        return complete(status::kInvalidField);
    }
    if (bytes != data.size()) {
        return complete(status::kDataTransferError);
    }
    switch (command.opcode) {
    case nvm::kWrite:
        target.data.write(lba, target.sector_size, data);
        health.count_writes(1, bytes);
        target.count_writes(1, bytes);
        return complete(status::kSuccess);
    case nvm::kRead:
        target.data.read(lba, target.sector_size, data);
        health.count_reads(1, bytes);
        target.count_reads(1, bytes);
        return complete(status::kSuccess);
    default:
        health.count_reads(1, bytes);
        target.count_reads(1, bytes);
        return complete(target.data.equals(lba, target.sector_size, data) ? status::kSuccess : status::kCompareFailure);
    }
}

}  // namespace qrx::sim
