#include "sim/firmware/binary_events.h"

#include <charconv>
#include <cstring>
#include <vector>

#include "api/src/interface/wire/event_text.h"

namespace qrx::sim {

namespace {

// Takes `word` from the front of `text`.
bool take(std::string_view& text, std::string_view word)
{
    const bool there = text.starts_with(word);
    text.remove_prefix(there ? word.size() : 0);
    return there;
}

// Takes a decimal number from the front of `text`.
template <class Number>
bool take_number(std::string_view& text, Number& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return error == std::errc();
}

// Takes class word and id. The adapter comes without an id.
bool take_subject(std::string_view& text, NVME_Event_Item& item)
{
    for (std::size_t event_class = QRX_NVME_EVT_CLASS_ADAPTER; event_class < kEventClassWords.size(); ++event_class) {
        if (take(text, kEventClassWords[event_class])) {
            item.Class = static_cast<QRX_U16>(event_class);
            return event_class == QRX_NVME_EVT_CLASS_ADAPTER || take_number(text, item.DeviceID);
        }
    }
    return false;
}

// Takes the severity from the end of `text`.
bool take_severity(std::string_view& text, NVME_Event_Item& item)
{
    for (std::size_t severity = 0; severity < kEventSeverityWords.size(); ++severity) {
        const std::string_view word = kEventSeverityWords[severity];
        if (text.ends_with(word)) {
            text.remove_suffix(word.size());
            item.Severity = static_cast<QRX_U8>(severity);
            return true;
        }
    }
    return false;
}

void put_code(std::string_view word, NVME_Event_Item& item)
{
    item.Code = kEventWithoutCode;
    for (const EventWord& known : kEventWords) {
        std::string_view rest = word;
        if (known.event_class != item.Class || !take(rest, known.suffix)) {
            continue;
        }
        QRX_U32 percentage = 0;
        if (known.progress && take_number(rest, percentage) && rest == spi_vd_percentage) {
            item.Code = known.code;
            item.Params[0] = percentage;
            item.ParamCount = 1;
        } else if (!known.progress && rest.empty()) {
            item.Code = known.code;
        }
    }
}

constexpr std::size_t kPlaces = std::size_t{kEventSlots} * kEventPages;

struct BinaryRing {
    std::vector<NVME_Event_Item> newest_first;  // in the places before `next`
    std::size_t next = 0;                       // place of the next event
};

BinaryRing binary_ring(const EventRing& ring)
{
    BinaryRing made;
    made.next = static_cast<std::size_t>(ring.sequence % kPlaces);
    // The first event of a page erases what the page held.
    const std::size_t erased = made.next % kEventSlots == 0 ? 0 : kEventSlots - made.next % kEventSlots;
    const std::size_t room = kPlaces - erased;
    for (const std::string_view line : ring.newest_first()) {
        if (const std::optional<NVME_Event_Item> item = event_item(line)) {
            made.newest_first.push_back(*item);
            if (made.newest_first.size() == room) {
                return made;
            }
        }
    }
    // A page that begins with an erased place is empty to a reader. So the oldest event has the first place of a page,
    // however many of those before it the text ring has lost.
    made.next = made.newest_first.size();
    return made;
}

}  // namespace

std::optional<NVME_Event_Item> event_item(std::string_view line)
{
    NVME_Event_Item item{};
    const bool headed = take(line, spi_seq) && take_number(line, item.SequenceNo) && take(line, spi_time) &&
                        take_number(line, item.TimeStamp) && take(line, spi_msg);
    if (!headed || !line.ends_with('\n')) {
        return std::nullopt;
    }
    line.remove_suffix(1);
    if (!take_subject(line, item) || !take_severity(line, item)) {
        return std::nullopt;
    }
    put_code(line, item);
    return item;
}

NVME_Event_Status event_status(const EventRing& ring)
{
    const std::size_t next = binary_ring(ring).next;
    NVME_Event_Status status{};
    status.maxPage = kEventPages;
    status.slotPerPage = kEventSlots;
    status.posEmptyPage = static_cast<QRX_U8>(next / kEventSlots);
    status.posEmptySlotInPage = static_cast<QRX_U8>(next % kEventSlots);
    status.sizeOfEventItem = sizeof(NVME_Event_Item);
    return status;
}

NVME_Page_EventRequest event_page(const EventRing& ring, QRX_U8 page)
{
    NVME_Page_EventRequest answer{};
    answer.Page = page;
    std::memset(answer.Events, 0xFF, sizeof(answer.Events));
    const BinaryRing binary = binary_ring(ring);
    std::size_t place = binary.next;
    for (const NVME_Event_Item& item : binary.newest_first) {
        place = (place + kPlaces - 1) % kPlaces;
        if (place / kEventSlots == page) {
            answer.Events[place % kEventSlots] = item;
        }
    }
    return answer;
}

}  // namespace qrx::sim
