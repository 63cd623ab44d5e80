// `event`: the ring as it is read, its lines, their order, and what is shown of them.
#include <array>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "cli/Functions/simple/event_ring.h"
#include "cli/Functions/simple/simple_event.h"
#include "tests/unit/cli/storage_fixture.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

constexpr char kPage[] =
    "Description:For getting event from NVMe Controller.\n"
    "event <-c event count>[-h] \n"
    "Options:\n"
    "    -c,--count <event count>\n"
    "        If count is zero, it will show all events\n"
    "        If count is not zero, it will show latest specific events.\n"
    "    -h, --help\n"
    "Examples:\n"
    "    event -c 0 \n"
    "    Get total events from current NVMe Controller.\n"
    "    event -c 20\n"
    "    Get latest 20 events from current NVMe Controller.\n"
    "\n";

std::string line(const std::string& seq, const std::string& time, const std::string& msg)
{
    return "[SEQ]" + seq + "[TIME]" + time + "[MSG]" + msg + "\n";
}

// The event `n`, as the ring has it and as it is shown.
std::string lineOf(unsigned n)
{
    return line(std::to_string(n), std::to_string(1000 + n), "VD" + std::to_string(n) + "_CREATED_NOTIFY");
}

std::string shown(unsigned n)
{
    return "Seq:" + std::to_string(n) + "\nTime:" + std::to_string(1000 + n) +
           " seconds from the boot time.\nMessage:VD" + std::to_string(n) + "_CREATED_NOTIFY\n";
}

// Those from `first` to `last`, rising or falling.
std::string lines(unsigned first, unsigned last)
{
    return lineOf(first) + (first == last ? "" : lines(first < last ? first + 1 : first - 1, last));
}

std::string shown(unsigned first, unsigned last)
{
    return shown(first) + (first == last ? "" : shown(first < last ? first + 1 : first - 1, last));
}

// A page of the ring: what its head holds means nothing.
Bytes pageOf(const std::string& text)
{
    Bytes page(40 + text.size(), '[');
    std::copy(text.begin(), text.end(), page.begin() + 40);
    return page;
}

std::string total(unsigned count)
{
    return "Total events: " + std::to_string(count) + "\n";
}

class EventCommand : public StorageTest {
protected:
    // Expects the reads of the whole ring, answered with these pages and empty ones behind them.
    void ring(const std::vector<std::string>& pages)
    {
        for (unsigned index = 0; index < 16; ++index) {
            auto command = pageRead(index);
            machine.expect(std::move(command).data(index < pages.size() ? pageOf(pages[index]) : Bytes(40)));
        }
    }
    // `event -c 0` of such a ring.
    Outcome all(const std::vector<std::string>& pages)
    {
        ring(pages);
        return command({"event", "-c", "0"});
    }
    static Command pageRead(unsigned index)
    {
        return page(0x4FE, 0x7401).word(10, 1023).word(13, index * 4096).word(14, 4096);
    }
};

TEST_F(EventCommand, Help)
{
    EXPECT_EQ(command({"event"}), (Outcome{1, kPage}));
    for (auto words : {Line{"event", "-h"}, Line{"event", "--help"}, Line{"event", "-c", "5", "-h"}}) {
        EXPECT_EQ(command(words), (Outcome{0, kPage}));
    }
    EXPECT_EQ(command({"event", "-z"}), (Outcome{1, "", "", "event: illegal option -- z\n"}));
    EXPECT_EQ(command({"event", "-c"}), (Outcome{1, "", "", "event: option requires an argument -- c\n"}));
}

TEST_F(EventCommand, ACountThatIsNoNumberIsRefused)
{
    EXPECT_EQ(command({"event", "-c", "x"}), (Outcome{1, "-c : invalid count 'x'.\n"}));
    EXPECT_EQ(command({"event", "-c", "-1"}), (Outcome{1, "-c : invalid count '-1'.\n"}));
    EXPECT_EQ(command({"event", "--count=0x10"}), (Outcome{1, "-c : invalid count '0x10'.\n"}));
    EXPECT_EQ(command({"event", "-c", "x", "-h"}), (Outcome{1, "-c : invalid count 'x'.\n"}));
}

TEST_F(EventCommand, ALongCountWithoutItsValueIsRefused)
{
    EXPECT_EQ(command({"event", "--count", "5"}), (Outcome{1, "-c : invalid count ''.\n"}));
}

TEST_F(EventCommand, WithoutACountTheWholeRingIsShown)
{
    ring({lines(1, 3)});
    EXPECT_EQ(command({"event", "--output", "x"}), (Outcome{0, shown(3, 1), total(3)}));
    ring({lines(1, 3)});
    EXPECT_EQ(command({"event", "stray"}), (Outcome{0, shown(3, 1), total(3)}));
}

TEST_F(EventCommand, ARingThatHasNotWrapped)
{
    EXPECT_EQ(all({lines(1, 7), lines(8, 20)}), (Outcome{0, shown(20, 1), total(20)}));
    ring({lines(1, 7), lines(8, 20)});
    EXPECT_EQ(command({"event", "-c", "5"}), (Outcome{0, shown(20, 16), total(5)}));
    ring({lines(1, 7), lines(8, 20)});
    EXPECT_EQ(command({"event", "--count=5"}), (Outcome{0, shown(20, 16), total(5)}));
    ring({lines(1, 20)});
    EXPECT_EQ(command({"event", "-c", "3", "-c", "1"}), (Outcome{0, shown(20), total(1)}));
}

TEST_F(EventCommand, ACountBeyondWhatThereIsShowsAll)
{
    for (const char* count : {"1000", "20", "99999999999", ""}) {
        ring({lines(1, 20)});
        EXPECT_EQ(command({"event", "-c", count}), (Outcome{0, shown(20, 1), total(20)}));
    }
}

TEST_F(EventCommand, ARingThatHasWrapped)
{
    const std::vector<std::string> pages{lines(50, 70), lines(71, 99), lines(10, 49)};
    EXPECT_EQ(all(pages), (Outcome{0, shown(99, 50) + shown(49, 10), total(90)}));
    ring(pages);
    EXPECT_EQ(command({"event", "-c", "50"}), (Outcome{0, shown(99, 50), total(50)}));
    ring(pages);
    EXPECT_EQ(command({"event", "-c", "52"}), (Outcome{0, shown(99, 50) + shown(49, 48), total(52)}));
    ring(pages);
    EXPECT_EQ(command({"event", "-c", "4"}), (Outcome{0, shown(99, 96), total(4)}));
}

TEST_F(EventCommand, ARingThatWrapsBehindItsFirstEvent)
{
    EXPECT_EQ(all({lineOf(9), lines(3, 8)}), (Outcome{0, shown(9) + shown(8, 3), total(7)}));
    EXPECT_EQ(all({lines(5, 9) + lineOf(1)}), (Outcome{0, shown(9, 5) + shown(1), total(6)}));
    EXPECT_EQ(all({lineOf(7)}), (Outcome{0, shown(7), total(1)}));
}

// Only the fall that ends the run in front of the last one counts: what lies before a third run is shown behind it.
TEST_F(EventCommand, OfMoreThanTwoRunsTheEndNearestToTheLastOneCounts)
{
    EXPECT_EQ(all({lines(30, 32) + lines(20, 22) + lines(10, 12)}),
              (Outcome{0, shown(22, 20) + shown(32, 30) + shown(12, 10), total(9)}));
}

TEST_F(EventCommand, EqualNumbersStayInThePageOrder)
{
    EXPECT_EQ(all({line("5", "1", "A") + line("5", "2", "B")}),
              (Outcome{0,
                       "Seq:5\nTime:2 seconds from the boot time.\nMessage:B\n"
                       "Seq:5\nTime:1 seconds from the boot time.\nMessage:A\n",
                       total(2)}));
}

TEST_F(EventCommand, ANumberIsWhatItsTextBeginsWith)
{
    EXPECT_EQ(all({line(" 12", "0", "A") + line("-5", "0", "B") + line("1x", "0", "C") + line("x", "0", "D")}),
              (Outcome{0,
                       "Seq:1x\nTime:0 seconds from the boot time.\nMessage:C\n"
                       "Seq:-5\nTime:0 seconds from the boot time.\nMessage:B\n"
                       "Seq: 12\nTime:0 seconds from the boot time.\nMessage:A\n"
                       "Seq:x\nTime:0 seconds from the boot time.\nMessage:D\n",
                       total(4)}));
}

class EventTime : public EventCommand {
protected:
    EventTime()
    {
        setenv("TZ", "XYZ-2", 1);  // two hours east of Greenwich
        tzset();
    }
    ~EventTime() override
    {
        unsetenv("TZ");
        tzset();
    }
    static std::string timeOf(QRX_U32 seconds)
    {
        std::array<char, 40> text{};
        _showTime(seconds, text);
        return text.data();
    }
};

TEST_F(EventTime, IsCountedFromTheStartOrFrom1970)
{
    EXPECT_EQ(timeOf(0), "0 seconds from the boot time.");
    EXPECT_EQ(timeOf(1262304000), "1262304000 seconds from the boot time.");
    EXPECT_EQ(timeOf(1262304001), "2010-01-01 02:00:01");
    EXPECT_EQ(timeOf(0xFFFFFFFF), "2106-02-07 08:28:15");
}

TEST_F(EventTime, IsShownWithTheEvent)
{
    EXPECT_EQ(all({line("1", "1262304000", "A") + line("2", "1262304001", "B") + line("3", "99999999999", "C")}),
              (Outcome{0,
                       "Seq:3\nTime:2106-02-07 08:28:15\nMessage:C\n"
                       "Seq:2\nTime:2010-01-01 02:00:01\nMessage:B\n"
                       "Seq:1\nTime:1262304000 seconds from the boot time.\nMessage:A\n",
                       total(3)}));
}

TEST_F(EventTime, IsCutWhereThereIsNoRoom)
{
    std::array<char, 5> text{};
    _showTime(7, text);
    EXPECT_STREQ(text.data(), "7 se");
    _showTime(1262304001, text);
    EXPECT_STREQ(text.data(), "");
}

TEST_F(EventCommand, AFullFieldIsTakenAndALongerOneIsRefused)
{
    const std::string fits(48, 'm');
    EXPECT_EQ(all({line("12345678", "1", fits) + line("123456789", "2", "x") + line("3", "3", fits + "n")}),
              (Outcome{0, "Seq:12345678\nTime:1 seconds from the boot time.\nMessage:" + fits + "\n",
                       "Command format has error: [SEQ]123456789[TIME]2[MSG]x\n"
                       "Command format has error: [SEQ]3[TIME]3[MSG]" +
                           fits + "n\n" + total(1)}));
}

TEST_F(EventCommand, OfARefusedLineNothingIsLeftInTheNextOne)
{
    EXPECT_EQ(
        all({line("12345678", "9", std::string(49, 'm')) + line("2", "1", "x")}),
        (Outcome{0, "Seq:2\nTime:1 seconds from the boot time.\nMessage:x\n",
                 "Command format has error: [SEQ]12345678[TIME]9[MSG]" + std::string(49, 'm') + "\n" + total(1)}));
}

TEST_F(EventCommand, ALineThatLacksAMarkerIsRefusedAndLaterOnesAreRead)
{
    EXPECT_EQ(all({"[SEQ]1[TIME]2\n[SEQ]1[MSG]x\n[TIME]1[MSG]x\nnoise\n" + lineOf(5)}),
              (Outcome{0, shown(5),
                       "Command format has error: [SEQ]1[TIME]2\n"
                       "Command format has error: [SEQ]1[MSG]x\n"
                       "Command format has error: [TIME]1[MSG]x\n"
                       "Command format has error: noise\n" +
                           total(1)}));
}

TEST_F(EventCommand, MarkersInAnotherOrderAreRefused)
{
    EXPECT_EQ(all({"[TIME]2[SEQ]1[MSG]x\n[SEQ]1[MSG]x[TIME]2\n[MSG]x[TIME]2[SEQ]1\n" + lineOf(5)}),
              (Outcome{0, shown(5),
                       "Command format has error: [TIME]2[SEQ]1[MSG]x\n"
                       "Command format has error: [SEQ]1[MSG]x[TIME]2\n"
                       "Command format has error: [MSG]x[TIME]2[SEQ]1\n" +
                           total(1)}));
}

TEST_F(EventCommand, MarkersMayStandAnywhereInALine)
{
    EXPECT_EQ(all({"junk[SEQ]4[TIME]1004[MSG]a[SEQ]b[MSG]c\n"}),
              (Outcome{0, "Seq:4\nTime:1004 seconds from the boot time.\nMessage:a[SEQ]b[MSG]c\n", total(1)}));
}

TEST_F(EventCommand, ZeroBytesBehindALineAreSkipped)
{
    const std::string zero(1, '\0');
    for (const std::size_t count : {1U, 2U, 3U, 100U}) {
        EXPECT_EQ(all({lineOf(1) + std::string(count, '\0') + lineOf(2) + lineOf(3)}),
                  (Outcome{0, shown(3, 1), total(3)}));
    }
    // They count as a blank in front of the next line.
    EXPECT_EQ(all({lineOf(1) + zero + zero + "noise\n" + lineOf(2)}),
              (Outcome{0, shown(2, 1), "Command format has error:  noise\n" + total(2)}));
}

TEST_F(EventCommand, AZeroByteAnywhereElseEndsThePage)
{
    const std::string zero(1, '\0');
    EXPECT_EQ(all({lineOf(1) + line("2", "1002", "VD2_CREATED_NOTIFY" + zero + "rest") + lineOf(3), lineOf(4)}),
              (Outcome{0, shown(4) + shown(2) + shown(1), total(3)}));
    EXPECT_EQ(all({zero + lineOf(1), lineOf(4)}), (Outcome{0, shown(4), total(1)}));
}

TEST_F(EventCommand, ATokenOfOneCharacterEndsThePage)
{
    EXPECT_EQ(all({lineOf(1) + "x\n" + lineOf(2), lineOf(4)}), (Outcome{0, shown(4) + shown(1), total(2)}));
    EXPECT_EQ(all({lineOf(1) + "xy\n" + lineOf(2)}),
              (Outcome{0, shown(2, 1), "Command format has error: xy\n" + total(2)}));
    EXPECT_EQ(all({lineOf(1) + std::string("\0\n", 2) + lineOf(2), lineOf(4)}),
              (Outcome{0, shown(4) + shown(1), total(2)}));
    EXPECT_EQ(all({"\n\n" + lineOf(1) + "\n\n\n" + lineOf(2)}), (Outcome{0, shown(2, 1), total(2)}));
}

TEST_F(EventCommand, APageMayBeFullToItsLastByte)
{
    std::string text = lineOf(1);
    while (text.size() + 64 < 4056) {
        text += line("2", "0", std::string(40, 'x'));
    }
    std::string end = "[SEQ]99[TIME]0[MSG]";
    end += std::string(4056 - text.size() - end.size() - 1, 'e') + "\n";
    ASSERT_LE(end.size(), 19U + 48 + 1);
    const Outcome outcome = all({text + end});
    EXPECT_EQ(outcome.stream.substr(0, 7), "Seq:99\n");
    // Without a line feed at the end of the page too, and nothing of the next page runs into it.
    end.back() = 'e';
    EXPECT_EQ(all({text + end, lineOf(100)}).stream.substr(0, 8), "Seq:100\n");
}

TEST_F(EventCommand, ControlCharactersDoNotReachTheTerminal)
{
    EXPECT_EQ(all({line("\x1B[2", "1", "a\x07\xFF\tb") + "bad\x1B[31m\r\n"}),
              (Outcome{0, "Seq:?[2\nTime:1 seconds from the boot time.\nMessage:a???b\n",
                       "Command format has error: bad?[31m?\n" + total(1)}));
}

TEST_F(EventCommand, AnEmptyRing)
{
    EXPECT_EQ(all({}), (Outcome{0, "", "No events\n"}));
    EXPECT_EQ(all({"x", std::string(4056, '\n')}), (Outcome{0, "", "No events\n"}));
}

TEST_F(EventCommand, APageThatCannotBeReadIsPassedOver)
{
    for (unsigned index = 0; index < 16; ++index) {
        auto read = pageRead(index);
        machine.expect(index == 1 || index == 15 ? std::move(read).status(0x704)
                                                 : std::move(read).data(index < 3 ? pageOf(lineOf(index)) : Bytes(40)));
    }
    EXPECT_EQ(command({"event", "-c", "0"}),
              (Outcome{0, "\n event request fail\n\n event request fail\n" + shown(2) + shown(0),
                       "Invalid parameter (Status Code: 0x704)\nInvalid parameter (Status Code: 0x704)\n" + total(2)}));
}

TEST_F(EventCommand, WithoutAnyEventTheLastPageDecides)
{
    std::string complaints;
    std::string statuses;
    for (unsigned index = 0; index < 16; ++index) {
        machine.expect(pageRead(index).status(index + 1));
        complaints += "\n event request fail\n";
    }
    const Outcome outcome = command({"event", "-c", "0"});
    EXPECT_EQ(outcome.result, 16);
    EXPECT_EQ(outcome.stream, complaints);
    EXPECT_EQ(outcome.out.substr(outcome.out.size() - 10), "No events\n");

    for (unsigned index = 0; index < 16; ++index) {
        auto read = pageRead(index);
        machine.expect(index == 15 ? std::move(read).data(Bytes(40)) : std::move(read).status(2));
    }
    EXPECT_EQ(command({"event", "-c", "0"}).result, 0);

    for (unsigned index = 0; index < 16; ++index) {
        machine.expect(pageRead(index).error(EIO));
    }
    EXPECT_EQ(command({"event", "-c", "0"}).result, -1);
}

TEST_F(EventCommand, TheDebugLinesShowTheOffsetOfThePageBefore)
{
    dbg_enable = 1;
    ring({});
    std::string expected;
    for (unsigned index = 0; index < 16; ++index) {
        char text[128];
        std::snprintf(text, sizeof(text),
                      "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x000004fe\nCDW[13]: 0x%08x\n"
                      "CDW[14]: 0x00001000\n",
                      index < 2 ? 0 : (index - 1) * 4096);
        expected += text;
    }
    EXPECT_EQ(command({"event", "-c", "0"}), (Outcome{0, expected, "No events\n"}));
}

TEST_F(EventCommand, WithoutMemoryNothingIsSent)
{
    Libc libc;
    libc.failAllocation(1);
    const Outcome outcome = outcomeOf([] { return getPageEventSA(0); });
    EXPECT_EQ(outcome, (Outcome{1, "event: not enough memory\n"}));
}

TEST(EventParser, StoresTheFieldsOfALine)
{
    NVME_SA_Evt_Item item;
    std::memset(&item, 0xEE, sizeof(item));
    EXPECT_EQ(_eventParser("[SEQ]07[TIME]100[MSG]NVMe_SHUTDOWN_WARNING", &item), 1);
    EXPECT_EQ(std::string(item.seq, 8), std::string("07\0\0\0\0\0\0", 8));
    EXPECT_EQ(item.time, 100U);
    EXPECT_EQ(std::string(item.msg, 48), "NVMe_SHUTDOWN_WARNING" + std::string(27, '\0'));
}

TEST(EventParser, OfALongMessageNumberAndTimeAreStoredAlready)
{
    NVME_SA_Evt_Item item{};
    const std::string text = "[SEQ]7[TIME]100[MSG]" + std::string(49, 'x');
    EXPECT_EQ(outcomeOf([&] { return _eventParser(text, &item); }),
              (Outcome{0, "", "Command format has error: " + text + "\n"}));
    EXPECT_EQ(std::string(item.seq, 2), std::string("7\0", 2));
    EXPECT_EQ(item.time, 100U);
    EXPECT_EQ(item.msg[0], '\0');
}

TEST(EventRing, HoldsNoMoreThanItSays)
{
    qrx::EventRing ring;
    ASSERT_TRUE(ring.isUsable());
    const Bytes page = pageOf([] {
        std::string text;
        while (text.size() + 17 <= 4056) {
            text += "[SEQ][TIME][MSG]\n";
        }
        return text;
    }());
    for (int i = 0; i < 400; ++i) {
        Bytes copy = page;
        ring.addPage(copy);
    }
    EXPECT_EQ(ring.count(), 65536U);
    EXPECT_EQ(qrx::EventRing::kItemsMax * sizeof(NVME_SA_Evt_Item), 0x400000U);
}

TEST(EventRing, APageShorterThanItsHeadHoldsNothing)
{
    qrx::EventRing ring;
    for (const std::size_t size : {0U, 1U, 39U, 40U}) {
        Bytes page(size, '\n');
        ring.addPage(page);
    }
    EXPECT_EQ(ring.count(), 0U);
    EXPECT_EQ(ring.show(0), 0U);
}

}  // namespace
