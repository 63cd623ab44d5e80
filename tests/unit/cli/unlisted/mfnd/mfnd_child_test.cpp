// `mfnd-event`, `mfnd-child-ctrl` and `mfnd-child-ctrl-log-page`: child controllers at work.
#include "cli/Functions/smart/smart.h"
#include "tests/unit/cli/unlisted/mfnd/mfnd_fixture.h"

namespace {

using namespace qrx::test;

const std::string kEventPage = helpOf(":For getting MFND event log.", mfnd_event_help);
const std::string kControlPage = helpOf(":For MFND child controller control", mfnd_child_ctrl_help);
const std::string kLogPage = helpOf(":For MFND child controller control get log page", mfnd_child_ctrl_log_page_help);

class MfndEvent : public MfndTest {
protected:
    static Command readLog() { return Command::admin(2, 0, {0x03FF00D0}).receives(4096).carries(Bytes(4096)).on(1); }
    // The log with 0xEE where there is nothing to look at.
    static Bytes log(QRX_U8 told, const std::vector<Bytes>& events)
    {
        Bytes page(4096, 0xEE);
        page[0] = told;
        for (std::size_t i = 0; i < events.size(); ++i) {
            std::copy(events[i].begin(), events[i].end(), page.begin() + static_cast<long>(16 + 512 * i));
        }
        return page;
    }
    static Bytes event(QRX_U8 child, QRX_U8 page, QRX_U32 flags)
    {
        Bytes bytes(16, 0xDD);
        bytes[0] = child;
        bytes[1] = page;
        putNumber(bytes, 4, 4, flags);
        return bytes;
    }
    static std::string told(const std::string& child, const std::string& page, const std::string& flags)
    {
        return row(20, "Child Controller ID:", child) + "Child Log page Identifier: " + page + "\n" +
               row(20, "Events:", flags);
    }
};

TEST_F(MfndEvent, Help)
{
    EXPECT_EQ(unlisted({"mfnd-event", "-h"}), (Outcome{0, kEventPage}));
    EXPECT_EQ(unlisted({"mfnd-event", "-x"}), (Outcome{0, "", "", "mfnd-event: illegal option -- x\n"}));
}

TEST_F(MfndEvent, TheBareWordReadsTheLog)
{
    machine.expect(readLog().data(log(0, {})));
    EXPECT_EQ(unlisted({"mfnd-event"}), (Outcome{0, "No entries exist\n"}));
    machine.expect(readLog().data(log(0, {})));
    EXPECT_EQ(unlisted({"mfnd-event", "--output", "x"}), (Outcome{0, "No entries exist\n"}));
}

TEST_F(MfndEvent, ShowsEachEventWithWhatItsFlagsSay)
{
    machine.expect(
        readLog().data(log(4, {event(1, 2, 1), event(254, 253, 2), event(3, 4, 0xFFFFFF), event(5, 6, 0x80000000)})));
    EXPECT_EQ(unlisted({"mfnd-event"}),
              (Outcome{0, told("1", "2", "1") + "Log Page Identifier Valid: Yes\n\n" +        //
                              told("254", "253", "2") + "Controller Fatal Status: Yes\n\n" +  //
                              told("3", "4", "16777215") +
                              "Log Page Identifier Valid: Yes\nController Fatal Status: Yes\n\n" +
                              told("5", "6", "-2147483648") + "Unknown\n\n"}));
}

TEST_F(MfndEvent, TheNinthEventLiesBeyondThePage)
{
    std::vector<Bytes> events;
    std::string page;
    for (QRX_U8 i = 1; i <= 8; ++i) {
        events.push_back(event(i, 0, 0));
        page += told(std::to_string(i), "0", "0") + "Unknown\n\n";
    }
    machine.expect(readLog().data(log(8, events)));
    EXPECT_EQ(unlisted({"mfnd-event"}), (Outcome{0, page}));
    for (const QRX_U8 count : {QRX_U8{9}, QRX_U8{255}}) {
        machine.expect(readLog().data(log(count, events)));
        EXPECT_EQ(unlisted({"mfnd-event"}), (Outcome{0, page + "Only the first 8 of " + std::to_string(count) +
                                                            " entries are in the data that was read.\n"}));
    }
}

TEST_F(MfndEvent, ARefusalOfTheControllerIsTheResult)
{
    machine.expect(readLog().status(0x109));
    EXPECT_EQ(unlisted({"mfnd-event"}),
              (Outcome{0x109, "\nUnable to get child controller event log (Error Code: 0x109)\n",
                       "Invalid Log Page (Status Code: 0x109)\n"}));
}

class MfndChildControl : public MfndTest {};

TEST_F(MfndChildControl, Help)
{
    EXPECT_EQ(unlisted({"mfnd-child-ctrl"}), (Outcome{1, kControlPage}));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-h"}), (Outcome{0, kControlPage}));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-x"}), (Outcome{0, "", "", "mfnd-child-ctrl: illegal option -- x\n"}));
}

TEST_F(MfndChildControl, SendsSelectorAndChild)
{
    for (const QRX_U32 selector : {0U, 1U, 2U, 3U, 15U}) {
        machine.expect(sent(0xD0, selector << 24 | 0x00123404));
        EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-s", std::to_string(selector), "-i", "0x1234"}),
                  (Outcome{0, "mfnd_child_ctrl command success.\n"}));
    }
    machine.expect(sent(0xD0, 0x03FFFF04));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "--SEL=3", "--CCID=65535"}),
              (Outcome{0, "mfnd_child_ctrl command success.\n"}));
}

TEST_F(MfndChildControl, RefusesBadNumbersDuplicatesAndWhatIsMissing)
{
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-s", "x"}), (Outcome{0, "-s : SEL should be a number\n"}));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-s", "-0x1"}), (Outcome{0, "invalid SEL '-0x1'\n"}));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-s", "16"}), (Outcome{0, "invalid SEL '16', out of range\n"}));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-i", "x"}), (Outcome{0, "-i : CCID should be a number\n"}));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-i", "-0x1"}), (Outcome{0, "invalid CCID '-0x1'\n"}));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-i", "65536"}), (Outcome{0, "invalid CCID '65536', out of range\n"}));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-s", "1", "-s", "1"}), (Outcome{1, kDuplicate}));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-i", "1", "-i", "1"}), (Outcome{1, kDuplicate}));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-i", "1"}), (Outcome{0, needs("mfnd-child-ctrl", 'O')}));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-s", "1"}), (Outcome{0, needs("mfnd-child-ctrl", 'i')}));
}

TEST_F(MfndChildControl, ARefusalOfTheControllerIsTheResult)
{
    machine.expect(sent(0xD0, 0x00000104).status(2));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-s", "0", "-i", "1"}),
              (Outcome{2, "mfnd_child_ctrl command failed.(error code: 0x02)\n", kInvalidField}));
}

TEST_F(MfndChildControl, DebugShowsTheWords)
{
    dbg_enable = 1;
    machine.expect(sent(0xD0, 0x01000204));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl", "-s", "1", "-i", "2"}),
              (Outcome{0, "CDW[0] : 0x000000d0\nCDW[10]: 0x01000204\nmfnd_child_ctrl command success.\n"}));
}

class MfndLogPage : public MfndTest {
protected:
    static Command read(QRX_U32 cdw10, QRX_U32 cdw14, std::size_t length)
    {
        return sent(0xD2, cdw10, 0x7C01).word(14, cdw14).receives(length).carries(Bytes(length));
    }
    static std::string dump(Bytes bytes)
    {
        return "\n" + outcomeOf([&] {
                          dumpContent(bytes.data(), static_cast<int>(bytes.size()));
                          return 0;
                      }).stream;
    }
    const std::string success = "mfnd_child_ctrl_log_page command success.\n";
};

TEST_F(MfndLogPage, Help)
{
    EXPECT_EQ(unlisted({"mfnd-child-ctrl-log-page"}), (Outcome{1, kLogPage}));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl-log-page", "-h"}), (Outcome{0, kLogPage}));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl-log-page", "-x"}),
              (Outcome{0, "", "", "mfnd-child-ctrl-log-page: illegal option -- x\n"}));
}

TEST_F(MfndLogPage, ReadsAsManyBytesAsAreAskedFor)
{
    struct Case {
        const char* word;
        std::size_t length;
        QRX_U32 dwords;
    };
    for (const Case& c : {Case{"512", 512, 127}, Case{"4", 4, 0}, Case{"0x1000", 4096, 1023}, Case{"510", 510, 126}}) {
        const Bytes data = pattern(c.length);
        machine.expect(read(0x00123405, c.dwords << 16 | 3, c.length).data(data));
        EXPECT_EQ(unlisted({"mfnd-child-ctrl-log-page", "-i", "0x1234", "-d", "3", "-l", c.word}),
                  (Outcome{0, dump(data) + success}))
            << c.word;
    }
}

TEST_F(MfndLogPage, SendsAllItsWords)
{
    machine.expect(
        read(0x00FFFF05, 0xFFFF, 4).word(11, 0x7FFFFFFF).word(12, 0x12345678).word(13, 99).data(Bytes(4, 1)));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl-log-page", "--CCID=65535", "--LID=0xFFFF", "--LEN=4", "--CDW11=0x7fffffff",
                        "--CDW12=0x12345678", "--CDW13=99"}),
              (Outcome{0, dump(Bytes(4, 1)) + success}));
    machine.expect(read(0x00000105, 1, 4).word(11, 11).word(12, 12).word(13, 13));
    EXPECT_EQ(
        unlisted({"mfnd-child-ctrl-log-page", "-i", "1", "-d", "1", "-l", "4", "-1", "11", "-2", "12", "-3", "13"}),
        (Outcome{0, dump(Bytes(4)) + success}));
}

// What the page of `smart` prints of the same log, under this one's title.
std::string healthOf(const Bytes& bytes)
{
    const auto log = qrx::wire::read<_qrx_smart_log>(padded(bytes, 512));
    std::string page = outcomeOf([&] {
                           showLogSmartInfo(*log, 0);
                           return 0;
                       }).stream;
    return "\nSMART Information :\n" + page.substr(page.find("Notice:"));
}

TEST_F(MfndLogPage, TheHealthLogIsShownInWordsToo)
{
    Bytes data = pattern(512, 99);
    machine.expect(read(0x00000105, 127U << 16 | 2, 512).data(data));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl-log-page", "-i", "1", "-d", "2", "-l", "512"}),
              (Outcome{0, dump(data) + healthOf(data) + success}));
    data.resize(100);
    machine.expect(read(0x00000105, 24U << 16 | 2, 100).data(data));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl-log-page", "-i", "1", "-d", "0x2", "-l", "100"}),
              (Outcome{0, dump(data) + healthOf(data) + success}));
}

TEST_F(MfndLogPage, TheHealthOfAChildIsToldWhole)
{
    _qrx_smart_log log{};
    log.critical_warning = 0xA5;
    log.temperature[0] = 0x30;
    log.temperature[1] = 0x01;
    log.avail_spare = 91;
    log.spare_thresh = 12;
    log.percent_used = 3;
    const std::array<QRX_U8(*)[16], 10> counters{&log.data_units_read,    &log.data_units_written, &log.host_reads,
                                                 &log.host_writes,        &log.ctrl_busy_time,     &log.power_cycles,
                                                 &log.power_on_hours,     &log.unsafe_shutdowns,   &log.media_errors,
                                                 &log.num_err_log_entries};
    for (std::size_t i = 0; i < counters.size(); ++i) {
        (*counters.at(i))[0] = static_cast<QRX_U8>(i + 10);
    }
    log.data_units_read[2] = 0x20;  // 2,097,162
    log.warning_temp_time = 21;
    log.critical_comp_time = 22;
    log.tmt1tc = 23;
    log.tmt2tc = 24;
    log.ttftmt1 = 25;
    log.ttftmt2 = 26;
    EXPECT_EQ(outcomeOf([&] {
                  show_mfnd_child_SmartInfo(log);
                  return 0;
              }).stream,
              "\nSMART Information :\n"
              "Notice: Please refer to NVMe Specific v1.3, Get Log Page - SMART / Health Information Log definition\n"
              "\n"
              "Critical Warning                                      : 0xa5\n"
              "Composite Temperature                                 : 31 Celsius\n"
              "Available Spare                                       : 91%\n"
              "Available Spare Threshold                             : 12%\n"
              "Percentage Used                                       : 3%\n"
              "Data Units Read                                       : 2097162 (1074 GB)\n"
              "Data Units Written                                    : 11 (0 GB)\n"
              "Host Read Commands                                    : 12\n"
              "Host Write Commands                                   : 13\n"
              "Controller Busy Time                                  : 14\n"
              "Power Cycles                                          : 15\n"
              "Power On Hours                                        : 16\n"
              "Unsafe Shutdowns                                      : 17\n"
              "Media and Data Integrity Errors                       : 18\n"
              "Num Err Log Entries                                   : 19\n"
              "Warning Composite Temperature Time                    : 21\n"
              "Critical Composite Temperature Time                   : 22\n"
              "Thermal Management Temperature 1 Transition Count     : 23\n"
              "Thermal Management Temperature 2 Transition Count     : 24\n"
              "Total Time For Thermal Management Temperature 1       : 25\n"
              "Total Time For Thermal Management Temperature 2       : 26\n"
              "\n");
}

TEST_F(MfndLogPage, ALengthThatIsNoDwordOrMoreThanAPageIsRefused)
{
    for (const char* word : {"0", "3", "4097", "65535"}) {
        EXPECT_EQ(unlisted({"mfnd-child-ctrl-log-page", "-i", "1", "-d", "2", "-l", word}),
                  (Outcome{0, std::string("invalid data length '") + word + "', should be 4 to 4096\n"}));
    }
}

TEST_F(MfndLogPage, RefusesBadNumbers)
{
    struct Case {
        const char* letter;
        std::string noNumber;
        std::string noun;
        std::string tooHigh;
    };
    for (const Case& c : {Case{"-i", "-i : CCID should be a number\n", "CCID", "65536"},
                          Case{"-d", "-l : LID should be a number\n", "LID", "0x10000"},
                          Case{"-l", "-l : data length should be a number\n", "data length", "65536"},
                          Case{"-1", "-1 :  CDW 11 should be a number\n", "CDW 11", "0x80000000"},
                          Case{"-2", "-2 :  CDW 12 should be a number\n", "CDW 12", "2147483648"},
                          Case{"-3", "-3 :  CDW 13 should be a number\n", "CDW 13", "0xFFFFFFFF"}}) {
        for (const char* word : {"x", "-1"}) {
            EXPECT_EQ(unlisted({"mfnd-child-ctrl-log-page", c.letter, word}), (Outcome{0, c.noNumber}));
        }
        EXPECT_EQ(unlisted({"mfnd-child-ctrl-log-page", c.letter, "-0x1"}),
                  (Outcome{0, "invalid " + c.noun + " '-0x1'\n"}));
        for (const std::string& word : {c.tooHigh, std::string("99999999999999999999")}) {
            EXPECT_EQ(unlisted({"mfnd-child-ctrl-log-page", c.letter, word}),
                      (Outcome{0, "invalid " + c.noun + " '" + word + "', out of range\n"}));
        }
    }
}

TEST_F(MfndLogPage, RefusesDuplicatesThenWhatIsMissing)
{
    const std::string name = "mfnd-child-ctrl-log-page";
    for (const char* letter : {"-i", "-d", "-l", "-1", "-2", "-3"}) {
        EXPECT_EQ(unlisted({name, letter, "4", letter, "4"}), (Outcome{1, kDuplicate}));
    }
    EXPECT_EQ(unlisted({name, "-1", "1"}), (Outcome{0, needs(name, 'i')}));
    EXPECT_EQ(unlisted({name, "-l", "4", "-d", "1"}), (Outcome{0, needs(name, 'i')}));
    EXPECT_EQ(unlisted({name, "-i", "1", "-l", "4"}), (Outcome{0, needs(name, 'd')}));
    EXPECT_EQ(unlisted({name, "-i", "1", "-d", "1"}), (Outcome{0, needs(name, 'l')}));
}

TEST_F(MfndLogPage, ARefusalOfTheControllerIsTheResult)
{
    machine.expect(read(0x00000105, 127U << 16 | 2, 512).data(pattern(512)).status(2));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl-log-page", "-i", "1", "-d", "2", "-l", "512"}),
              (Outcome{2, "mfnd_child_ctrl_log_page command failed.(error code: 0x02)\n", kInvalidField}));
}

TEST_F(MfndLogPage, DebugShowsTheWords)
{
    dbg_enable = 1;
    machine.expect(read(0x00000105, 1, 4).word(12, 7).status(2));
    EXPECT_EQ(unlisted({"mfnd-child-ctrl-log-page", "-i", "1", "-d", "1", "-l", "4", "-2", "7"}).stream,
              "CDW[0] : 0x000000d2\nCDW[10]: 0x00000105\nCDW[11]: 0x00000000\nCDW[12]: 0x00000007\n"
              "CDW[13]: 0x00000000\nCDW[14]: 0x00000001\nmfnd_child_ctrl_log_page command failed.(error code: 0x02)\n");
}

}  // namespace
