// The way through the binary ring of events, from the newest page to the oldest, whatever the controller says of it.
#pragma once

#include <cstddef>
#include <optional>

#include "api/src/interface/wire/event.h"

namespace qrx {

class EventWalk {
public:
    // A page, and of how many of its slots the last is the newest. No slots: the page is left out.
    struct Stop {
        QRX_U8 page = 0;
        std::size_t slots = 0;  // at most kPageEventsMax

        friend bool operator==(const Stop&, const Stop&) = default;
    };

    // Nothing for a ring that is written at a page that it does not have.
    static std::optional<EventWalk> of(const NVME_Event_Status& ring);

    [[nodiscard]] unsigned pages() const { return ring_.maxPage; }
    // The page of `step`, from 0 on: that which is being written, then backward, and around at the ring's start.
    [[nodiscard]] Stop stop(unsigned step) const;

private:
    explicit EventWalk(const NVME_Event_Status& ring) : ring_(ring) {}

    NVME_Event_Status ring_;
};

// Whether anything was ever written to a page.
bool isWritten(const NVME_Page_EventRequest& page);
bool isEmptySlot(const NVME_Event_Item& item);

}  // namespace qrx
