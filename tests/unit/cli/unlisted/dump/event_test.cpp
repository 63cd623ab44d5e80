// `event` in its older form: the walk through the binary ring, and the text of each event.
#include "cli/Functions/event/event.h"

#include <cstring>
#include <string>
#include <vector>

#include "cli/Functions/event/event_walk.h"
#include "cli/Public/event_words.h"
#include "tests/unit/api/pair_script.h"
#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

const std::string kPage = std::string("Description:For getting event from NVMe Controller.") + event_help;

NVME_Event_Item event(QRX_U16 ofClass, QRX_U16 code, QRX_U16 device, QRX_U8 severity, QRX_U32 sequence = 7,
                      QRX_U32 time = 100)
{
    NVME_Event_Item item{};
    item.Class = ofClass;
    item.Code = code;
    item.TimeStamp = time;
    item.SequenceNo = sequence;
    item.DeviceID = device;
    item.Severity = severity;
    return item;
}

// The event `n`, and how it is shown.
NVME_Event_Item numbered(unsigned n)
{
    return event(QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_CREATED, static_cast<QRX_U16>(n), 0, n, 1000 + n);
}

std::string shown(unsigned n)
{
    return "Seq:" + std::string(n < 10 ? "0" : "") + std::to_string(n) + "\nTime:" + std::to_string(1000 + n) +
           " seconds from the boot time.\nMessage:VD" + std::to_string(n) + "_CREATED_NOTIFY\n";
}

std::string shown(const std::vector<unsigned>& numbers)
{
    std::string text;
    for (const unsigned n : numbers) {
        text += shown(n);
    }
    return text;
}

std::string total(unsigned count)
{
    return "Total # of event: " + std::to_string(count) + "\n";
}

class EventCommand : public StorageTest {
protected:
    // The ring's state: pages, slots, and the place of the next event.
    void ring(QRX_U8 pages, QRX_U8 slots, QRX_U8 emptyPage, QRX_U8 emptySlot)
    {
        pair.expect({228, 1}, {}, {pages, slots, emptyPage, emptySlot, 64, 0xEE, 0xEE, 0xEE});
    }
    // Page `index` is asked for, with a record that holds nothing else; it has these slots, the rest empty.
    void page(QRX_U8 index, const std::vector<NVME_Event_Item>& items, QRX_U8 verdict = 0)
    {
        NVME_Page_EventRequest request;
        std::memset(&request, 0xFF, sizeof(request));
        request.Page = index;
        Bytes sent = bytesOf(request);
        sent.resize(4080);
        std::copy(items.begin(), items.end(), request.Events);
        Bytes answer = bytesOf(request);
        answer.resize(4088);
        pair.expect({254, 4}, sent, answer, verdict);
    }
    static NVME_Event_Item empty()
    {
        NVME_Event_Item item;
        std::memset(&item, 0xFF, sizeof(item));
        return item;
    }

    PairScript pair{machine, 1};
};

TEST_F(EventCommand, Help)
{
    EXPECT_EQ(unlisted({"event"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"event", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(std::string(event_help).substr(0, 34), "\nevent [-c <count>] [-h] \n\nOptions");
    EXPECT_EQ(unlisted({"event", "-z"}), (Outcome{0, "", "", "event: illegal option -- z\n"}));
}

TEST_F(EventCommand, TheCountIsNeededOnceAndANumber)
{
    EXPECT_EQ(unlisted({"event", "--output", "x"}), (Outcome{0, "event: option -c is required\n"}));
    EXPECT_EQ(unlisted({"event", "-c", "x"}), (Outcome{1, "-c : invalid number of event 'x'\n"}));
    EXPECT_EQ(unlisted({"event", "-c", "-1"}), (Outcome{1, "-c : invalid number of event '-1'\n"}));
    EXPECT_EQ(unlisted({"event", "-c", "1", "-c", "2"}), (Outcome{1, "Duplicated option specified.\n"}));
}

TEST_F(EventCommand, AStateThatCannotBeReadEndsTheCommand)
{
    pair.expect({228, 1}, {}, Bytes(8), 9);
    EXPECT_EQ(unlisted({"event", "-c", "0"}), (Outcome{9, "\nUnable to get event status\n"}));
}

TEST_F(EventCommand, TheNewestPageIsReadFromTheSlotBeforeTheEmptyOneAndTheOthersFromTheirEnd)
{
    ring(4, 3, 1, 2);
    page(1, {numbered(21), numbered(22), numbered(23)});
    page(0, {numbered(11), numbered(12), numbered(13), numbered(14), numbered(15)});
    page(3, {numbered(1), numbered(2), empty(), empty()});
    page(2, {empty()});
    // What lies behind the empty slot is not shown; of another page the slot of the number slotPerPage is.
    EXPECT_EQ(unlisted({"event", "-c", "0"}), (Outcome{0, shown({22, 21, 14, 13, 12, 11, 2, 1}) + total(8)}));
}

TEST_F(EventCommand, APageWithoutAnEventIsLeftOutAtTheStart)
{
    ring(2, 2, 1, 0);
    page(0, {numbered(1), numbered(2)});
    EXPECT_EQ(unlisted({"event", "-c", "0"}), (Outcome{0, shown({2, 1}) + total(2)}));
}

TEST_F(EventCommand, TheWalkEndsWithTheCount)
{
    ring(3, 2, 2, 1);
    page(2, {numbered(5)});
    page(1, {numbered(3), numbered(4)});
    EXPECT_EQ(unlisted({"event", "-c", "2"}), (Outcome{0, shown({5, 4}) + total(2)}));
    ring(3, 2, 2, 1);
    page(2, {numbered(5)});
    EXPECT_EQ(unlisted({"event", "--count=1"}), (Outcome{0, shown(5) + total(1)}));
    ring(2, 2, 0, 1);
    page(0, {numbered(5)});
    page(1, {numbered(3), numbered(4)});
    EXPECT_EQ(unlisted({"event", "-c", "9"}), (Outcome{0, shown({5, 4, 3}) + total(3)}));
}

TEST_F(EventCommand, TheCountHasSixteenBits)
{
    for (const char* count : {"65538", "2"}) {
        ring(1, 3, 0, 3);
        page(0, {numbered(1), numbered(2), numbered(3)});
        EXPECT_EQ(unlisted({"event", "-c", count}), (Outcome{0, shown({3, 2}) + total(2)}));
    }
    for (const char* count : {"65536", "0", ""}) {
        ring(1, 3, 0, 3);
        page(0, {numbered(1), numbered(2), numbered(3)});
        EXPECT_EQ(unlisted({"event", "-c", count}), (Outcome{0, shown({3, 2, 1}) + total(3)}));
    }
}

TEST_F(EventCommand, EmptySlotsArePassedOverAndDoNotCount)
{
    NVME_Event_Item noNumber = numbered(2);
    noNumber.SequenceNo = 0xFFFFFFFF;
    NVME_Event_Item noTime = numbered(3);
    noTime.TimeStamp = 0xFFFFFFFF;
    ring(1, 5, 0, 5);
    page(0, {numbered(1), empty(), noNumber, empty(), noTime});
    EXPECT_EQ(unlisted({"event", "-c", "3"}),
              (Outcome{0,
                       "Seq:03\nTime:2106-02-07 06:28:15\nMessage:VD3_CREATED_NOTIFY\n"
                       "Seq:-1\nTime:1002 seconds from the boot time.\nMessage:VD2_CREATED_NOTIFY\n" +
                           shown(1) + total(3)}));
}

TEST_F(EventCommand, APageIsPassedOverByItsFirstSlot)
{
    NVME_Event_Item noNumber = numbered(2);
    noNumber.SequenceNo = 0xFFFFFFFF;
    NVME_Event_Item noTime = numbered(3);
    noTime.TimeStamp = 0xFFFFFFFF;
    ring(3, 2, 2, 2);
    page(2, {noNumber, numbered(5)});
    page(1, {noTime, numbered(4)});
    page(0, {empty(), numbered(3)});
    EXPECT_EQ(unlisted({"event", "-c", "0"}), (Outcome{0, "No events\n"}));
}

TEST_F(EventCommand, APageThatDoesNotComeIsEmpty)
{
    ring(2, 2, 1, 2);
    page(1, {numbered(1), numbered(2)}, 9);
    page(0, {numbered(3), numbered(4)});
    EXPECT_EQ(unlisted({"event", "-c", "0"}), (Outcome{0, shown({4, 3}) + total(2)}));
}

TEST_F(EventCommand, ARingWithoutPagesHasNoEvents)
{
    ring(0, 62, 0, 5);
    EXPECT_EQ(unlisted({"event", "-c", "0"}), (Outcome{0, "No events\n"}));
}

TEST_F(EventCommand, APlaceOutsideTheRingIsRefused)
{
    ring(4, 62, 4, 1);
    EXPECT_EQ(unlisted({"event", "-c", "0"}),
              (Outcome{1, "event: the ring of 4 pages is said to be written at page 4\n"}));
}

TEST_F(EventCommand, SlotsOutsideThePageAreNotFollowed)
{
    std::vector<NVME_Event_Item> full;
    std::vector<unsigned> numbers;
    for (unsigned n = 1; n <= 63; ++n) {
        full.push_back(numbered(n));
        numbers.insert(numbers.begin(), n);
    }
    for (const auto& [slots, emptySlot] :
         std::vector<std::pair<QRX_U8, QRX_U8>>{{255, 255}, {63, 64}, {63, 63}, {62, 255}}) {
        ring(2, slots, 1, emptySlot);
        page(1, full);
        page(0, full);
        EXPECT_EQ(unlisted({"event", "-c", "0"}), (Outcome{0, shown(numbers) + shown(numbers) + total(126)}));
    }
}

TEST_F(EventCommand, UnderDebugEachRecordIsDumpedFirst)
{
    NVME_Event_Item item = numbered(7);
    item.Reserved[24] = '~' + 1;
    item.Reserved[25] = ' ';
    item.Reserved[26] = '~';
    dbg_enable = 1;
    ring(1, 1, 0, 1);
    page(0, {item});
    EXPECT_EQ(unlisted({"event", "-c", "0"}),
              (Outcome{0,
                       "\n0000:03 00 04 00 ef 03 00 00 07 00 00 00 07 00 00 00           ................"
                       "\n0010:00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00           ................"
                       "\n0020:00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00           ................"
                       "\n0030:00 00 00 00 00 00 00 00 00 00 00 00 00 7f 20 7e           .............. ~"
                       "\nEnd list\n" +
                           shown(7) + total(1)}));
}

TEST_F(EventCommand, ATextThatDoesNotFitIsRefusedAndCounts)
{
    ring(1, 2, 0, 2);
    page(0, {numbered(1), event(QRX_NVME_EVT_CLASS_PD, 0, 3, 0, 123456789, 5)});
    EXPECT_EQ(
        unlisted({"event", "-c", "0"}),
        (Outcome{0, shown(1) + total(2), "Command format has error: [SEQ]123456789[TIME]05[MSG]PD3_ONLINE_NOTIFY\n"}));
}

TEST_F(EventCommand, WithoutMemoryForAnItemItIsTold)
{
    Libc libc;
    libc.failAllocation(1);
    EXPECT_EQ(outcomeOf([] {
                  qx_generate_new_events(numbered(1));
                  return 0;
              }),
              (Outcome{0, "Malloc buffer fail\n"}));
}

std::string textOf(const NVME_Event_Item& item)
{
    return qrx::eventText(item).data();
}

TEST(EventText, AnAdapterHasNoId)
{
    EXPECT_EQ(textOf(event(QRX_NVME_EVT_CLASS_ADAPTER, 1, 9, 1)), "[SEQ]07[TIME]100[MSG]NVMe_SHUTDOWN_WARNING");
}

TEST(EventText, AProgressHasItsPercentage)
{
    for (const auto& [code, word] :
         std::vector<std::pair<QRX_U16, std::string>>{{15, "INIT"}, {25, "REBUILD"}, {35, "MP"}}) {
        NVME_Event_Item item = event(QRX_NVME_EVT_CLASS_VD, code, 3, 0);
        item.Params[0] = 40;
        EXPECT_EQ(textOf(item), "[SEQ]07[TIME]100[MSG]VD3_" + word + "_PROGRESS_40%_NOTIFY");
    }
}

TEST(EventText, EveryCodeHasItsSuffix)
{
    struct Row {
        QRX_U16 ofClass;
        QRX_U16 code;
        const char* text;
    };
    const std::vector<Row> rows{{1, 0, "NVMe_BGA_CHANGE"},
                                {1, 1, "NVMe_SHUTDOWN"},
                                {1, 8, "NVMe_AUTOREBUILD_OFF"},
                                {1, 9, "NVMe_AUTOREBUILD_ON"},
                                {2, 0, "PD3_ONLINE"},
                                {2, 1, "PD3_OFFLINE"},
                                {2, 2, "PD3_SETDOWN"},
                                {2, 3, "PD3_TIMEOUT"},
                                {2, 4, "PD3_RW_ERROR"},
                                {2, 10, "PD3_REBUILD_TARGETTOOSMALL"},
                                {3, 0, "VD3_OFFLINE"},
                                {3, 1, "VD3_ONLINE"},
                                {3, 2, "VD3_DEGRADED"},
                                {3, 4, "VD3_CREATED"},
                                {3, 5, "VD3_DELETE"},
                                {3, 7, "VD3_IMPORT_COMPLETE"},
                                {3, 10, "VD3_INIT_START"},
                                {3, 13, "VD3_INIT_ABORT"},
                                {3, 14, "VD3_INIT_COMPLETE"},
                                {3, 15, "VD3_INIT_PROGRESS_0%"},
                                {3, 16, "VD3_INIT_TERMINATED"},
                                {3, 20, "VD3_REBUILD_START"},
                                {3, 23, "VD3_REBUILD_ABORT"},
                                {3, 24, "VD3_REBUILD_COMPLETE"},
                                {3, 25, "VD3_REBUILD_PROGRESS_0%"},
                                {3, 26, "VD3_REBUILD_TERMINATED"},
                                {3, 30, "VD3_MP_START"},
                                {3, 33, "VD3_MP_ABORT"},
                                {3, 34, "VD3_MP_COMPLETE"},
                                {3, 35, "VD3_MP_PROGRESS_0%"},
                                {3, 36, "VD3_MP_TERMINATED"},
                                {4, 0, "NS3_OFFLINE"},
                                {4, 1, "NS3_ONLINE"},
                                {4, 2, "NS3_CREATED"},
                                {4, 3, "NS3_DELETE"},
                                {4, 4, "NS3_ATTACH"},
                                {4, 5, "NS3_DETACH"}};
    std::size_t next = 0;
    for (QRX_U16 ofClass = 1; ofClass <= 4; ++ofClass) {
        const std::vector<std::string> words{"", "NVMe", "PD3", "VD3", "NS3"};
        for (QRX_U16 code = 0; code < 300; ++code) {
            const bool known = next < rows.size() && rows[next].ofClass == ofClass && rows[next].code == code;
            EXPECT_EQ(textOf(event(ofClass, code, 3, 2)),
                      "[SEQ]07[TIME]100[MSG]" + (known ? rows[next].text : words[ofClass]) + "_CRITICAL");
            next += known ? 1 : 0;
        }
    }
    EXPECT_EQ(next, rows.size());
}

TEST(EventText, AnUnknownCodeLeavesClassIdAndSeverity)
{
    EXPECT_EQ(textOf(event(QRX_NVME_EVT_CLASS_NS, 0x1234, 65535, 2)), "[SEQ]07[TIME]100[MSG]NS65535_CRITICAL");
}

TEST(EventText, AnUnknownClassOrSeverityAddsNothing)
{
    for (const QRX_U16 ofClass : std::vector<QRX_U16>{0, 5, 6, 0xFFFF}) {
        EXPECT_EQ(textOf(event(ofClass, 0, 3, 0)), "[SEQ]07[TIME]100[MSG]_NOTIFY");
    }
    for (const QRX_U8 severity : Bytes{3, 255}) {
        EXPECT_EQ(textOf(event(QRX_NVME_EVT_CLASS_PD, 0, 3, severity)), "[SEQ]07[TIME]100[MSG]PD3_ONLINE");
    }
}

TEST(EventText, NumberAndTimeHaveTwoDigitsAndASign)
{
    EXPECT_EQ(textOf(event(1, 1, 0, 0, 0, 0)), "[SEQ]00[TIME]00[MSG]NVMe_SHUTDOWN_NOTIFY");
    EXPECT_EQ(textOf(event(1, 1, 0, 0, 0x7FFFFFFF, 0x80000000)),
              "[SEQ]2147483647[TIME]-2147483648[MSG]NVMe_SHUTDOWN_NOTIFY");
}

TEST(EventText, IsCutAtSixtyFourLetters)
{
    NVME_Event_Item item =
        event(QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_REBUILD_PROGRESS, 65535, 2, 0x80000000, 0x80000000);
    item.Params[0] = 0xFFFFFFFF;
    EXPECT_EQ(textOf(item), "[SEQ]-2147483648[TIME]-2147483648[MSG]VD65535_REBUILD_PROGRESS_4");
    EXPECT_EQ(textOf(item).size(), 64U);
    EXPECT_EQ(qrx::eventText(item).back(), '\0');
}

TEST(EventDescriptions, AreInBrackets)
{
    EXPECT_STREQ(getSeverityDesc(0), "[INFO]");
    EXPECT_STREQ(getSeverityDesc(1), "[WARN]");
    EXPECT_STREQ(getSeverityDesc(2), "[CRIT]");
    EXPECT_STREQ(getSeverityDesc(3), "[UNKNOWN]");
    EXPECT_STREQ(getClassDesc(1), "[ADAPTER]");
    EXPECT_STREQ(getClassDesc(2), "[PD]");
    EXPECT_STREQ(getClassDesc(3), "[VD]");
    EXPECT_STREQ(getClassDesc(4), "[NS]");
    EXPECT_STREQ(getClassDesc(5), "[UNKNOWN]");
    EXPECT_STREQ(getEventDesc(3, 4), "virtual disk %d is created");
}

TEST(EventWalk, GoesBackwardAndAround)
{
    const NVME_Event_Status ring{.maxPage = 3, .slotPerPage = 9, .posEmptyPage = 1, .posEmptySlotInPage = 4};
    const auto walk = qrx::EventWalk::of(ring);
    ASSERT_TRUE(walk);
    using Stop = qrx::EventWalk::Stop;
    EXPECT_EQ(walk->stop(0), (Stop{1, 4}));
    EXPECT_EQ(walk->stop(1), (Stop{0, 10}));
    EXPECT_EQ(walk->stop(2), (Stop{2, 10}));
}

}  // namespace
