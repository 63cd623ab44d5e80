// Pair commands about the controller itself and its drives.
#include "sim/firmware/pair_answers.h"

namespace qrx::sim {

Verdict Controller::PairAnswers::adapter_info()
{
    return answer(controller.adapter_record());
}

Verdict Controller::PairAnswers::adapter_config()
{
    return answer(controller.config.record());
}

Verdict Controller::PairAnswers::set_adapter_config()
{
    return with<NVME_Adapter_Config>(
        [&](const auto& record) { return controller.set_config(record.AutoRebuildOn, record.BGARate); });
}

Verdict Controller::PairAnswers::set_led()
{
    return with<NVME_LED>([&](const auto& record) {
        return controller.set_led(kPcieEndPoint, QRX_U32{record.status} << 16U | record.id);
    });
}

Verdict Controller::PairAnswers::pd_info()
{
    return answer_list(Verdict::kInvalidPd, [&](QRX_U32 id) {
        const Drive* const drive = controller.reachable_drive(id);
        return drive != nullptr ? std::optional(controller.pd_record(*drive)) : std::nullopt;
    });
}

Verdict Controller::PairAnswers::exchange_oem_item()
{
    const std::span<const QRX_U8> request = controller.mailbox.request;
    return with<QRXItem_OEM_Data>([&](const auto& head) {
        if (request.size() != sizeof(head) + head.cbSize) {
            return Verdict::kInvalidRequest;
        }
        if (controller.reachable_drive(head.ID) == nullptr) {
            return Verdict::kInvalidPd;
        }
        std::copy(request.begin(), request.end(), payload.begin());
        controller.tell(Event::kPd, head.ID, "got an OEM item of " + std::to_string(head.cbSize) + " bytes");
        return Verdict::kGood;
    });
}

Verdict Controller::PairAnswers::import_table()
{
    return with<RequestHeader>([&](const auto& header) { return controller.import_table(header.start, kAllTables); });
}

}  // namespace qrx::sim
