// `event` in its older form.
#include "cli/Functions/event/event.h"

#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include "api/src/interface/event.h"
#include "api/src/interface/globals.h"
#include "cli/Functions/event/event_walk.h"
#include "cli/Functions/simple/simple_event.h"
#include "cli/Public/event_words.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/one_option.h"

const char event_help[] =
    "\n"
    "event [-c <count>] [-h] \n"
    R"(
Options:
    -c,  --count <count>
         If count is zero, it will show all events.
         If count is not zero, it will show latest specific events.
    -h,  --help
Examples:
    event -c 0
    Get all events from current NVMe Controller.

    event -c 20
    Get latest 20 events from current NVMe Controller.

)";

namespace {

constexpr char kLetters[] = "c:\x01:h";
constexpr option kLong[] = {
    {"count", required_argument, nullptr, 'c'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

// The bytes of an event, in rows of 16.
void dump(const NVME_Event_Item& item)
{
    constexpr std::size_t kRow = 16;
    std::array<QRX_U8, sizeof(item)> bytes{};
    std::memcpy(bytes.data(), &item, sizeof(item));
    for (std::size_t row = 0; row < bytes.size(); row += kRow) {
        qrx::print("\n%04x:", static_cast<unsigned>(row));
        std::string text;
        for (std::size_t i = row; i < row + kRow; ++i) {
            qrx::print("%02x ", bytes[i]);
            text += bytes[i] >= ' ' && bytes[i] <= '~' ? static_cast<char>(bytes[i]) : '.';
        }
        qrx::print("%10s%s", "", text.c_str());
    }
    qrx::print("\nEnd list\n");
}

// Shows the events of a page, newest first, and counts them. False when no more are wanted.
bool showPage(const NVME_Page_EventRequest& page, std::size_t slots, QRX_U16 wanted, unsigned& shown)
{
    while (slots-- != 0) {
        const NVME_Event_Item& item = page.Events[slots];
        if (qrx::isEmptySlot(item)) {
            continue;
        }
        if (dbg_enable != 0) {
            dump(item);
        }
        qx_generate_new_events(item);
        ++shown;
        if (shown == wanted) {
            return false;
        }
    }
    return true;
}

}  // namespace

int getPageEvent(QRX_U16 event_count)
{
    NVME_Event_Status ring{};
    if (const QRX_U32 status = QRX_Event_Status(gCurrentAdapter, &ring)) {
        return qrx::refuse(static_cast<int>(status), "\nUnable to get event status\n");
    }
    const std::optional<qrx::EventWalk> walk = qrx::EventWalk::of(ring);
    if (!walk) {
        return qrx::refuse(1, "event: the ring of %u pages is said to be written at page %u\n", ring.maxPage,
                           ring.posEmptyPage);
    }
    NVME_Page_EventRequest page{};
    unsigned shown = 0;
    bool more = true;
    for (unsigned step = 0; more && step < walk->pages(); ++step) {
        const qrx::EventWalk::Stop stop = walk->stop(step);
        if (stop.slots == 0) {
            continue;
        }
        std::memset(&page, 0xFF, sizeof(page));  // what does not come is empty
        page.Page = stop.page;
        if (const QRX_U32 status = QRX_Page_Event(gCurrentAdapter, &page)) {
            return qrx::refuse(static_cast<int>(status), "\nUnable to get page event from adapter %d\n",
                               gCurrentAdapter);
        }
        more = !qrx::isWritten(page) || showPage(page, stop.slots, event_count, shown);
    }
    if (shown == 0) {
        qrx::print("No events\n");
    } else {
        qrx::print("Total # of event: %d\n", static_cast<int>(shown));
    }
    return 0;
}

void qx_generate_new_events(const NVME_Event_Item& param)
{
    const std::unique_ptr<NVME_SA_Evt_Item> item(new (std::nothrow) NVME_SA_Evt_Item{});
    if (item == nullptr) {
        qrx::print("Malloc buffer fail\n");
        return;
    }
    if (_eventParser(qrx::eventText(param).data(), item.get()) != 0) {
        _showEvt(item.get());
    }
}

int doEvent(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    QRX_U16 count = 0;
    const auto read = [&] {
        return qrx::take(qrx::readNumber(scan.word()), count) ||
               qrx::complain("-c : invalid number of event '%s'\n", scan.word());
    };
    if (const auto result = qrx::readOneOption(scan, pCmdInfo, 'c', read, {0, 1})) {
        return *result;
    }
    return getPageEvent(count);
}
