// Identify of an NVMe function.
#include <algorithm>
#include <array>
#include <cstring>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/primary.h"
#include "sim/firmware/nvme_function.h"
#include "sim/firmware/text.h"

namespace qrx::sim {

namespace {

constexpr QRX_U32 kBroadcast = 0xFFFFFFFF;
constexpr QRX_U32 kVersion = 0x00010400;  // NVMe 1.4
// The maker's OUI, low byte first. Its second bit marks it as administered locally: it belongs to no maker.
constexpr std::array<QRX_U8, 3> kOui{0x58, 0x51, 0x02};

constexpr QRX_U8 kCnsNamespace = 0x00;
constexpr QRX_U8 kCnsController = 0x01;
constexpr QRX_U8 kCnsActiveList = 0x02;
constexpr QRX_U8 kCnsDescriptors = 0x03;
constexpr QRX_U8 kCnsAllocatedList = 0x10;
constexpr QRX_U8 kCnsAllocatedNamespace = 0x11;
constexpr QRX_U8 kCnsAttachedControllers = 0x12;
constexpr QRX_U8 kCnsControllers = 0x13;
constexpr QRX_U8 kCnsPrimary = qrx::kIdentifyPrimary;

bool all_zero(std::span<const QRX_U8> bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](QRX_U8 byte) { return byte == 0; });
}

// Hands over as much of a page as the host's buffer takes.
template <class Page>
Completion deliver(const Page& page, std::span<QRX_U8> data)
{
    static_assert(sizeof(Page) == wire::kPageSize);
    const std::size_t length = std::min(data.size(), sizeof(page));
    if (length != 0) {
        std::memcpy(data.data(), &page, length);
    }
    return complete(status::kSuccess);
}

// The ids from `from` on.
_controller_list_format controller_list(std::span<const QRX_U16> ids, QRX_U32 from)
{
    _controller_list_format list{};
    for (const QRX_U16 id : ids) {
        if (id >= from) {
            list.id[list.num_of_id++] = id;
        }
    }
    return list;
}

}  // namespace

nvme_id_ctrl NvmeFunction::identify_controller() const
{
    const Capacity bytes = capacity();
    const Identity own = identity();
    nvme_id_ctrl id{};
    id.vid = vendor_id;
    id.ssvid = own.subsystem_vendor_id;
    pad_with_blanks(id.sn, own.serial);
    pad_with_blanks(id.mn, own.model);
    pad_with_blanks(id.fr, slots.running());
    id.rab = 6;
    std::copy(kOui.begin(), kOui.end(), std::begin(id.ieee));
    id.cmic = dual_port() ? 1 : 0;
    id.mdts = kMaxTransferPages;
    id.cntlid = controller_id;
    id.ver = kVersion;
    id.rtd3r = 5000000;
    id.rtd3e = 8000000;
    id.cntrltype = 1;  // an I/O controller
    id.oacs = static_cast<QRX_U16>((formats() ? 1U << 1 : 0) | 1U << 2 |
                                   (attaches_namespaces() || manages_namespaces() ? 1U << 3 : 0) |
                                   (has_management_endpoint() ? 1U << 6 : 0) | (virtualizes() ? 1U << 7 : 0));
    id.acl = 3;
    id.aerl = 0;  // one asynchronous event request
    id.frmw = slots.capabilities();
    id.lpa = 0x06;  // commands supported log; extended log page fields
    id.elpe = static_cast<QRX_U8>(ErrorLog::kEntries - 1);
    id.wctemp = 343;
    id.cctemp = 358;
    std::memcpy(id.tnvmcap, &bytes.total, sizeof(bytes.total));
    std::memcpy(id.unvmcap, &bytes.unallocated, sizeof(bytes.unallocated));
    id.fwug = 0xFF;  // pieces of an image need no other alignment than that of dwords
    id.sqes = 0x66;
    id.cqes = 0x44;
    id.nn = max_namespaces();
    id.oncs = 0x5B;                    // compare, write uncorrectable, write zeroes, select of features, timestamp
    id.fna = formats() ? 1U << 2 : 0;  // a format can erase by forgetting the key
    id.vwc = 0x07;                     // volatile write cache; flush takes all namespaces at once
    pad_with_zeros(id.subnqn, own.subnqn);
    id.psd[0].mp = 2500;  // 25.00 W
    return id;
}

_nvme_id_ns NvmeFunction::identify_namespace(const Namespace& ns) const
{
    _nvme_id_ns id = ns.identify();
    if (formats()) {
        id.nlbaf = 1;
        id.lbaf[0].ds = 9;
        id.lbaf[1].ds = 12;
        id.flbas = ns.sector_size == 4096 ? 1 : 0;
    }
    return id;
}

Completion NvmeFunction::identify(const nvme_admin_cmd& command, std::span<QRX_U8> data) const
{
    const auto cns = static_cast<QRX_U8>(command.cdw10);
    const QRX_U32 nsid = command.nsid;
    const bool possible = nsid != 0 && nsid <= max_namespaces();
    const Namespace* const ns = find_namespace(*this, nsid);
    const bool allocated = ns != nullptr && ns->valid;
    switch (cns) {
    case kCnsController:
        return deliver(identify_controller(), data);
    case kCnsNamespace:
    case kCnsAllocatedNamespace:
        if (!possible) {
            return complete(status::kInvalidNamespace);
        }
        // An id that may exist and does not, or is not attached, is told by a page of zeros.
        return allocated && (ns->active || cns == kCnsAllocatedNamespace) ? deliver(identify_namespace(*ns), data)
                                                                          : deliver(_nvme_id_ns{}, data);
    case kCnsActiveList:
        return identify_namespaces(nsid, false, data);
    case kCnsAllocatedList:
        return identify_namespaces(nsid, true, data);
    case kCnsDescriptors:
        return allocated && ns->active ? identify_descriptors(nsid, data) : complete(status::kInvalidNamespace);
    case kCnsAttachedControllers:
        if (!allocated) {
            return complete(possible ? status::kInvalidField : status::kInvalidNamespace);
        }
        return deliver(controller_list(ns->attached_to(controller_id), command.cdw10 >> 16), data);
    case kCnsControllers:
        return deliver(controller_list(std::array{controller_id}, command.cdw10 >> 16), data);
    case kCnsPrimary: {
        _Prim_cntl_cap capabilities{};  // the id is all that it tells
        capabilities.cntlid = controller_id;
        return virtualizes() ? deliver(capabilities, data) : complete(status::kInvalidField);
    }
    default:
        return complete(status::kInvalidField);
    }
}

Completion NvmeFunction::identify_descriptors(QRX_U32 nsid, std::span<QRX_U8> page) const
{
    std::array<QRX_U8, wire::kPageSize> descriptors{};
    std::size_t offset = 0;
    const auto append = [&](QRX_U8 type, std::span<const QRX_U8> identifier) {
        if (!all_zero(identifier)) {
            descriptors[offset] = type;
            descriptors[offset + 1] = static_cast<QRX_U8>(identifier.size());
            std::copy(identifier.begin(), identifier.end(), descriptors.begin() + static_cast<long>(offset) + 4);
            offset += 4 + identifier.size();
        }
    };
    const Namespace* const ns = find_namespace(*this, nsid);
    append(1, ns->eui64);
    append(2, ns->nguid);
    return deliver(descriptors, page);
}

Completion NvmeFunction::identify_namespaces(QRX_U32 after, bool allocated, std::span<QRX_U8> page) const
{
    if (after >= kBroadcast - 1) {
        return complete(status::kInvalidNamespace);
    }
    std::array<QRX_U32, wire::kPageSize / sizeof(QRX_U32)> list{};
    std::size_t count = 0;
    for (const Namespace& ns : namespaces) {
        if (ns.nsid > after && ns.valid && (allocated || ns.active)) {
            list[count++] = ns.nsid;
        }
    }
    return deliver(list, page);
}

}  // namespace qrx::sim
