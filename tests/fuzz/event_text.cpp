// Fuzzes the text of a binary event: 64 bytes that may hold anything become a line of printable letters, which fits.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "api/src/interface/globals.h"
#include "cli/Functions/event/event.h"
#include "cli/Functions/simple/simple_event.h"
#include "cli/Public/event_words.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FILE* const nowhere = std::fopen("/dev/null", "w");
    static const bool quiet = std::freopen("/dev/null", "w", stdout) != nullptr;
    const auto item = qrx::wire::read<NVME_Event_Item>({data, size});
    if (!quiet || nowhere == nullptr || !item) {
        return 0;
    }
    stream = nowhere;
    const qrx::EventText text = qrx::eventText(*item);
    const std::size_t length = strnlen(text.data(), text.size());
    bool good = length <= qrx::kEventTextMax && std::strncmp(text.data(), spi_seq, std::strlen(spi_seq)) == 0;
    for (std::size_t i = 0; i < length; ++i) {
        good = good && text[i] > ' ' && text[i] <= '~';
    }
    // The line is one of the log: of a number that has room in it nothing is refused.
    NVME_SA_Evt_Item parsed{};
    if (!good || (item->SequenceNo < 100000000 && _eventParser(text.data(), &parsed) != 1)) {
        std::abort();
    }
    qx_generate_new_events(*item);
    return 0;
}
