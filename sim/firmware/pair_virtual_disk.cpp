// Pair commands about virtual disks and the namespaces on them.
#include <algorithm>

#include "sim/firmware/pair_answers.h"

namespace qrx::sim {

namespace {

// What a creation may ask for about the initialization of the new virtual disk.
constexpr QRX_U8 kInitializeQuickly = 0;
constexpr QRX_U8 kInitializeNever = 3;

// The text of a name's field, or nothing when it holds other than printable ASCII.
std::optional<std::string> name_of(std::span<const QRX_U8> field)
{
    std::string name;
    for (const QRX_U8 letter : field) {
        if (letter == 0) {
            break;
        }
        if (letter < 0x20 || letter > 0x7E) {
            return std::nullopt;
        }
        name.push_back(static_cast<char>(letter));
    }
    return name;
}

}  // namespace

Verdict Controller::PairAnswers::vd_info()
{
    return answer_list(Verdict::kInvalidVd, [&](QRX_U32 id) {
        const VirtualDisk* const vd = controller.find_virtual_disk(id);
        return vd != nullptr ? std::optional(controller.vd_record(*vd)) : std::nullopt;
    });
}

Verdict Controller::PairAnswers::vd_config()
{
    return answer_list(Verdict::kInvalidVd, [&](QRX_U32 id) {
        const VirtualDisk* const vd = controller.find_virtual_disk(id);
        return vd != nullptr ? std::optional(vd->config()) : std::nullopt;
    });
}

Verdict Controller::PairAnswers::set_vd_config()
{
    const std::span<const QRX_U8> request = controller.mailbox.request;
    const auto header = wire::read<RequestHeader>(request);
    const std::size_t count = header ? header->numRequested : 0;
    if (count == 0 || request.size() != sizeof(RequestHeader) + count * sizeof(NVME_VD_Config)) {
        return Verdict::kInvalidRequest;
    }
    // All of them, or none.
    std::vector<std::pair<VirtualDisk*, std::string>> names;
    for (std::size_t i = 0; i < count; ++i) {
        const auto record = wire::read<NVME_VD_Config>(request, sizeof(RequestHeader) + i * sizeof(NVME_VD_Config));
        VirtualDisk* const vd = controller.vd_of(record->ID);
        std::optional<std::string> name = name_of(record->Name);
        if (vd == nullptr) {
            return Verdict::kInvalidVd;
        }
        if (!name) {
            return Verdict::kInvalidParameter;
        }
        names.emplace_back(vd, std::move(*name));
    }
    for (auto& [vd, name] : names) {
        vd->name = std::move(name);
        controller.tell(Event::kVd, vd->id, "is named " + vd->name);
    }
    return Verdict::kGood;
}

Verdict Controller::PairAnswers::create_vd()
{
    return with<NVME_Create_VD>([&](const auto& request) {
        std::optional<std::string> name = name_of(request.Name);
        if (request.MemberCount > kVdMembersMax) {
            return Verdict::kInvalidPdCount;
        }
        if (request.NSCount > std::size(request.NSSize)) {
            return Verdict::kInvalidNamespaceCount;
        }
        const bool quickly = request.InitializationOption == kInitializeQuickly;
        if (!name || (!quickly && request.InitializationOption != kInitializeNever)) {
            return Verdict::kInvalidParameter;
        }
        VirtualDiskPlan plan;
        plan.raid_mode = request.RAIDMode;
        plan.stripe = request.StripeBlockSize;
        plan.members.assign(std::begin(request.PDIDs), std::begin(request.PDIDs) + request.MemberCount);
        plan.parity_disks = request.NumParityDisk;
        plan.name = std::move(*name);
        plan.namespace_sizes.assign(std::begin(request.NSSize), std::begin(request.NSSize) + request.NSCount);
        plan.namespace_sizes.resize(std::max<std::size_t>(plan.namespace_sizes.size(), 1));
        plan.initialize = quickly;
        if (request.QueryLDSize == 0) {
            return controller.create_vd(std::move(plan));
        }
        VirtualDisk made;
        const Verdict verdict = controller.plan_vd(plan, made);
        answer(NVME_PreCreate_VD{0, made.sector_size, made.sectors});
        return verdict;
    });
}

Verdict Controller::PairAnswers::delete_vd()
{
    return with<NVME_VD_Delete>([&](const auto& request) { return controller.delete_vd(request.ID); });
}

Verdict Controller::PairAnswers::import_vd()
{
    return with<RequestHeader>([&](const auto& header) { return controller.import_vd(header.start); });
}

Verdict Controller::PairAnswers::namespaces_of_vd()
{
    const QRX_U16 vd = argument();
    if (vd != kAllVirtualDisks && controller.find_virtual_disk(vd) == nullptr) {
        return Verdict::kInvalidVd;
    }
    controller.put_namespaces_of(static_cast<QRX_U8>(vd), payload);
    return Verdict::kGood;
}

}  // namespace qrx::sim
