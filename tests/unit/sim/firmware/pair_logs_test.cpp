// The binary event ring and the debug console, as pair commands read them.
#include "api/src/interface/wire/dump.h"
#include "sim/firmware/binary_events.h"
#include "tests/unit/sim/firmware/pair.h"

namespace qrx::sim {

namespace {

// The fields of an event that is none of the empty ones.
NVME_Event_Item item(QRX_U16 event_class, QRX_U16 code, QRX_U32 time, QRX_U32 sequence, QRX_U16 id, QRX_U8 severity)
{
    NVME_Event_Item made{};
    made.Class = event_class;
    made.Code = code;
    made.TimeStamp = time;
    made.SequenceNo = sequence;
    made.DeviceID = id;
    made.Severity = severity;
    return made;
}

std::string item_of(std::string_view line)
{
    const auto read = event_item(line);
    return read ? raw(*read) : "damaged";
}

TEST(BinaryEvents, FieldsOfALine)
{
    EXPECT_EQ(item_of("[SEQ]07[TIME]100[MSG]NVMe_SHUTDOWN_WARNING\n"), raw(item(1, 1, 100, 7, 0, 1)));
    EXPECT_EQ(item_of("[SEQ]12[TIME]1767225600[MSG]PD65535_SETDOWN_CRITICAL\n"),
              raw(item(2, 2, 1767225600, 12, 65535, 2)));
    EXPECT_EQ(item_of("[SEQ]99999999[TIME]4294967295[MSG]NS31_DETACH_NOTIFY\n"),
              raw(item(4, 5, 4294967295, 99999999, 31, 0)));
    NVME_Event_Item progress = item(3, 25, 5, 4, 3, 0);
    progress.Params[0] = 40;
    progress.ParamCount = 1;
    EXPECT_EQ(item_of("[SEQ]04[TIME]05[MSG]VD3_REBUILD_PROGRESS_40%_NOTIFY\n"), raw(progress));
}

TEST(BinaryEvents, TheSameWordHasTheCodeOfItsClass)
{
    EXPECT_EQ(item_of("[SEQ]01[TIME]02[MSG]PD3_ONLINE_NOTIFY\n"), raw(item(2, 0, 2, 1, 3, 0)));
    EXPECT_EQ(item_of("[SEQ]01[TIME]02[MSG]VD3_ONLINE_NOTIFY\n"), raw(item(3, 1, 2, 1, 3, 0)));
    EXPECT_EQ(item_of("[SEQ]01[TIME]02[MSG]NS3_ONLINE_NOTIFY\n"), raw(item(4, 1, 2, 1, 3, 0)));
}

TEST(BinaryEvents, AWordWithoutACode)
{
    EXPECT_EQ(item_of("[SEQ]01[TIME]02[MSG]NVMe_W_IMG_SUCCEEDED_NOTIFY\n"), raw(item(1, 0xFFFF, 2, 1, 0, 0)));
    EXPECT_EQ(item_of("[SEQ]01[TIME]02[MSG]VD3_INIT_PROGRESS_%_NOTIFY\n"), raw(item(3, 0xFFFF, 2, 1, 3, 0)));
    EXPECT_EQ(item_of("[SEQ]01[TIME]02[MSG]VD3_CREATED!_NOTIFY\n"), raw(item(3, 0xFFFF, 2, 1, 3, 0)));
    EXPECT_EQ(item_of("[SEQ]01[TIME]02[MSG]VD3_NOTIFY\n"), raw(item(3, 0xFFFF, 2, 1, 3, 0)));
}

TEST(BinaryEvents, ADamagedLineIsNoEvent)
{
    for (const char* const line :
         {"", "\n", "[SEQ]01[TIME]02[MSG]NVMe_SHUTDOWN_WARNING", "SEQ]01[TIME]02[MSG]NVMe_SHUTDOWN_WARNING\n",
          "[SEQ]x[TIME]02[MSG]NVMe_SHUTDOWN_WARNING\n", "[SEQ]01[TIME]4294967296[MSG]NVMe_SHUTDOWN_WARNING\n",
          "[SEQ]01[TIME]02NVMe_SHUTDOWN_WARNING\n", "[SEQ]01[TIME]02[MSG]XY_SHUTDOWN_WARNING\n",
          "[SEQ]01[TIME]02[MSG]VD_CREATED_NOTIFY\n", "[SEQ]01[TIME]02[MSG]VD65536_CREATED_NOTIFY\n",
          "[SEQ]01[TIME]02[MSG]VD3_CREATED\n"}) {
        EXPECT_EQ(item_of(line), "damaged") << line;
    }
}

EventRing ring_of(unsigned events)
{
    EventRing ring;
    for (unsigned i = 0; i < events; ++i) {
        ring.add(1000 + i, "PD7_TIMEOUT_WARNING");
    }
    return ring;
}

// The sequence numbers of a page's places, with "-" for one that is erased.
std::string sequences(const EventRing& ring, QRX_U8 page)
{
    const NVME_Page_EventRequest answer = event_page(ring, page);
    EXPECT_EQ(answer.Page, page);
    const std::string erased(sizeof(NVME_Event_Item), '\xFF');
    std::string list;
    for (const NVME_Event_Item& event : answer.Events) {
        list += (list.empty() ? "" : " ") + (raw(event) == erased ? "-" : std::to_string(event.SequenceNo));
    }
    return list;
}

// "<first> <first + 1> ..." of `count` numbers, followed by as many "-" as fill a page.
std::string run(unsigned first, unsigned count)
{
    std::string list;
    for (unsigned i = 0; i < 63; ++i) {
        list += (i == 0 ? "" : " ") + (i < count ? std::to_string(first + i) : "-");
    }
    return list;
}

std::string status_of(const EventRing& ring)
{
    return raw(event_status(ring));
}

TEST(BinaryEvents, AFreshRingIsErased)
{
    EXPECT_EQ(status_of(EventRing()), std::string("\x10\x3E\0\0\x40\0\0\0", 8));
    for (QRX_U8 page = 0; page < 16; ++page) {
        EXPECT_EQ(sequences(EventRing(), page), run(0, 0));
    }
}

TEST(BinaryEvents, EventsFillOnePageAfterTheOther)
{
    EXPECT_EQ(status_of(ring_of(61)), std::string("\x10\x3E\0\x3D\x40\0\0\0", 8));
    EXPECT_EQ(status_of(ring_of(62)), std::string("\x10\x3E\1\0\x40\0\0\0", 8));
    EXPECT_EQ(sequences(ring_of(62), 0), run(1, 62));
    const EventRing ring = ring_of(65);
    EXPECT_EQ(status_of(ring), std::string("\x10\x3E\1\3\x40\0\0\0", 8));
    EXPECT_EQ(sequences(ring, 0), run(1, 62));
    EXPECT_EQ(sequences(ring, 1), run(63, 3));
    EXPECT_EQ(sequences(ring, 2), run(0, 0));
}

TEST(BinaryEvents, TheFirstEventOfAPageErasesWhatItHeld)
{
    const EventRing full = ring_of(16 * 62);
    EXPECT_EQ(status_of(full), std::string("\x10\x3E\0\0\x40\0\0\0", 8));
    EXPECT_EQ(sequences(full, 0), run(1, 62));
    EXPECT_EQ(sequences(full, 15), run(15 * 62 + 1, 62));
    const EventRing ring = ring_of(16 * 62 + 1);
    EXPECT_EQ(status_of(ring), std::string("\x10\x3E\0\1\x40\0\0\0", 8));
    EXPECT_EQ(sequences(ring, 0), run(993, 1));
    EXPECT_EQ(sequences(ring, 1), run(63, 62));
}

TEST(BinaryEvents, DamagedLinesTakeNoPlace)
{
    EventRing ring = ring_of(2);
    ring.pages[0].lines += "scratch\n";
    ring.add(9, "PD7_TIMEOUT_WARNING");
    EXPECT_EQ(sequences(ring, 0), run(1, 3));
}

// The sequence numbers that a reader meets, newest first: page by page back from the next event's place, without the
// pages that begin with an erased place.
std::string read_back(const EventRing& ring)
{
    const std::string erased(sizeof(NVME_Event_Item), '\xFF');
    const NVME_Event_Status status = event_status(ring);
    std::string list;
    for (unsigned step = 0; step < status.maxPage; ++step) {
        const unsigned page = (status.posEmptyPage + status.maxPage - step) % status.maxPage;
        const NVME_Page_EventRequest read = event_page(ring, static_cast<QRX_U8>(page));
        const std::size_t slots = step == 0 ? status.posEmptySlotInPage : status.slotPerPage;
        for (std::size_t slot = raw(read.Events[0]) == erased ? 0 : slots; slot > 0; --slot) {
            list += std::to_string(read.Events[slot - 1].SequenceNo) + " ";
        }
    }
    return list;
}

// "<last> <last - 1> ... <first> "
std::string countdown(unsigned last, unsigned first)
{
    std::string list;
    for (unsigned number = last; number >= first; --number) {
        list += std::to_string(number) + " ";
    }
    return list;
}

TEST(BinaryEvents, AreReadBackFromTheNewestToTheOldest)
{
    for (const unsigned events : {1U, 61U, 62U, 63U, 400U, 991U}) {
        EXPECT_EQ(read_back(ring_of(events)), countdown(events, 1));
    }
    for (const unsigned events : {992U, 993U}) {
        EXPECT_EQ(read_back(ring_of(events)), countdown(events, 63)) << "the oldest page is about to be erased, or is";
    }
}

TEST(BinaryEvents, AWrappedRingOfLongLinesIsReadWhole)
{
    for (const unsigned events : {1500U, 1984U}) {
        EventRing ring;
        for (unsigned i = 0; i < events; ++i) {
            ring.add(1767225600, "VD65535_A_WORD_OF_FORTY_EIGHT_LETTERS_ALL_NOTIFY");
        }
        const auto lines = static_cast<unsigned>(ring.newest_first().size());
        ASSERT_LT(lines, 992U - 62) << "pages of text are full before 62 events are in them";
        EXPECT_EQ(read_back(ring), countdown(events, events - lines + 1));
        EXPECT_EQ(sequences(ring, 0), run(events - lines + 1, 62));
    }
}

TEST(BinaryEvents, AnEventWhoseNumberIsLostTakesNoPlace)
{
    EventRing ring = ring_of(70);
    std::string& lines = ring.pages[0].lines;
    lines.replace(0, lines.find('\n'), "[SEQ]0");
    EXPECT_EQ(read_back(ring), countdown(70, 2));
    EXPECT_EQ(sequences(ring, 0), run(2, 62));
    EXPECT_EQ(sequences(ring, 1), run(64, 7));
    EXPECT_EQ(status_of(ring), std::string("\x10\x3E\1\7\x40\0\0\0", 8));
    ring.add(9, "PD7_TIMEOUT_WARNING");
    EXPECT_EQ(read_back(ring), countdown(71, 2));
}

TEST(BinaryEvents, ARingOfDamagedLinesIsErased)
{
    EventRing ring;
    ring.pages = {EventPage{"?\n?\n"}};
    ring.sequence = 70;
    EXPECT_EQ(status_of(ring), status_of(EventRing()));
    EXPECT_EQ(read_back(ring), "");
}

class PairLogs : public Pair {
protected:
    PairLogs() { rig_ = Rig("lab"); }

    // Reads page `page`: the answer, whole.
    NVME_Page_EventRequest page(QRX_U8 page)
    {
        std::vector<QRX_U8> request(4080, 0xFF);
        request[0] = page;
        ask({254, 4}, 0, request);
        NVME_Page_EventRequest answer{};
        std::memcpy(&answer, rig_.page.data() + 8, 4088);
        return answer;
    }
    void switch_console(QRX_U8 on, QRX_U8 cmd_status = 0)
    {
        ask({254, 3}, cmd_status, bytes_of(NVME_Debug_Dump_Config{on, {}}));
    }
    std::string console()
    {
        std::string text;
        for (;;) {
            ask({254, 0}, 0);
            const auto length = rig_.at<QRX_U32>(8);
            EXPECT_LE(length, 4080U);
            if (length == 0) {
                return text;
            }
            text += rig_.bytes(16, length);
        }
    }
};

TEST_F(PairLogs, EventsAreThoseOfTheTextRing)
{
    rig_.machine().advance(std::chrono::seconds(61));
    NVME_Create_VD create{};
    create.RAIDMode = 1;
    create.MemberCount = 2;
    create.StripeBlockSize = 256;
    create.InitializationOption = 3;
    create.PDIDs[0] = 2;
    create.PDIDs[1] = 3;
    ask({226, 3}, 0, bytes_of(create));
    EXPECT_EQ(rig_.controller().ring.pages.at(0).lines,
              "[SEQ]01[TIME]61[MSG]VD0_CREATED_NOTIFY\n[SEQ]02[TIME]61[MSG]NS1_CREATED_NOTIFY\n");
    ask({228, 1}, 0);
    EXPECT_EQ(rig_.bytes(8, 8), std::string("\x10\x3E\0\2\x40\0\0\0", 8));
    EXPECT_TRUE(rig_.all_from(16, 0));
    const NVME_Page_EventRequest first = page(0);
    EXPECT_EQ(first.Page, 0);
    EXPECT_EQ(raw(first.Events[0]), raw(item(3, 4, 61, 1, 0, 0)));
    EXPECT_EQ(raw(first.Events[1]), raw(item(4, 2, 61, 2, 1, 0)));
    EXPECT_EQ(raw(first.Events[2]), std::string(64, '\xFF'));
    EXPECT_EQ(raw(first.Events[62]), std::string(64, '\xFF'));
    EXPECT_EQ(page(15).Page, 15);
}

TEST_F(PairLogs, APageThatIsNoneIsRefused)
{
    ask({254, 4}, 4, std::vector<QRX_U8>{16});
    ask({254, 4}, 3);
}

TEST_F(PairLogs, TheConsoleIsTheDebugLog)
{
    ask({254, 2}, 0);
    EXPECT_EQ(rig_.bytes(8, 8), std::string(8, '\0'));
    ask({254, 0}, 3);
    switch_console(1);
    ask({254, 2}, 0);
    EXPECT_EQ(rig_.bytes(8, 8), std::string("\1\0\0\0\0\0\0\0", 8));
    ask({254, 1}, 0);
    EXPECT_EQ(rig_.bytes(8, 8), std::string("\0\0\1\0\0\0\0\0", 8));
    EXPECT_EQ(console(), rig_.controller().spi_log.lines);
    EXPECT_EQ(console(), "[      0.000] controller has its debug console switched on\n") << "from its beginning";
    switch_console(2, 4);
    ask({254, 3}, 3, std::vector<QRX_U8>(7));
    switch_console(0);
    ask({254, 0}, 3);
}

TEST_F(PairLogs, TheConsoleComesInPages)
{
    switch_console(1);
    for (int i = 0; i < 300; ++i) {
        ask({224, 2}, 0,
            std::vector<QRX_U8>{1, static_cast<QRX_U8>(i % 2 == 0 ? 0 : 2), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    }
    ask({254, 0}, 0);
    EXPECT_EQ(rig_.at<QRX_U32>(8), 4080U);
    EXPECT_EQ(rig_.at<QRX_U32>(12), 0U);
    EXPECT_EQ(rig_.bytes(16, 4080), rig_.controller().spi_log.lines.substr(0, 4080));
    ask({254, 1}, 0);
    EXPECT_EQ(console(), rig_.controller().spi_log.lines) << "the status begins anew";
}

TEST_F(PairLogs, WithoutTheFeatureThereIsNoConsole)
{
    rig_ = Rig::of_text(R"({"controllers": [{"adapter": {"features": ["raid"]}}]})");
    ask({254, 0}, 5);
    ask({254, 1}, 5);
    ask({254, 2}, 5);
    switch_console(1, 5);
    ask({228, 1}, 0);
}

}  // namespace

}  // namespace qrx::sim
