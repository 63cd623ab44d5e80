#include "sim/firmware/event_list.h"

#include <algorithm>
#include <utility>

namespace qrx::sim {

std::string Event::sentence() const
{
    switch (subject) {
    case kPd:
        return "PD " + std::to_string(id) + " " + text;
    case kVd:
        return "VD " + std::to_string(id) + " " + text;
    case kNs:
        return "NS " + std::to_string(id) + " " + text;
    default:
        return "controller " + text;
    }
}

void EventList::add(const Clock& clock, Event::Subject subject, QRX_U16 id, std::string text)
{
    if (entries.size() >= kEntries) {
        entries.erase(entries.begin());
    }
    text.resize(std::min(text.size(), kTextMax));
    entries.push_back({++count, clock.uptime, clock.milliseconds, subject, id, std::move(text)});
}

}  // namespace qrx::sim
