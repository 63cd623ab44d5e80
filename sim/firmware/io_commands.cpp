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
    case nvm::kWriteUncorrectable:
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
    if (command.opcode == nvm::kWriteZeroes || command.opcode == nvm::kWriteUncorrectable) {
        return finish_io(target, command.opcode, 0, change(target, command.opcode, lba, count));
    }
    const QRX_U64 bytes = count * target.sector_size;
    if (bytes > wire::kPageSize << kMaxTransferPages) {
        return complete(status::kInvalidField);
    }
    if (bytes != data.size()) {
        return complete(status::kDataTransferError);
    }
    return finish_io(target, command.opcode, bytes, move(target, command.opcode, lba, data));
}

QRX_U32 NvmeFunction::change(Namespace& target, QRX_U8 opcode, QRX_U64 lba, QRX_U64 count)
{
    // Deallocated sectors read as zeros, so that both forms of Write Zeroes do the same.
    if (opcode == nvm::kWriteZeroes) {
        target.data.erase(lba, count);
    } else {
        target.data.spoil(lba, count);
    }
    return status::kSuccess;
}

QRX_U32 NvmeFunction::move(Namespace& target, QRX_U8 opcode, QRX_U64 lba, std::span<QRX_U8> data)
{
    if (opcode == nvm::kWrite) {
        target.data.write(lba, target.sector_size, data);
        return status::kSuccess;
    }
    if (!target.data.readable(lba, data.size() / target.sector_size)) {
        ++health.media_errors;
        return status::kUnrecoveredRead;
    }
    if (opcode == nvm::kRead) {
        target.data.read(lba, target.sector_size, data);
        return status::kSuccess;
    }
    return target.data.equals(lba, target.sector_size, data) ? status::kSuccess : status::kCompareFailure;
}

// Where every command that has reached the medium ends, and is counted. `bytes`: of its data.
Completion NvmeFunction::finish_io(Namespace& target, QRX_U8 opcode, QRX_U64 bytes, QRX_U32 outcome)
{
    if (outcome != status::kUnrecoveredRead && opcode != nvm::kWriteUncorrectable) {
        const bool reads = opcode == nvm::kRead || opcode == nvm::kCompare;
        if (reads) {
            health.count_reads(1, bytes);
            target.count_reads(1, bytes);
        } else {
            health.count_writes(1, bytes);
            target.count_writes(1, bytes);
        }
    }
    return complete(outcome);
}

}  // namespace qrx::sim
