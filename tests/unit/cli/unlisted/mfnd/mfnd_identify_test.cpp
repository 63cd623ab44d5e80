// `mfnd-identify`.
#include "cli/Public/frame/report.h"
#include "tests/unit/cli/unlisted/mfnd/mfnd_fixture.h"

namespace {

using namespace qrx::test;

const std::string kPage = helpOf(":For MFND identify", mfnd_identify_help);
const std::string kSuccess = "command success.\n";

std::string line(const std::string& label, const std::string& value)
{
    return row(36, label, value);
}

Bytes capabilities()
{
    Bytes page = pattern(4096, 9);
    putText(page, 0, "MFND");
    page[4] = 201;
    page[5] = 102;
    for (unsigned i = 0; i < 8; ++i) {
        putNumber(page, 8 + 2 * i, 2, 60001 + i);
    }
    for (unsigned i = 0; i < 12; ++i) {
        putNumber(page, 24 + 4 * i, 4, 1000001 + i);
    }
    putNumber(page, 44, 4, 0x80000000);
    page[72] = 203;
    return page;
}

const std::string kDevice = line("Signature:", "MFND") +                           //
                            line("MFND Major Version:", "201") +                   //
                            line("MFND Sub Version:", "102") +                     //
                            line("Maximum Physical Function Count:", "60001") +    //
                            line("Available Physical Function Count:", "60002") +  //
                            line("Maximum Queue Pair Count:", "60003") +           //
                            line("Available Queue Pair Count:", "60004") +         //
                            line("Maximum MSI-X Message Count:", "60005") +        //
                            line("Available MSI-X Message Count:", "60006") +      //
                            line("Maximum Namespace Count:", "60007") +            //
                            line("Available Namespace Count:", "60008") +          //
                            line("Total NVM Storage Size:", "1000001") +           //
                            line("Available NVM Storage Size:", "1000002") +       //
                            line("Storage Provision Granularity:", "1000003") +    //
                            line("Total Read Bandwidth:", "1000004") +             //
                            line("Available Read Bandwidth:", "1000005") +         //
                            line("Total Write Bandwidth:", "-2147483648") +        // as wide as every number
                            line("Available Write Bandwidth:", "1000007") +        //
                            line("Total Read IOPS:", "1000008") +                  //
                            line("Available Read IOPS:", "1000009") +              //
                            line("Total Write IOPS:", "1000010") +                 //
                            line("Available Write IOPS:", "1000011") +             //
                            line("Features:", "1000012") +                         //
                            "Maximum Supported Child Controller Namespace Count: 203\n";

Bytes child(QRX_U32 ccid, const std::string& sn, QRX_U32 flags)
{
    Bytes entry = pattern(128, static_cast<QRX_U8>(ccid));
    putNumber(entry, 0, 2, ccid);
    std::fill_n(entry.begin() + 2, 36, QRX_U8{0});
    putText(entry, 2, sn);
    putNumber(entry, 40, 2, flags);
    putNumber(entry, 42, 2, 301);
    putNumber(entry, 44, 2, 302);
    putNumber(entry, 46, 2, 303);
    putNumber(entry, 48, 4, 304);
    return entry;
}

Bytes childList(unsigned count, const Bytes& entries)
{
    Bytes page = pattern(8 + entries.size());
    putNumber(page, 0, 2, count);
    std::copy(entries.begin(), entries.end(), page.begin() + 8);
    return page;
}

std::string told(const std::string& ccid, const std::string& sn, const std::string& flags, bool counts)
{
    return line("Child Controller ID:", ccid) + line("Serial number:", sn) + line("Flags:", flags) +
           (counts ? line("I/O queue pair count:", "301") + line("MSI-X message count:", "302") +
                         line("Namespace count:", "303") + line("Storage Provision Unit Count:", "304")
                   : "");
}

std::string returned(unsigned count)
{
    return "Number of returned Child Controller Properties Entry: " + std::to_string(count) + "\n";
}

class MfndIdentify : public MfndTest {
protected:
    static Command ofChild(QRX_U32 cdw10) { return fills(0xD2, cdw10, 0xC01); }
};

TEST_F(MfndIdentify, Help)
{
    EXPECT_EQ(unlisted({"mfnd-identify"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"mfnd-identify", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(unlisted({"mfnd-identify", "-x"}), (Outcome{0, "", "", "mfnd-identify: illegal option -- x\n"}));
}

TEST_F(MfndIdentify, ShowsWhatTheDeviceCanDo)
{
    for (const char* object : {"mfnd", "MFND"}) {
        machine.expect(fills(0xD2, 1).data(capabilities()));
        EXPECT_EQ(unlisted({"mfnd-identify", "-o", object}), (Outcome{0, kDevice + kSuccess}));
    }
    machine.expect(fills(0xD2, 1).data(capabilities()));
    EXPECT_EQ(unlisted({"mfnd-identify", "--object=mfnd", "-i", "5"}), (Outcome{0, kDevice + kSuccess}));
}

TEST_F(MfndIdentify, ASignatureThatIsNoTextDoesNotReachTheTerminal)
{
    Bytes page = capabilities();
    page[0] = 0x1B;
    page[2] = 0;
    machine.expect(fills(0xD2, 1).data(page));
    EXPECT_EQ(unlisted({"mfnd-identify", "-o", "mfnd"}).stream.substr(0, 42), line("Signature:", "?F?D"));
}

TEST_F(MfndIdentify, ShowsChildControllers)
{
    Bytes entries = padded(child(7, "SERIAL-7", 0), 256);
    const Bytes second = child(65535, std::string(36, 'z'), 0xFFFD);
    std::copy(second.begin(), second.end(), entries.begin() + 128);
    const std::string page = returned(2) + told("7", "SERIAL-7", "0x0", false) +
                             told("65535", std::string(36, 'z'), "0xfffd", true) + kSuccess;
    for (const char* object : {"child", "CHILD"}) {
        machine.expect(ofChild(0x00123402).data(childList(2, entries)));
        EXPECT_EQ(unlisted({"mfnd-identify", "-o", object, "-i", "0x1234"}), (Outcome{0, page}));
    }
    machine.expect(ofChild(2).data(childList(0, entries)));
    EXPECT_EQ(unlisted({"mfnd-identify", "-o", "child"}), (Outcome{0, returned(0) + kSuccess}));
}

TEST_F(MfndIdentify, OnlyTheFirstFlagShowsTheCounts)
{
    machine.expect(ofChild(2).data(childList(1, child(1, "S", 2))));
    EXPECT_EQ(unlisted({"mfnd-identify", "-o", "child"}),
              (Outcome{0, returned(1) + told("1", "S", "0x2", false) + kSuccess}));
}

TEST_F(MfndIdentify, ShowsNoMoreEntriesThanAPageHolds)
{
    Bytes entries;
    std::string page;
    for (unsigned i = 1; i <= 31; ++i) {
        const Bytes entry = child(i, "S", 0);
        entries.insert(entries.end(), entry.begin(), entry.end());
        page += told(std::to_string(i), "S", "0x0", false);
    }
    machine.expect(ofChild(2).data(childList(31, entries)));
    EXPECT_EQ(unlisted({"mfnd-identify", "-o", "child"}), (Outcome{0, returned(31) + page + kSuccess}));
    for (const unsigned count : {32U, 65535U}) {
        std::string cut = returned(count);
        cut += page;
        cut += "Only the first 31 of " + std::to_string(count) + " entries are in the data that was read.\n";
        machine.expect(ofChild(2).data(childList(count, entries)));
        EXPECT_EQ(unlisted({"mfnd-identify", "-o", "child"}), (Outcome{0, cut + kSuccess}));
    }
}

TEST_F(MfndIdentify, ShowsRawDataFirst)
{
    Bytes data = capabilities();
    const Outcome raw = outcomeOf([&] {
        qrx::print("\n");
        dumpContent(data.data(), 4096);
        return 0;
    });
    const std::string page = raw.stream + kDevice + kSuccess;
    machine.expect(fills(0xD2, 1).data(data));
    EXPECT_EQ(unlisted({"mfnd-identify", "--rawdata", "-o", "mfnd"}), (Outcome{0, page}));
    machine.expect(fills(0xD2, 1).data(data));
    EXPECT_EQ(unlisted({"mfnd-identify", "-o", "mfnd", "-r", "x"}), (Outcome{0, page}));
}

TEST_F(MfndIdentify, RefusesBadWords)
{
    for (const char* word : {"Mfnd", "Child", "mfn", "", "x"}) {
        EXPECT_EQ(unlisted({"mfnd-identify", "-o", word}),
                  (Outcome{0, std::string("-o : invalid object '") + word + "'\n"}));
    }
    EXPECT_EQ(unlisted({"mfnd-identify", "-i", "x"}), (Outcome{0, "-i : CCID should be a number\n"}));
    EXPECT_EQ(unlisted({"mfnd-identify", "-i", "-0x1"}), (Outcome{0, "invalid CCID '-0x1'\n"}));
    EXPECT_EQ(unlisted({"mfnd-identify", "--CCID", "65536"}), (Outcome{0, "invalid CCID '65536', out of range\n"}));
}

TEST_F(MfndIdentify, RefusesDuplicatesThenAMissingObject)
{
    EXPECT_EQ(unlisted({"mfnd-identify", "-o", "mfnd", "-o", "child"}), (Outcome{1, kDuplicate}));
    EXPECT_EQ(unlisted({"mfnd-identify", "-i", "1", "-i", "1"}), (Outcome{1, kDuplicate}));
    EXPECT_EQ(unlisted({"mfnd-identify", "--rawdata", "--rawdata"}), (Outcome{1, kDuplicate}));
    EXPECT_EQ(unlisted({"mfnd-identify", "-i", "1"}), (Outcome{0, needs("mfnd-identify", 'o')}));
}

TEST_F(MfndIdentify, ARefusalOfTheControllerIsTheResult)
{
    machine.expect(fills(0xD2, 1).data(capabilities()).status(2));
    EXPECT_EQ(unlisted({"mfnd-identify", "-o", "mfnd", "--rawdata"}),
              (Outcome{2, "command failed.(error code: 0x02)\n", kInvalidField}));
}

TEST_F(MfndIdentify, DebugShowsTheWords)
{
    dbg_enable = 1;
    machine.expect(fills(0xD2, 1).status(2));
    EXPECT_EQ(unlisted({"mfnd-identify", "-o", "mfnd"}).stream,
              "CDW[0] : 0x000000d2\nCDW[10]: 0x00000001\ncommand failed.(error code: 0x02)\n");
    machine.expect(ofChild(0x102).status(2));
    EXPECT_EQ(unlisted({"mfnd-identify", "-o", "child", "-i", "1"}).stream,
              "CDW[0] : 0x000000d2\nCDW[10]: 0x00000102\nCDW[11]: 0x00000000\ncommand failed.(error code: 0x02)\n");
}

}  // namespace
