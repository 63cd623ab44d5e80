// The event ring in its older, binary form: the same events, told from the text lines whenever a host asks.
#pragma once

#include <optional>
#include <string_view>

#include "api/src/interface/wire/event.h"
#include "sim/firmware/event_ring.h"

namespace qrx::sim {

// Events of a page. One place less than a page has room for: the last one stays erased, so that a reader which counts
// down from "slots per page" meets nothing there.
inline constexpr QRX_U8 kEventSlots = kPageEventsMax - 1;

// The code of an event for which the binary form has none.
inline constexpr QRX_U16 kEventWithoutCode = 0xFFFF;

// The event of a line of the ring, or nothing when the line is damaged.
[[nodiscard]] std::optional<NVME_Event_Item> event_item(std::string_view line);

[[nodiscard]] NVME_Event_Status event_status(const EventRing& ring);

// One of the kEventPages pages. Places without an event are erased (0xFF).
[[nodiscard]] NVME_Page_EventRequest event_page(const EventRing& ring, QRX_U8 page);

}  // namespace qrx::sim
