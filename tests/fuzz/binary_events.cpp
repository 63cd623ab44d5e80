// Fuzzes the walk through the binary event ring: a ring of any geometry, and pages that may hold anything.
//
// The input is how many events are wanted, with a bit for the debug lines, and then the controller's speech: the state
// of the ring, and page after page.
#include "cli/Functions/event/event.h"
#include "cli/Functions/event/event_walk.h"
#include "tests/fuzz/fuzzed_controller.h"

namespace {

// Every stop of a walk lies inside the ring, and inside the page.
void checkWalk(const NVME_Event_Status& ring)
{
    const auto walk = qrx::EventWalk::of(ring);
    for (unsigned step = 0; walk && step < walk->pages(); ++step) {
        const qrx::EventWalk::Stop stop = walk->stop(step);
        if (stop.page >= ring.maxPage || stop.slots > kPageEventsMax) {
            std::abort();
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::uint8_t kDebug = 0x80;
    qrx::fuzz::FuzzedController controller({data, size});
    const std::uint8_t wanted = controller.nextByte();
    if (const auto ring = qrx::wire::read<NVME_Event_Status>({data, size}, 2)) {
        checkWalk(*ring);
    }
    dbg_enable = (wanted & kDebug) != 0;
    (void)getPageEvent(wanted & static_cast<std::uint8_t>(~kDebug));
    return 0;
}
