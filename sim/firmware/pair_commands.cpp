// The pair command road: a request comes with one NVMe command, and its answer goes with the next.
#include <algorithm>

#include "api/src/interface/wire/command.h"
#include "sim/firmware/pair_answers.h"

namespace qrx::sim {

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
    struct Row {
        PairCode code;
        Verdict (PairAnswers::*answer)();
        bool raid_only = false;
    };
    static constexpr auto kRows = std::to_array<Row>({
        {PairCode::kAdapterGetInfo, &PairAnswers::adapter_info},
        {PairCode::kAdapterGetConfig, &PairAnswers::adapter_config, true},
        {PairCode::kAdapterSetConfig, &PairAnswers::set_adapter_config, true},
        {PairCode::kAdapterLed, &PairAnswers::set_led},
        {PairCode::kPdGetInfo, &PairAnswers::pd_info},
        {PairCode::kPdOem, &PairAnswers::exchange_oem_item},
        {PairCode::kPdImport, &PairAnswers::import_table},
        {PairCode::kVdGetInfo, &PairAnswers::vd_info, true},
        {PairCode::kVdGetConfig, &PairAnswers::vd_config, true},
        {PairCode::kVdSetConfig, &PairAnswers::set_vd_config, true},
        {PairCode::kVdCreate, &PairAnswers::create_vd, true},
        {PairCode::kVdDelete, &PairAnswers::delete_vd, true},
        {PairCode::kVdImport, &PairAnswers::import_vd, true},
        {PairCode::kPdGetBgaStatus, &PairAnswers::pd_activity},
        {PairCode::kVdGetBgaStatus, &PairAnswers::vd_activity, true},
        {PairCode::kPdBgaControl, &PairAnswers::control_pd},
        {PairCode::kVdBgaControl, &PairAnswers::control_vd, true},
        {PairCode::kPdMediaPatrol, &PairAnswers::patrol_pd},
        {PairCode::kVdInit, &PairAnswers::initialize_vd, true},
        {PairCode::kVdRebuild, &PairAnswers::rebuild_vd, true},
        {PairCode::kVdSync, &PairAnswers::synchronize_vd, true},
        {PairCode::kVdMigrate, &PairAnswers::migrate_vd, true},
        {PairCode::kVdMediaPatrol, &PairAnswers::patrol_vd, true},
        {PairCode::kEventStatus, &PairAnswers::event_status},
        {PairCode::kNsGetInfoVd, &PairAnswers::namespaces_of_vd, true},
        {PairCode::kDumpConsole, &PairAnswers::console},
        {PairCode::kDumpStatus, &PairAnswers::console_status},
        {PairCode::kGetDumpCfg, &PairAnswers::console_config},
        {PairCode::kSetDumpCfg, &PairAnswers::set_console_config},
        {PairCode::kPageEvent, &PairAnswers::event_page},
    });
    const PairCode code = pairCodeOf(mailbox.words[0], mailbox.words[1]);
    const auto* const row =
        std::find_if(kRows.begin(), kRows.end(), [code](const Row& known) { return known.code == code; });
    if (row == kRows.end() || (row->raid_only && !adapter.raid())) {
        return Verdict::kNotSupported;
    }
    PairAnswers answers{*this, payload};
    return (answers.*row->answer)();
}

}  // namespace qrx::sim
