// Get Log Page of an NVMe function.
#include <algorithm>
#include <array>
#include <cstring>

#include "sim/firmware/nvme_function.h"
#include "sim/firmware/opcodes.h"

namespace qrx::sim {

namespace {

constexpr QRX_U8 kLogSupportedPages = 0x00;
constexpr QRX_U8 kLogErrors = 0x01;
constexpr QRX_U8 kLogHealth = 0x02;
constexpr QRX_U8 kLogFirmwareSlots = 0x03;
constexpr QRX_U8 kLogCommands = 0x05;
constexpr unsigned kFirstVendorPage = 0xC0;
constexpr QRX_U32 kBroadcast = 0xFFFFFFFF;
constexpr QRX_U32 kSupported = 1;  // bit 0 of an entry of the commands and the supported pages logs
constexpr QRX_U32 kChangesContent = 1U << 1;
constexpr QRX_U32 kChangesNamespace = 1U << 2;
constexpr QRX_U32 kChangesInventory = 1U << 3;  // of namespaces

// Delivers `length` bytes from `offset` of a log page; zeros where the host asks for more than the page has.
Completion deliver_bytes(std::span<const QRX_U8> page, QRX_U64 offset, QRX_U64 length, std::span<QRX_U8> data)
{
    if (offset > page.size()) {
        return complete(status::kInvalidField);
    }
    data = data.first(static_cast<std::size_t>(std::min<QRX_U64>(data.size(), length)));
    const auto from = page.subspan(static_cast<std::size_t>(offset));
    const auto held = from.first(std::min(data.size(), from.size()));
    std::fill(std::copy(held.begin(), held.end(), data.begin()), data.end(), QRX_U8{0});
    return complete(status::kSuccess);
}

template <class Page>
Completion deliver(const Page& page, QRX_U64 offset, QRX_U64 length, std::span<QRX_U8> data)
{
    std::array<QRX_U8, sizeof(page)> bytes{};
    std::memcpy(bytes.data(), &page, sizeof(page));
    return deliver_bytes(bytes, offset, length, data);
}

}  // namespace

std::array<QRX_U32, 256> NvmeFunction::supported_pages() const
{
    std::array<QRX_U32, 256> pages{};
    for (const QRX_U8 page : {kLogSupportedPages, kLogErrors, kLogHealth, kLogFirmwareSlots, kLogCommands}) {
        pages[page] = kSupported;
    }
    for (unsigned page = kFirstVendorPage; page < pages.size(); ++page) {
        pages[page] = vendor_log(static_cast<QRX_U8>(page)).empty() ? 0 : kSupported;
    }
    return pages;
}

Completion NvmeFunction::get_log_page(const nvme_admin_cmd& command, std::span<QRX_U8> data) const
{
    const auto page = static_cast<QRX_U8>(command.cdw10);
    const QRX_U64 length = ((QRX_U64{command.cdw11 & 0xFFFF} << 16 | command.cdw10 >> 16) + 1) * 4;
    const QRX_U64 offset = QRX_U64{command.cdw13} << 32 | command.cdw12;
    if (offset % 4 != 0) {
        return complete(status::kInvalidField);
    }
    switch (page) {
    case kLogSupportedPages:
        return deliver(supported_pages(), offset, length, data);
    case kLogErrors:
        return deliver(errors.log(), offset, length, data);
    case kLogHealth:
        // There is one health log for the whole device, and none for a single namespace.
        if (command.nsid != 0 && command.nsid != kBroadcast) {
            return complete(status::kInvalidField);
        }
        return deliver(health.log(errors.count), offset, length, data);
    case kLogFirmwareSlots:
        return deliver(slots.log(), offset, length, data);
    case kLogCommands:
        return deliver(effects_log(), offset, length, data);
    default: {
        const std::vector<QRX_U8> content = vendor_log(page);
        return content.empty() ? complete(status::kInvalidLogPage) : deliver_bytes(content, offset, length, data);
    }
    }
}

nvme_effects_log NvmeFunction::effects_log() const
{
    nvme_effects_log log{};
    for (const QRX_U8 opcode : {admin::kDeleteSubmissionQueue, admin::kCreateSubmissionQueue, admin::kGetLogPage,
                                admin::kDeleteCompletionQueue, admin::kCreateCompletionQueue, admin::kIdentify,
                                admin::kAbort, admin::kSetFeatures, admin::kGetFeatures, admin::kAsynchronousEvent,
                                admin::kFirmwareCommit, admin::kFirmwareDownload}) {
        log.acs[opcode] = kSupported;
    }
    if (attaches_namespaces()) {
        log.acs[admin::kNamespaceAttachment] = kSupported | kChangesInventory;
    }
    if (manages_namespaces()) {
        log.acs[admin::kNamespaceManagement] = kSupported | kChangesContent | kChangesInventory;
    }
    if (virtualizes()) {
        log.acs[admin::kVirtualizationManagement] = kSupported;
    }
    if (has_management_endpoint()) {
        log.acs[admin::kManagementSend] = kSupported;
        log.acs[admin::kManagementReceive] = kSupported;
    }
    if (formats()) {
        log.acs[admin::kFormat] = kSupported | kChangesContent | kChangesNamespace;
    }
    for (const QRX_U8 opcode : vendor_opcodes()) {
        log.acs[opcode] = kSupported;
    }
    for (const QRX_U8 opcode : {nvm::kFlush, nvm::kRead, nvm::kCompare}) {
        log.iocs[opcode] = kSupported;
    }
    for (const QRX_U8 opcode : {nvm::kWrite, nvm::kWriteUncorrectable, nvm::kWriteZeroes}) {
        log.iocs[opcode] = kSupported | kChangesContent;
    }
    return log;
}

}  // namespace qrx::sim
