// The events of a controller's ring: parsed page by page, and put into the order in which they happened.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <span>

#include "api/src/interface/wire/event.h"
#include "api/src/interface/wire/types.h"

namespace qrx {

class EventRing {
public:
    static constexpr std::size_t kItemsMax = 65536;

    EventRing();

    // False when there was no memory for the events.
    [[nodiscard]] bool isUsable() const { return items_ != nullptr; }
    [[nodiscard]] std::size_t count() const { return count_; }

    // Parses the lines of a page, up to the first token of less than 2 characters or a zero byte within a line, and
    // keeps the good ones. Changes zero bytes of `page` into blanks. The ring must be usable.
    void addPage(std::span<QRX_U8> page);

    // Shows the latest `wanted` events, newest first; all of them for 0, or when there are fewer. Returns how many it
    // meant to show: more than it did where damaged lines leave the order in doubt.
    [[nodiscard]] std::size_t show(std::size_t wanted) const;

private:
    struct Free {
        void operator()(NVME_SA_Evt_Item* items) const { std::free(items); }
    };

    [[nodiscard]] std::size_t endOfNewerRun() const;

    std::unique_ptr<NVME_SA_Evt_Item[], Free> items_;  // kItemsMax zeroed ones
    std::size_t count_ = 0;
};

}  // namespace qrx
