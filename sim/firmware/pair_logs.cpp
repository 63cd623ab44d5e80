// Pair commands about the binary event ring and the debug console.
#include "api/src/interface/wire/dump.h"
#include "sim/firmware/binary_events.h"
#include "sim/firmware/pair_answers.h"

namespace qrx::sim {

Verdict Controller::PairAnswers::event_status()
{
    return answer(sim::event_status(controller.ring));
}

Verdict Controller::PairAnswers::event_page()
{
    return with<QRX_U8>([&](QRX_U8 page) {
        return page < kEventPages ? answer(sim::event_page(controller.ring, page)) : Verdict::kInvalidParameter;
    });
}

Verdict Controller::PairAnswers::console()
{
    return controller.put_log(controller.spi_console(), payload);
}

Verdict Controller::PairAnswers::console_status()
{
    const Verdict verdict = controller.begin_log(controller.spi_console());
    return verdict == Verdict::kGood ? answer(NVME_Debug_Dump_Status{SpiLog::kBytes, {}}) : verdict;
}

Verdict Controller::PairAnswers::console_config()
{
    if ((controller.adapter.features & kFeatureDump) == 0) {
        return Verdict::kNotSupported;
    }
    return answer(NVME_Debug_Dump_Config{controller.settings.debug_dump ? QRX_U8{1} : QRX_U8{0}, {}});
}

Verdict Controller::PairAnswers::set_console_config()
{
    return with<NVME_Debug_Dump_Config>(
        [&](const auto& record) { return controller.switch_log(controller.spi_console(), record.dumpOn); });
}

}  // namespace qrx::sim
