// Format NVM, as every device that has it carries it out.
#include <array>
#include <bit>

#include "api/src/interface/wire/ns_format.h"
#include "sim/firmware/nvme_function.h"

namespace qrx::sim {

namespace {

constexpr QRX_U32 kBroadcast = 0xFFFFFFFF;
constexpr std::array<QRX_U32, 2> kFormats{512, 4096};  // bytes of a sector
constexpr QRX_U32 kEraseByKey = 2;

}  // namespace

std::optional<QRX_U32> NvmeFunction::format_size(QRX_U32 index)
{
    return index < kFormats.size() ? std::optional(kFormats.at(index)) : std::nullopt;
}

Completion NvmeFunction::reformat(const nvme_admin_cmd& command)
{
    const auto format = std::bit_cast<_ns_format>(command.cdw10);
    if (command.nsid != kBroadcast && (command.nsid == 0 || find_namespace(*this, command.nsid) == nullptr)) {
        return complete(status::kInvalidNamespace);
    }
    const std::optional<QRX_U32> size = format_size(format.lbaf);
    // There is no metadata, and so no protection information.
    if (!size || format.mset != 0 || format.pi != 0 || format.pil != 0) {
        return complete(status::kInvalidFormat);
    }
    if (format.ses > kEraseByKey) {
        return complete(status::kInvalidField);
    }
    for (Namespace& ns : namespaces) {
        if ((command.nsid == kBroadcast || ns.nsid == command.nsid) && !in_service(ns)) {
            return complete(status::kNamespaceNotReady);
        }
    }
    for (Namespace& ns : namespaces) {
        if (command.nsid == kBroadcast || ns.nsid == command.nsid) {
            ns.sectors = ns.sectors * ns.sector_size / *size;
            ns.sector_size = *size;
            ns.data = {};
        }
    }
    return complete(status::kSuccess);
}

}  // namespace qrx::sim
