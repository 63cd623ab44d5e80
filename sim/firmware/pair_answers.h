// The requests of the pair command road: each reads its record from the mailbox and answers into the payload.
#pragma once

#include <optional>

#include "api/src/interface/wire/pair.h"
#include "sim/firmware/controller.h"
#include "sim/firmware/reply.h"

namespace qrx::sim {

struct Controller::PairAnswers {
    Controller& controller;
    std::span<QRX_U8> payload;  // zeros, as much as a page has behind its envelope

    // Controllers and drives.
    Verdict adapter_info();
    Verdict adapter_config();
    Verdict set_adapter_config();
    Verdict set_led();
    Verdict pd_info();
    Verdict exchange_oem_item();
    Verdict import_table();

    // Virtual disks and their namespaces.
    Verdict vd_info();
    Verdict vd_config();
    Verdict set_vd_config();
    Verdict create_vd();
    Verdict delete_vd();
    Verdict import_vd();
    Verdict namespaces_of_vd();

    // Background activities.
    Verdict pd_activity();
    Verdict vd_activity();
    Verdict control_pd();
    Verdict control_vd();
    Verdict patrol_pd();
    Verdict patrol_vd();
    Verdict initialize_vd();
    Verdict rebuild_vd();
    Verdict synchronize_vd();
    Verdict migrate_vd();

    // Events and the debug console.
    Verdict event_status();
    Verdict event_page();
    Verdict console();
    Verdict console_status();
    Verdict console_config();
    Verdict set_console_config();

    // The words behind the request's code.
    [[nodiscard]] QRX_U16 argument() const { return controller.mailbox.words[2]; }

    // Hands the request's record to `act`; a request that is too short for one is refused.
    template <class Record, class Act>
    Verdict with(Act act) const
    {
        const auto record = wire::read<Record>(controller.mailbox.request);
        return record ? act(*record) : Verdict::kInvalidRequest;
    }

    template <class Record>
    Verdict answer(const Record& record) const
    {
        put(payload, 0, record);
        return Verdict::kGood;
    }

    // Answers a list request: a header, and the records of the ids from its start on, as many as are wanted and fit.
    // `record_of` gives the record of an id, or nothing where there is none; `absent` is the refusal when the first
    // id does not exist. Those behind it are taken as they come.
    template <class RecordOf>
    Verdict answer_list(Verdict absent, RecordOf record_of) const
    {
        constexpr QRX_U32 kIds = 0x10000;
        auto header = wire::read<RequestHeader>(controller.mailbox.request);
        if (!header) {
            return Verdict::kInvalidRequest;
        }
        if (header->numRequested == 0) {
            return Verdict::kInvalidParameter;
        }
        std::size_t end = sizeof(RequestHeader);
        header->numReturned = 0;
        QRX_U32 id = header->start;
        for (; id < kIds && header->numReturned < header->numRequested; ++id) {
            const auto record = record_of(id);
            if (!record && id == header->start) {
                return absent;
            }
            if (record) {
                if (!wire::write(payload, end, *record)) {
                    break;
                }
                end += sizeof(*record);
                ++header->numReturned;
            }
        }
        header->nextStart = static_cast<QRX_U16>(id);
        return answer(*header);
    }
};

}  // namespace qrx::sim
