// What has happened to a controller, newest last: the source of all that tells about it later.
#pragma once

#include <string>
#include <vector>

#include "api/src/interface/wire/types.h"
#include "sim/firmware/clock.h"

namespace qrx::sim {

struct Event {
    enum Subject : QRX_U8 { kAdapter = 1, kPd = 2, kVd = 3, kNs = 4 };

    QRX_U64 number = 1;  // the first is 1
    QRX_U64 uptime = 0;  // simulated milliseconds since power-on
    QRX_U64 time = 0;    // milliseconds since the epoch, as the controller's clock had it
    QRX_U8 subject = kAdapter;
    QRX_U16 id = 0;    // of the subject; 0 for the adapter
    std::string text;  // what happened to it: "created as RAID1 over PD 0, 1"

    friend bool operator==(const Event&, const Event&) = default;

    // Subject and text: "VD 0 created as RAID1 over PD 0, 1".
    [[nodiscard]] std::string sentence() const;
};

struct EventList {
    static constexpr std::size_t kEntries = 256;
    static constexpr std::size_t kTextMax = 240;

    QRX_U64 count = 0;           // of all that ever happened
    std::vector<Event> entries;  // the last of them, at most kEntries

    friend bool operator==(const EventList&, const EventList&) = default;

    void add(const Clock& clock, Event::Subject subject, QRX_U16 id, std::string text);
};

}  // namespace qrx::sim
