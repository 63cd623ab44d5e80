// The event log that a host can read: a ring of text lines in the controller's flash.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "api/src/interface/wire/event.h"
#include "api/src/interface/wire/types.h"

namespace qrx::sim {

struct EventPage {
    std::string lines;  // each with its line feed

    friend bool operator==(const EventPage&, const EventPage&) = default;

    // Bytes that the lines take in the flash, where each begins at a multiple of 4.
    [[nodiscard]] std::size_t size() const;
};

struct EventRing {
    static constexpr QRX_U64 kSequences = 100000000;  // a sequence number has at most 8 digits
    static constexpr std::size_t kPageBytes = wire::kPageSize - kEventTextOffset;
    static constexpr QRX_U32 kMostHistory = 10000;

    QRX_U64 sequence = 0;          // of the latest event; the first has 1
    QRX_U8 page = 0;               // that the latest event is in
    std::vector<EventPage> pages;  // at most kEventPages; those at the end that were never written are left out

    friend bool operator==(const EventRing&, const EventRing&) = default;

    // Writes an event of `seconds` (from 1970 on, or from power-on while the clock is not set). Where its page is full
    // it goes to the next one, which is erased before.
    void add(QRX_U64 seconds, std::string_view message);
    // Lets `count` events of times gone by happen: media patrols of VD 0.
    void add_history(QRX_U32 count);
    // Puts the lines of a page into `text`, with zero bytes between and behind them.
    void put_page(std::size_t index, std::span<QRX_U8> text) const;
    // All lines, each with its line feed. They live as long as the pages stay as they are.
    [[nodiscard]] std::vector<std::string_view> newest_first() const;
};

// The message of an event: "VD" 3 "_CREATED" and the severity, "VD3_CREATED_NOTIFY".
[[nodiscard]] std::string event_message(QRX_U8 subject, QRX_U16 id, std::string_view what, QRX_U8 severity);

}  // namespace qrx::sim
