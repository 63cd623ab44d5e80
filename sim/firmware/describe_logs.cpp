// The text form of the event ring and of the debug console.
#include "sim/firmware/describe.h"

namespace qrx::sim {

template <class Io>
void describe(Io& io, EventRing& ring)
{
    io.number("sequence", ring.sequence, 0, EventRing::kSequences - 1);
    io.number("page", ring.page, 0, kEventPages - 1);
    io.list("pages", ring.pages, kEventPages, [](auto& inner, EventPage& page) {
        inner.lines("lines", page.lines);
        inner.check(page.size() <= EventRing::kPageBytes, "lines",
                    "take more than " + std::to_string(EventRing::kPageBytes) + " bytes");
    });
    if (Io::kReads) {
        QRX_U32 history = 0;
        io.number("history", history, 0, EventRing::kMostHistory);
        ring.add_history(history);
    }
}

template <class Io>
void describe(Io& io, SpiLog& log)
{
    io.lines("lines", log.lines);
    io.check(log.lines.size() <= SpiLog::kBytes, "lines",
             "take more than " + std::to_string(SpiLog::kBytes) + " bytes");
    io.number("read_until", log.read_until, 0, SpiLog::kBytes);
}

template void describe(JsonReader&, EventRing&);
template void describe(JsonWriter&, EventRing&);
template void describe(JsonReader&, SpiLog&);
template void describe(JsonWriter&, SpiLog&);

}  // namespace qrx::sim
