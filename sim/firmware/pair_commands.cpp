// The pair command road: a request comes with one NVMe command, and its answer goes with the next.
#include <cstring>

#include "api/src/interface/wire/command.h"
#include "sim/firmware/controller.h"
#include "sim/firmware/reply.h"

namespace qrx::sim {

namespace {

// A request by its group opcode and sub-opcode.
constexpr QRX_U32 request_code(QRX_U16 group, QRX_U16 sub)
{
    return QRX_U32{group} << 16 | sub;
}

constexpr QRX_U32 kAdapterInfo = request_code(kGroupAdapter, 0);
constexpr QRX_U32 kAdapterGetConfig = request_code(kGroupAdapter, 1);
constexpr QRX_U32 kAdapterSetConfig = request_code(kGroupAdapter, 2);
constexpr QRX_U32 kPdInfo = request_code(kGroupPd, 0);
constexpr QRX_U32 kVdInfo = request_code(kGroupVd, 0);
constexpr QRX_U32 kVdConfig = request_code(kGroupVd, 1);
constexpr QRX_U32 kPdActivity = request_code(kGroupBga, 1);
constexpr QRX_U32 kVdActivity = request_code(kGroupBga, 2);
constexpr QRX_U32 kNsOfVd = request_code(kGroupNs, 1);
constexpr QRX_U32 kPdImport = request_code(kGroupPd, 9);
constexpr QRX_U32 kVdSetConfig = request_code(kGroupVd, 2);
constexpr QRX_U32 kVdCreate = request_code(kGroupVd, 3);
constexpr QRX_U32 kVdDelete = request_code(kGroupVd, 4);
constexpr QRX_U32 kVdImport = request_code(kGroupVd, 6);
constexpr QRX_U32 kPdControl = request_code(kGroupBga, 3);
constexpr QRX_U32 kVdControl = request_code(kGroupBga, 4);
constexpr QRX_U32 kPdPatrol = request_code(kGroupBga, 5);
constexpr QRX_U32 kVdInit = request_code(kGroupBga, 6);
constexpr QRX_U32 kVdRebuild = request_code(kGroupBga, 7);
constexpr QRX_U32 kVdPatrol = request_code(kGroupBga, 10);

constexpr QRX_U32 kIds = 0x10000;  // list requests name ids of 16 bits

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

Completion Controller::pair_send(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    if (!PairMailbox::addressed(command)) {
        return complete(status::kInvalidField);
    }
    return complete(mailbox.keep(data) ? status::kSuccess : status::kInvalidField);
}

Completion Controller::pair_receive(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    if (!PairMailbox::addressed(command) || data.size() < wire::kPageSize) {
        return complete(status::kInvalidField);
    }
    if (!mailbox.pending) {
        return complete(status::kSequenceError);
    }
    const Verdict verdict = answer_pair(open_reply(data, Verdict::kGood));
    if (verdict != Verdict::kGood) {
        open_reply(data, verdict);
    }
    mailbox.clear();
    return complete(status::kSuccess);
}

Verdict Controller::answer_pair(std::span<QRX_U8> payload)
{
    const QRX_U32 code = request_code(mailbox.words[0], mailbox.words[1]);
    if (const std::optional<Verdict> verdict = carry_out_pair(code, payload)) {
        return *verdict;
    }
    switch (code) {
    case kAdapterInfo:
        put(payload, 0, adapter_record());
        return Verdict::kGood;
    case kPdInfo:
        return pair_list<sizeof(NVME_PD_Info)>(payload, kIds, Verdict::kInvalidPd,
                                               [&](QRX_U32 id, std::span<QRX_U8> at) {
                                                   const Drive* const drive = reachable_drive(id);
                                                   return drive != nullptr && wire::write(at, 0, pd_record(*drive));
                                               });
    case kPdActivity:
        return pair_list<sizeof(NVME_BGA_STATUS)>(
            payload, kIds, Verdict::kInvalidPd, [&](QRX_U32 id, std::span<QRX_U8> at) {
                const Drive* const drive = reachable_drive(id);
                if (drive == nullptr) {
                    return false;
                }
                NVME_BGA_STATUS none{};
                none.ID = static_cast<QRX_U8>(id);
                return wire::write(at, 0, drive->activity ? drive->activity->record(none.ID) : none);
            });
    default:
        break;
    }
    switch (code) {
    case kAdapterGetConfig:
    case kAdapterSetConfig:
    case kVdInfo:
    case kVdConfig:
    case kVdActivity:
    case kNsOfVd:
        break;
    default:
        return Verdict::kNotSupported;
    }
    if (!adapter.raid()) {
        return Verdict::kNotSupported;
    }
    switch (code) {
    case kAdapterGetConfig:
        put(payload, 0, config.record());
        return Verdict::kGood;
    case kAdapterSetConfig:
        return pair_set_config();
    case kVdInfo:
        return pair_list<sizeof(NVME_VD_Info)>(payload, kIds, Verdict::kInvalidVd,
                                               [&](QRX_U32 id, std::span<QRX_U8> at) {
                                                   const VirtualDisk* const vd = find_virtual_disk(id);
                                                   return vd != nullptr && wire::write(at, 0, vd_record(*vd));
                                               });
    case kVdConfig:
        return pair_list<sizeof(NVME_VD_Config)>(payload, kIds, Verdict::kInvalidVd,
                                                 [&](QRX_U32 id, std::span<QRX_U8> at) {
                                                     const VirtualDisk* const vd = find_virtual_disk(id);
                                                     return vd != nullptr && wire::write(at, 0, vd->config());
                                                 });
    case kVdActivity:
        return pair_list<sizeof(NVME_BGA_STATUS)>(payload, kIds, Verdict::kInvalidVd,
                                                  [&](QRX_U32 id, std::span<QRX_U8> at) {
                                                      const VirtualDisk* const vd = find_virtual_disk(id);
                                                      return vd != nullptr && wire::write(at, 0, vd->activity_record());
                                                  });
    default: {
        const QRX_U16 vd = mailbox.words[2];
        if (vd != kAllVirtualDisks && find_virtual_disk(vd) == nullptr) {
            return Verdict::kInvalidVd;
        }
        put_namespaces_of(static_cast<QRX_U8>(vd), payload);
        return Verdict::kGood;
    }
    }
}

Verdict Controller::pair_set_config()
{
    const auto record = wire::read<NVME_Adapter_Config>(mailbox.request);
    return record ? set_config(record->AutoRebuildOn, record->BGARate) : Verdict::kInvalidRequest;
}

std::optional<Verdict> Controller::carry_out_pair(QRX_U32 code, std::span<QRX_U8> payload)
{
    // Reads the request's record and passes it on.
    const auto with = [this]<class Record>(Record /*kind*/, auto act) {
        const auto record = wire::read<Record>(mailbox.request);
        return record ? act(*record) : Verdict::kInvalidRequest;
    };
    switch (code) {
    case kPdImport:
        return with(RequestHeader{}, [&](const auto& head) { return import_table(head.start, kAllTables); });
    case kVdSetConfig:
        return pair_set_vd_config();
    case kVdCreate:
        return pair_create_vd(payload);
    case kVdDelete:
        return with(NVME_VD_Delete{}, [&](const auto& request) { return delete_vd(request.ID); });
    case kVdImport:
        return with(RequestHeader{}, [&](const auto& head) { return import_vd(head.start); });
    case kPdControl:
        return with(RequestHeader{},
                    [&](const auto& head) { return control_pd_activity(head.start, mailbox.words[2]); });
    case kVdControl:
        return with(RequestHeader{},
                    [&](const auto& head) { return control_vd_activity(head.start, mailbox.words[2]); });
    case kPdPatrol:
        return with(NVME_PD_MP{}, [&](const auto& request) { return start_drive_patrol(request.PDID); });
    case kVdInit:
        return with(NVME_VD_Init{},
                    [&](const auto& request) { return start_initialization(request.ID, request.Init_Type); });
    case kVdRebuild:
        return with(NVME_Rebuild{}, [&](const auto& request) { return start_rebuild(request.VDID, request.PDID); });
    case kVdPatrol:
        return with(NVME_VD_MP{}, [&](const auto& request) { return start_media_patrol(request.VDID); });
    default:
        return std::nullopt;
    }
}

Verdict Controller::pair_set_vd_config()
{
    const auto head = wire::read<RequestHeader>(mailbox.request);
    const auto record = wire::read<NVME_VD_Config>(mailbox.request, sizeof(RequestHeader));
    if (!adapter.raid()) {
        return Verdict::kNotSupported;
    }
    if (!head || !record || head->numRequested != 1) {
        return Verdict::kInvalidRequest;
    }
    VirtualDisk* const vd = vd_of(record->ID);
    if (vd == nullptr) {
        return Verdict::kInvalidVd;
    }
    const std::optional<std::string> name = name_of(record->Name);
    if (!name) {
        return Verdict::kInvalidParameter;
    }
    vd->name = *name;
    tell(Event::kVd, vd->id, "is named " + vd->name);
    return Verdict::kGood;
}

Verdict Controller::pair_create_vd(std::span<QRX_U8> payload)
{
    const auto request = wire::read<NVME_Create_VD>(mailbox.request);
    if (!request) {
        return Verdict::kInvalidRequest;
    }
    const std::optional<std::string> name = name_of(request->Name);
    if (request->MemberCount > kVdMembersMax) {
        return Verdict::kInvalidPdCount;
    }
    if (request->NSCount > std::size(request->NSSize)) {
        return Verdict::kInvalidNamespaceCount;
    }
    if (!name) {
        return Verdict::kInvalidParameter;
    }
    VirtualDiskPlan plan;
    plan.raid_mode = request->RAIDMode;
    plan.stripe = request->StripeBlockSize;
    plan.members.assign(std::begin(request->PDIDs), std::begin(request->PDIDs) + request->MemberCount);
    plan.name = *name;
    plan.namespace_sizes.assign(std::begin(request->NSSize), std::begin(request->NSSize) + request->NSCount);
    plan.namespace_sizes.resize(std::max<std::size_t>(plan.namespace_sizes.size(), 1));
    if (request->QueryLDSize == 0) {
        return create_vd(std::move(plan));
    }
    VirtualDisk made;
    const Verdict verdict = plan_vd(plan, made);
    NVME_PreCreate_VD answer{};
    answer.SectorSize = made.sector_size;
    answer.LBA = made.sectors;
    put(payload, 0, answer);
    return verdict;
}

template <std::size_t RecordSize, class Put>
Verdict Controller::pair_list(std::span<QRX_U8> payload, QRX_U32 ids, Verdict absent, Put put_record) const
{
    auto head = wire::read<RequestHeader>(mailbox.request);
    if (!head) {
        return Verdict::kInvalidRequest;
    }
    if (head->numRequested == 0) {
        return Verdict::kInvalidParameter;
    }
    auto space = payload.subspan(sizeof(RequestHeader));
    head->numReturned = 0;
    QRX_U32 id = head->start;
    for (; id < ids && head->numReturned < head->numRequested && space.size() >= RecordSize; ++id) {
        if (put_record(id, space.first(RecordSize))) {
            space = space.subspan(RecordSize);
            ++head->numReturned;
        } else if (id == head->start) {
            return absent;  // the id that was asked for must exist; those behind it are taken as they come
        }
    }
    head->nextStart = static_cast<QRX_U16>(id);
    put(payload, 0, *head);
    return Verdict::kGood;
}

}  // namespace qrx::sim
