// The way through the binary ring of events.
#include "cli/Functions/event/event_walk.h"

#include <algorithm>

namespace qrx {

namespace {

constexpr QRX_U32 kErased = 0xFFFFFFFF;

}  // namespace

std::optional<EventWalk> EventWalk::of(const NVME_Event_Status& ring)
{
    return ring.posEmptyPage < ring.maxPage || ring.maxPage == 0 ? std::optional(EventWalk(ring)) : std::nullopt;
}

EventWalk::Stop EventWalk::stop(unsigned step) const
{
    const unsigned page = (ring_.posEmptyPage + pages() - step) % pages();
    // Behind the newest page, whose next free slot is known, the slot of the number slotPerPage is looked at too.
    const std::size_t slots = step == 0 ? std::size_t{ring_.posEmptySlotInPage} : std::size_t{ring_.slotPerPage} + 1;
    return {static_cast<QRX_U8>(page), std::min(slots, kPageEventsMax)};
}

bool isWritten(const NVME_Page_EventRequest& page)
{
    return page.Events[0].SequenceNo != kErased && page.Events[0].TimeStamp != kErased;
}

bool isEmptySlot(const NVME_Event_Item& item)
{
    return item.SequenceNo == kErased && item.TimeStamp == kErased;
}

}  // namespace qrx
