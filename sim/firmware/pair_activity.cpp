// Pair commands about background activities.
#include "sim/firmware/pair_answers.h"

namespace qrx::sim {

Verdict Controller::PairAnswers::pd_activity()
{
    return answer_list(Verdict::kInvalidPd, [&](QRX_U32 id) {
        const Drive* const drive = controller.reachable_drive(id);
        std::optional<NVME_BGA_STATUS> record;
        if (drive != nullptr) {
            record.emplace().ID = static_cast<QRX_U8>(id);
            if (drive->activity) {
                record = drive->activity->record(record->ID);
            }
        }
        return record;
    });
}

Verdict Controller::PairAnswers::vd_activity()
{
    return answer_list(Verdict::kInvalidVd, [&](QRX_U32 id) {
        const VirtualDisk* const vd = controller.find_virtual_disk(id);
        return vd != nullptr ? std::optional(vd->activity_record()) : std::nullopt;
    });
}

Verdict Controller::PairAnswers::control_pd()
{
    return with<RequestHeader>(
        [&](const auto& header) { return controller.control_pd_activity(header.start, argument()); });
}

Verdict Controller::PairAnswers::control_vd()
{
    return with<RequestHeader>(
        [&](const auto& header) { return controller.control_vd_activity(header.start, argument()); });
}

Verdict Controller::PairAnswers::patrol_pd()
{
    return with<NVME_PD_MP>([&](const auto& request) { return controller.start_drive_patrol(request.PDID); });
}

Verdict Controller::PairAnswers::patrol_vd()
{
    return with<NVME_VD_MP>([&](const auto& request) { return controller.start_media_patrol(request.VDID); });
}

Verdict Controller::PairAnswers::initialize_vd()
{
    return with<NVME_VD_Init>(
        [&](const auto& request) { return controller.start_initialization(request.ID, request.Init_Type); });
}

Verdict Controller::PairAnswers::rebuild_vd()
{
    return with<NVME_Rebuild>(
        [&](const auto& request) { return controller.start_rebuild(request.VDID, request.PDID); });
}

Verdict Controller::PairAnswers::synchronize_vd()
{
    return with<NVME_VD_Sync>([&](const auto& request) { return controller.start_synchronization(request.ID); });
}

Verdict Controller::PairAnswers::migrate_vd()
{
    return with<NVME_Migrate>([&](const auto& request) {
        if (request.MemberCount > std::size(request.PDIDs)) {
            return Verdict::kInvalidPdCount;
        }
        const auto* const first = std::begin(request.PDIDs);
        const std::vector<QRX_U16> members(first, first + request.MemberCount);
        return controller.start_migration(request.ID, request.RaidMode, request.NumParityDisk, members);
    });
}

}  // namespace qrx::sim
