// The OEM record: its checksum, its reading and judging, and what hangs on it.
#include "cli/Functions/simple/oem_record.h"

#include <cstring>

#include "api/src/interface/api.h"
#include "tests/unit/cli/oem_fixture.h"

namespace {

using namespace qrx::test;

class OemRecord : public OemTest {
protected:
    // getoemdata over a buffer that held something.
    Outcome readRecord(char print_info)
    {
        got = pattern(4096, 11);
        return outcomeOf([&] { return getoemdata(print_info, got.data()); });
    }
    // What is told of a record that is read.
    Outcome told(const Bytes& record)
    {
        machine.expect(readOem(record));
        return readRecord(1);
    }

    Bytes got;
};

TEST(OemChecksum, MakesTheSumZero)
{
    const Bytes bytes{1, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0x78, 0x56, 0x34, 0x12, 9, 9, 9};
    EXPECT_EQ(__checksumResult(bytes.data(), 12, 1), 0x12345678U);
    EXPECT_EQ(__checksumResult(bytes.data(), 12, 7), 0x12345678U);
    EXPECT_EQ(__checksumResult(bytes.data(), 12, 0), 0xEDCBA988U);
    EXPECT_EQ(__checksumResult(bytes.data(), 15, 1), 0x12345678U);
    EXPECT_EQ(__checksumResult(bytes.data(), 4, 0), 0xFFFFFFFFU);
    EXPECT_EQ(__checksumResult(bytes.data(), 8, 1), 0U);
    for (QRX_U32 length : {0U, 3U}) {
        EXPECT_EQ(__checksumResult(bytes.data(), length, 0), 0U);
        EXPECT_EQ(__checksumResult(bytes.data(), length, 1), 0U);
    }
}

TEST_F(OemRecord, AValidRecordIsReadInSilence)
{
    Bytes page = oemPage(oemRecord(0x1122, 0x3344, "SN", "MODEL"));
    machine.expect(readOem(page));
    EXPECT_EQ(readRecord(0), (Outcome{kOemValid, ""}));
    put32(page, 8, 0);
    EXPECT_EQ(got, page);
}

TEST_F(OemRecord, ABadOneToo)
{
    const Bytes good = oemRecord(0x1122, 0x3344, "SN", "MODEL");
    Bytes record = good;
    record[3] = 0;
    sealOem(record);
    machine.expect(readOem(record));
    EXPECT_EQ(readRecord(0), (Outcome{kOemBad, ""}));
    record = good;
    ++record[8];
    machine.expect(readOem(record));
    EXPECT_EQ(readRecord(0), (Outcome{kOemBad, ""}));
    machine.expect(readOem({}).status(0x701));
    EXPECT_EQ(readRecord(0), (Outcome{kOemBad, ""}));
    machine.expect(readOem({}).error(5).status(0xFFFFFFFF));
    EXPECT_EQ(readRecord(0), (Outcome{kOemBad, ""}));
}

TEST_F(OemRecord, TheLengthTellsWhetherThereIsOne)
{
    const auto verdict = [this](QRX_U16 length) {
        Bytes page = oemPage(oemRecord(1, 2, "SN", "MODEL"));
        put16(page, 4, length);
        sealOem(page, length <= 4096 ? length : 0);
        machine.expect(readOem(page));
        return readRecord(0);
    };
    EXPECT_EQ(verdict(0), (Outcome{kOemNone, ""}));
    EXPECT_EQ(verdict(4097), (Outcome{kOemNone, ""}));
    EXPECT_EQ(verdict(0xFFFF), (Outcome{kOemNone, ""}));
    EXPECT_EQ(verdict(1), (Outcome{kOemValid, ""}));
    EXPECT_EQ(verdict(138), (Outcome{kOemValid, ""}));
    EXPECT_EQ(verdict(4095), (Outcome{kOemValid, ""}));
    EXPECT_EQ(verdict(4096), (Outcome{kOemValid, ""}));
}

TEST_F(OemRecord, NoRecordGoesBeforeABadSignature)
{
    machine.expect(readOem(Bytes(4096, 0xFF)));
    EXPECT_EQ(readRecord(0), (Outcome{kOemNone, ""}));
    machine.expect(readOem(Bytes(4096)));
    EXPECT_EQ(readRecord(0), (Outcome{kOemNone, ""}));
}

TEST_F(OemRecord, TellsWhatItFound)
{
    Bytes record = oemRecord(0x1122, 0x3344, "SERIAL-OF-20-LETTERS", "MODEL\x1b[2J");
    const QRX_U32 sum = record[8] | QRX_U32{record[9]} << 8 | QRX_U32{record[10]} << 16 | QRX_U32{record[11]} << 24;
    char checksum[16];
    std::snprintf(checksum, sizeof(checksum), "0x%x", sum);
    EXPECT_EQ(
        told(record),
        (Outcome{kOemValid, "",
                 "Signature: 'Q' 'R' 'X' ' '\nData length:136\nData offset:12\nZero checksum:" + std::string(checksum) +
                     "\nSub VID:0x1122\nSub Device ID:0x3344\n"
                     "Serial Number:SERIAL-OF-20-LETTERS\n"
                     "Model:MODEL?[2J                               \n"}));
    std::memcpy(record.data(), "\x1b\xc2X\n", 4);
    EXPECT_EQ(told(record), (Outcome{kOemBad, "", "Signature is incorrect, '0x1b', '0xc2', '0x58', '0x0a'.\n"}));
    record = oemRecord(0, 0, "", "");
    put32(record, 8, 0xABCD);
    Bytes right = record;
    sealOem(right);
    std::snprintf(checksum, sizeof(checksum), "0x%02x%02x%02x%02x", right[11], right[10], right[9], right[8]);
    EXPECT_EQ(told(record),
              (Outcome{kOemBad, "", "Zero checksumis 0xabcd, it should be " + std::string(checksum) + "\n"}));
    put16(record, 4, 0);
    EXPECT_EQ(told(record), (Outcome{kOemNone, "", "OEM raw data is not exist.\n"}));
    machine.expect(readOem({}).status(0x701));
    EXPECT_EQ(readRecord(1),
              (Outcome{kOemBad, "Read OEM data failed.(error code: 0x701)\n", "Failed (Status Code: 0x701)\n"}));
    machine.expect(readOem({}).status(2));
    EXPECT_EQ(readRecord(1), (Outcome{kOemBad, "Read OEM data failed.(error code: 0x02)\n",
                                      "Invalid Field in Command (Status Code: 0x2)\n"}));
}

TEST_F(OemRecord, DebugDumpsTheBytesWithTheirCharacters)
{
    dbg_enable = 1;
    Bytes page = Bytes(4096, 0x41);
    page[4] = page[5] = 0;
    page[0] = 0;
    page[15] = 0x07;
    page[16] = 0xC3;
    machine.expect(readOem(page));
    std::string expected = "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x000004e0\n";
    expected += "\n0000:00 41 41 41 00 00 41 41 41 41 41 41 41 41 41 07           AAAAAAAAAAAA\x07\n000f:";
    expected += "c3 41 41 41 41 41 41 41 41 41 41 41 41 41 41 41           \xc3" + std::string(15, 'A') + "\n001f:";
    for (const char* label : {"002f", "003f", "004f", "005f", "006f", "007f", "008f", "009f", "00af", "00bf", "00cf",
                              "00df", "00ef", "00ff"}) {
        expected +=
            "41 41 41 41 41 41 41 41 41 41 41 41 41 41 41 41           " + std::string(16, 'A') + "\n" + label + ":";
    }
    EXPECT_EQ(readRecord(1), (Outcome{kOemNone, expected + "End list\n", "OEM raw data is not exist.\n"}));
    machine.expect(readOem(page));
    EXPECT_EQ(readRecord(0), (Outcome{kOemNone, "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x000004e0\n"}));
}

class SubsystemIds : public OemTest {
protected:
    Outcome fetch()
    {
        return outcomeOf([&] { return QRX_Adapter_GetSimpleInfo_SVID_SDID(&SVID, &SDID); });
    }

    QRX_U16 SVID = 1;
    QRX_U16 SDID = 2;
};

TEST_F(SubsystemIds, AreThoseOfTheController)
{
    machine.expect(fetchIds(0x1234, 0x5678));
    EXPECT_EQ(fetch(), (Outcome{0, ""}));
    EXPECT_EQ(SVID, 0x1234);
    EXPECT_EQ(SDID, 0x5678);
}

TEST_F(SubsystemIds, AreTakenFromARefusalToo)
{
    for (const bool debug : {false, true}) {
        dbg_enable = debug ? 1 : 0;
        SVID = 0;
        machine.expect(fetchIds(0x4321, 0x8765, 0x2A));
        EXPECT_EQ(fetch(), (Outcome{0, debug ? "\nUnable to get info of Adapter, cmd_status:0x2a\n" : ""}));
        EXPECT_EQ(SVID, 0x4321);
        EXPECT_EQ(SDID, 0x8765);
    }
}

TEST_F(SubsystemIds, StayAsTheyAreWhenTheReadFails)
{
    for (const bool debug : {false, true}) {
        dbg_enable = debug ? 1 : 0;
        machine.expect(fetchIds().status(0x701));
        EXPECT_EQ(fetch(), (Outcome{0x701, debug ? "\nUnable to get info of NVMe Controller \n" : ""}));
        EXPECT_EQ(SVID, 1);
        EXPECT_EQ(SDID, 2);
    }
}

class CachedName : public OemTest {
protected:
    CachedName() { std::memset(cached(), 'o', 255); }
    static char* cached() { return QRX_Adapter_GetDeviceSUBNQN(1); }
    static Outcome refresh()
    {
        return outcomeOf([] {
            reinit_API_Layrer_SUBNQN();
            return 0;
        });
    }
};

TEST_F(CachedName, IsSixtyCharactersAndANumber)
{
    Bytes page = pattern(4096);
    std::memset(page.data() + 768, 'n', 60);
    page[770] = 0;
    page[827] = 0;
    page[828] = 0xC8;
    machine.expect(identify().data(page));
    EXPECT_EQ(refresh(), (Outcome{0, ""}));
    const std::string expected = "nn " + std::string(56, 'n') + " 200" + std::string(29, '\0') + "ooo";
    EXPECT_EQ(std::string(cached(), 95), expected);
    machine.expect(identify().data(Bytes(4096)));
    EXPECT_EQ(refresh(), (Outcome{0, ""}));
    EXPECT_STREQ(cached(), (std::string(60, ' ') + "0").c_str());
}

TEST_F(CachedName, StaysAsItIsWhenTheReadFails)
{
    machine.expect(identify().status(0x701));
    EXPECT_EQ(refresh(), (Outcome{0, "", "Failed (Status Code: 0x701)\n"}));
    EXPECT_EQ(std::string(cached(), 255), std::string(255, 'o'));
}

}  // namespace
