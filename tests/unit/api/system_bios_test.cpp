#include "api/src/device/linux/SystemBIOS.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <string>

#include "tests/unit/support/bytes.h"
#include "tests/unit/support/capture.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

constexpr char kEntryFile[] = "/sys/firmware/dmi/tables/smbios_entry_point";
constexpr char kTableFile[] = "/sys/firmware/dmi/tables/DMI";
constexpr QRX_U8 kInUse = 4;

std::string text(const Bytes& bytes)
{
    return {bytes.begin(), bytes.end()};
}

// A structure: type, formatted area of `length` bytes, no strings.
Bytes structure(QRX_U8 type, QRX_U8 length)
{
    Bytes bytes(std::size_t{length} + 2);
    bytes[0] = type;
    bytes[1] = length;
    bytes[2] = 0x11;
    bytes[3] = 0x22;
    std::fill_n(bytes.begin() + 4, std::max(0, length - 4), QRX_U8{0xCC});
    return bytes;
}

Bytes slot(QRX_U8 bus, QRX_U8 id, QRX_U8 usage = kInUse)
{
    Bytes bytes = structure(9, 17);
    bytes[7] = usage;
    bytes[9] = id;
    bytes[15] = bus;
    return bytes;
}

Bytes joined(const std::vector<Bytes>& parts)
{
    Bytes all;
    for (const Bytes& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

// Makes `length` bytes from `from` on add up to 0, by the byte at `at`.
void balance(Bytes& bytes, std::size_t at, std::size_t from, std::size_t length)
{
    bytes[at] = 0;
    const int sum =
        std::accumulate(bytes.begin() + static_cast<long>(from), bytes.begin() + static_cast<long>(from + length), 0);
    bytes[at] = static_cast<QRX_U8>(-sum);
}

Bytes entry64(QRX_U32 table_size, QRX_U8 length = 24)
{
    Bytes bytes = {'_', 'S', 'M', '3', '_', 0, length, 3, 2, 1};
    bytes.resize(24);
    std::memcpy(&bytes[12], &table_size, 4);
    if (length <= 24) {
        balance(bytes, 5, 0, length);
    }
    return bytes;
}

Bytes entry32(QRX_U16 table_size, QRX_U16 count, QRX_U8 major = 2, QRX_U8 minor = 8, QRX_U8 length = 31)
{
    Bytes bytes = {'_', 'S', 'M', '_', 0, length, major, minor};
    bytes.resize(31);
    std::memcpy(&bytes[16], "_DMI_", 5);
    std::memcpy(&bytes[22], &table_size, 2);
    std::memcpy(&bytes[28], &count, 2);
    balance(bytes, 21, 16, 15);
    if (length <= 31) {
        balance(bytes, 4, 0, length);
    }
    return bytes;
}

class SlotLookup : public testing::Test {
protected:
    SlotLookup()
    {
        libc.redirect(kEntryFile, scratch.path("entry"));
        libc.redirect(kTableFile, scratch.path("table"));
    }
    void tables(const Bytes& entry, const Bytes& table)
    {
        scratch.file("entry", text(entry));
        scratch.file("table", text(table));
    }
    int find(std::string bdf = "03:00.00")
    {
        int id = 77;
        EXPECT_EQ(get_SMBIOS_slot_ID(bdf.data(), &id), 0);
        return id;
    }

    Scratch scratch;
    Libc libc;
    StderrCapture errors;
    StdoutCapture out;
};

TEST_F(SlotLookup, WithoutTablesThereIsNoSlotAndNoMessage)
{
    EXPECT_EQ(find(), -1);
    EXPECT_EQ(errors.text() + out.text(), "");
}

TEST_F(SlotLookup, FindsTheSlotInUseOnTheBus)
{
    const Bytes table = joined({structure(1, 27), slot(2, 8), slot(3, 9), slot(4, 10), structure(127, 4)});
    tables(entry64(static_cast<QRX_U32>(table.size())), table);
    EXPECT_EQ(find(), 9);
    EXPECT_EQ(find("04:00.0"), 10);
    EXPECT_EQ(find("05:00.0"), -1);
    EXPECT_EQ(errors.text() + out.text(), "");
}

TEST_F(SlotLookup, TheBusIsTheHexadecimalTextBeforeTheColon)
{
    const Bytes table = joined({slot(0x1A, 5), slot(0, 6)});
    tables(entry64(static_cast<QRX_U32>(table.size())), table);
    EXPECT_EQ(find("1a:00.0"), 5);
    EXPECT_EQ(find("10000:01:00.0"), -1);
    EXPECT_EQ(find("xyz"), 6);  // no number: bus 0
    EXPECT_EQ(find(""), 6);
}

TEST_F(SlotLookup, ASlotThatIsNotInUseDoesNotMatch)
{
    const Bytes table = joined({slot(3, 9, 3), slot(3, 10, 5)});
    tables(entry64(static_cast<QRX_U32>(table.size())), table);
    EXPECT_EQ(find(), -1);
}

TEST_F(SlotLookup, TheLastOfSeveralMatchesWins)
{
    const Bytes table = joined({slot(3, 9), slot(3, 10)});
    tables(entry64(static_cast<QRX_U32>(table.size())), table);
    EXPECT_EQ(find(), 10);
}

TEST_F(SlotLookup, The64BitFormStopsAtTheEndOfTheTable)
{
    const Bytes table = joined({slot(3, 9), structure(127, 4), slot(3, 10)});
    tables(entry64(static_cast<QRX_U32>(table.size())), table);
    EXPECT_EQ(find(), 9);
}

TEST_F(SlotLookup, The32BitFormCountsItsStructures)
{
    const Bytes table = joined({slot(3, 9), structure(127, 4), slot(3, 10), slot(3, 11)});
    tables(entry32(static_cast<QRX_U16>(table.size()), 3), table);
    EXPECT_EQ(find(), 10);
    tables(entry32(static_cast<QRX_U16>(table.size()), 0), table);
    EXPECT_EQ(find(), 11);
    EXPECT_EQ(errors.text(), "");
}

TEST_F(SlotLookup, ATableShorterThanTheEntryPointSaysIsReadAsItIs)
{
    tables(entry64(65536), joined({slot(3, 9), slot(3, 10)}));
    EXPECT_EQ(find(), 10);
    EXPECT_EQ(errors.text(), "");
}

TEST_F(SlotLookup, ATableLongerThanTheEntryPointSaysIsReadAsFarAsItSays)
{
    const Bytes one = slot(3, 9);
    tables(entry64(static_cast<QRX_U32>(one.size())), joined({one, slot(3, 10)}));
    EXPECT_EQ(find(), 9);
}

TEST_F(SlotLookup, AMissingOrEmptyTableIsTold)
{
    scratch.file("entry", text(entry64(100)));
    EXPECT_EQ(find(), -1);
    EXPECT_EQ(errors.text(), "Failed to read table, sorry.\n");
    scratch.file("table", "");
    EXPECT_EQ(find(), -1);
    EXPECT_EQ(errors.text(),
              "Failed to read table, sorry.\n"
              "/sys/firmware/dmi/tables/DMI: Can't read data beyond EOF\n"
              "Failed to read table, sorry.\n");
}

TEST_F(SlotLookup, AWrongChecksumDecodesNothing)
{
    const Bytes table = slot(3, 9);
    Bytes entry = entry64(static_cast<QRX_U32>(table.size()));
    ++entry[20];
    tables(entry, table);
    EXPECT_EQ(find(), -1);
    entry = entry32(static_cast<QRX_U16>(table.size()), 1);
    ++entry[10];
    tables(entry, table);
    EXPECT_EQ(find(), -1);
    EXPECT_EQ(errors.text(), "");
}

TEST_F(SlotLookup, The32BitFormNeedsItsSecondSignatureAndChecksum)
{
    const Bytes table = slot(3, 9);
    Bytes entry = entry32(static_cast<QRX_U16>(table.size()), 1);
    ++entry[30];
    balance(entry, 4, 0, 31);  // only the second checksum is wrong now
    tables(entry, table);
    EXPECT_EQ(find(), -1);
    entry = entry32(static_cast<QRX_U16>(table.size()), 1);
    std::swap(entry[17], entry[18]);
    tables(entry, table);
    EXPECT_EQ(find(), -1);
    entry = entry32(static_cast<QRX_U16>(table.size()), 1);
    tables(entry, table);
    EXPECT_EQ(find(), 9);
}

TEST_F(SlotLookup, AnOverlongEntryPointIsTold)
{
    tables(entry64(100, 33), slot(3, 9));
    EXPECT_EQ(find(), -1);
    tables(entry32(100, 1, 2, 8, 200), slot(3, 9));
    EXPECT_EQ(find(), -1);
    EXPECT_EQ(errors.text(),
              "Entry point length too large (33 bytes, expected 24).\n"
              "Entry point length too large (200 bytes, expected 31).\n");
}

TEST_F(SlotLookup, AnEntryPointThatClaimsMoreThanTheFileHoldsIsRefused)
{
    tables(entry64(100, 32), slot(3, 9));
    EXPECT_EQ(find(), -1);
    tables(entry32(100, 1, 2, 8, 32), slot(3, 9));
    EXPECT_EQ(find(), -1);
    EXPECT_EQ(errors.text(), "");
}

TEST_F(SlotLookup, EntryPointsCutAnywhereAreRefused)
{
    const Bytes table = slot(3, 9);
    for (const Bytes& whole :
         {entry64(static_cast<QRX_U32>(table.size())), entry32(static_cast<QRX_U16>(table.size()), 1)}) {
        for (std::size_t length = 1; length < whole.size(); ++length) {
            tables(Bytes(whole.begin(), whole.begin() + static_cast<long>(length)), table);
            EXPECT_EQ(find(), -1) << length;
        }
        tables(whole, table);
        EXPECT_EQ(find(), 9);
    }
    EXPECT_EQ(errors.text(), "");
}

TEST_F(SlotLookup, UnknownSignaturesAreLeftAlone)
{
    Bytes entry = entry32(20, 1);
    entry[2] = 'X';
    tables(entry, slot(3, 9));
    EXPECT_EQ(find(), -1);
    EXPECT_EQ(errors.text(), "");
}

TEST_F(SlotLookup, KnownWrongVersionsAreCorrected)
{
    const Bytes table = slot(3, 9);
    const auto size = static_cast<QRX_U16>(table.size());
    for (const QRX_U8 minor : Bytes{31, 33, 51, 32}) {
        tables(entry32(size, 1, 2, minor), table);
        EXPECT_EQ(find(), 9);
    }
    EXPECT_EQ(errors.text(),
              "SMBIOS version fixup (2.31 -> 2.3).\n"
              "SMBIOS version fixup (2.33 -> 2.3).\n"
              "SMBIOS version fixup (2.51 -> 2.6).\n");
}

TEST_F(SlotLookup, FreesWhatItRead)
{
    // The leak checker of the sanitized build is the judge.
    tables(entry64(19), slot(3, 9));
    EXPECT_EQ(find(), 9);
}

TEST_F(SlotLookup, ShortMemoryIsTold)
{
    tables(entry64(19), slot(3, 9));
    libc.failAllocation(1);
    errno = 0;
    EXPECT_EQ(find(), -1);
    libc.failAllocation(2);
    EXPECT_EQ(find(), -1);
    const std::string told = errors.text();
    EXPECT_EQ(told.substr(0, 8), "malloc: ");
    EXPECT_NE(told.find("\nmalloc: "), std::string::npos);
    EXPECT_EQ(told.substr(told.size() - 29), "Failed to read table, sorry.\n");
}

// The walk over a table in memory that ends exactly where the table does.
int walk(const Bytes& table, QRX_U16 num = 0, u32 flags = 0)
{
    const auto exact = std::make_unique<u8[]>(table.size());
    std::copy(table.begin(), table.end(), exact.get());
    int id = -1;
    dmi_table_decode(exact.get(), static_cast<u32>(table.size()), num, 0, flags, 3, &id);
    return id;
}

TEST(SlotTable, CutAnywhereItGivesTheWholeStructuresAlone)
{
    StderrCapture errors;
    const Bytes table = joined({slot(3, 9), slot(3, 10), slot(3, 11)});
    for (std::size_t length = 0; length <= table.size(); ++length) {
        const int whole = static_cast<int>(length / slot(3, 9).size());
        EXPECT_EQ(walk(Bytes(table.begin(), table.begin() + static_cast<long>(length))), whole == 0 ? -1 : 8 + whole);
    }
    EXPECT_EQ(errors.text(), "");
}

TEST(SlotTable, AStructureWithoutRoomForItsHeaderStopsTheWalk)
{
    for (const QRX_U8 length : Bytes{0, 1, 2, 3}) {
        StderrCapture errors;
        Bytes broken = structure(1, 4);
        broken[1] = length;
        EXPECT_EQ(walk(joined({slot(3, 9), broken, slot(3, 10)})), 9);
        EXPECT_EQ(errors.text(),
                  "Invalid entry length (" + std::to_string(length) + "). DMI table is broken! Stop.\n\n");
    }
}

TEST(SlotTable, AStructureThatReachesPastTheEndIsNotDecoded)
{
    Bytes last = slot(3, 10);
    last[1] = 255;
    EXPECT_EQ(walk(joined({slot(3, 9), last})), 9);
}

TEST(SlotTable, AStructureWhoseStringsHaveNoEndIsNotDecoded)
{
    Bytes last = slot(3, 10);
    last.resize(17);
    last.insert(last.end(), {'a', 0});
    EXPECT_EQ(walk(joined({slot(3, 9), last})), 9);
    last.push_back(0);
    EXPECT_EQ(walk(joined({slot(3, 9), last})), 10);
}

TEST(SlotTable, StringsAreSteppedOver)
{
    Bytes named = structure(1, 8);
    named.resize(8);
    const std::string strings = std::string("first\0second\0\0", 14);
    named.insert(named.end(), strings.begin(), strings.end());
    EXPECT_EQ(walk(joined({named, slot(3, 9)})), 9);
}

TEST(SlotTable, AShortSlotStructureReadsWhatFollowsInTheTableAndNoFurther)
{
    // Usage and id lie inside a structure of 12 bytes; the bus number would stand behind its end.
    Bytes early = structure(9, 12);
    early[7] = kInUse;
    early[9] = 21;
    EXPECT_EQ(walk(early), -1);
    EXPECT_EQ(walk(joined({early, Bytes{1}})), -1);
    EXPECT_EQ(walk(joined({early, Bytes{1, 2}})), -1);
    EXPECT_EQ(walk(joined({early, Bytes{1, 3}})), 21);
    EXPECT_EQ(walk(joined({structure(1, 8), early, Bytes{1}})), -1);
}

TEST(SlotTable, TheHeaderIsReadFromTheFirstFourBytes)
{
    Bytes bytes = {9, 17, 0x34, 0x12, 5};
    dmi_header h{};
    to_dmi_header(&h, bytes.data(), bytes.size());
    EXPECT_EQ(h.type, 9);
    EXPECT_EQ(h.length, 17);
    EXPECT_EQ(h.handle, 0x1234);
    EXPECT_EQ(h.data, bytes.data());
    EXPECT_EQ(h.available, 5U);
}

TEST(EntryPoint64, RefusesHighAddressesWhenTheTableIsReadFromMemory)
{
    StderrCapture errors;
    Bytes entry = entry64(19);
    entry[20] = 1;
    balance(entry, 5, 0, 24);
    int id = -1;
    EXPECT_EQ(smbios3_decode(entry.data(), "/nonexistent", 0, entry.size(), 3, &id), 0);
    EXPECT_EQ(errors.text(), "64-bit addresses not supported, sorry.\n");
    EXPECT_EQ(smbios3_decode(entry.data(), "/nonexistent", 1, entry.size(), 3, &id), 1);
    EXPECT_EQ(id, -1);
}

TEST(EntryPoint64, WithoutTheFlagTheTableStartsBehindTheHeader)
{
    const Scratch scratch;
    Bytes entry = entry64(static_cast<QRX_U32>(slot(3, 9).size()));
    entry[16] = 8;
    balance(entry, 5, 0, 24);
    const std::string file = scratch.file("memory", std::string(8 + 24, 'x') + text(slot(3, 9)));
    int id = -1;
    EXPECT_EQ(smbios3_decode(entry.data(), file.c_str(), 0, entry.size(), 3, &id), 1);
    EXPECT_EQ(id, 9);
}

TEST(Checksum, IsTheSumOfAllBytes)
{
    const u8 bytes[] = {1, 2, 0xFD};
    EXPECT_EQ(checksum(bytes, 3), 1);
    EXPECT_EQ(checksum(bytes, 2), 0);
    EXPECT_EQ(checksum(bytes, 0), 1);
}

class SmFile : public testing::Test {
protected:
    std::string read(off_t base, std::size_t wanted)
    {
        std::size_t size = wanted;
        const std::unique_ptr<char, void (*)(void*)> data(static_cast<char*>(read_SM_file(base, &size, file.c_str())),
                                                          std::free);
        return data != nullptr ? std::string(data.get(), size) : "null";
    }
    Scratch scratch;
    Libc libc;
    std::string file = scratch.file("file", "0123456789");
    StderrCapture errors;
};

TEST_F(SmFile, ReadsAtMostWhatIsThere)
{
    EXPECT_EQ(read(0, 4), "0123");
    EXPECT_EQ(read(3, 4), "3456");
    EXPECT_EQ(read(8, 4), "89");
    EXPECT_EQ(read(0, 1000), "0123456789");
    EXPECT_EQ(errors.text(), "");
    EXPECT_EQ(libc.closed.size(), 4U);
}

TEST_F(SmFile, NothingIsReadAtOrPastTheEnd)
{
    EXPECT_EQ(read(10, 1), "null");
    EXPECT_EQ(read(11, 1), "null");
    EXPECT_EQ(errors.text(), file + ": Can't read data beyond EOF\n" + file + ": Can't read data beyond EOF\n");
    EXPECT_EQ(libc.closed.size(), 2U);
}

TEST_F(SmFile, AFileThatCannotBeOpenedIsToldUnlessItIsNotThere)
{
    libc.refuse(file, ENOENT);
    EXPECT_EQ(read(0, 1), "null");
    EXPECT_EQ(errors.text(), "");
    libc.refuse(file, EACCES);
    EXPECT_EQ(read(0, 1), "null");
    EXPECT_EQ(errors.text(), file + ": Permission denied\n");
}

TEST_F(SmFile, FailuresOfSeekAndReadAreTold)
{
    libc.onLseek = [](int, off_t) {
        errno = ESPIPE;
        return off_t{-1};
    };
    EXPECT_EQ(read(0, 1), "null");
    EXPECT_EQ(errors.text(), file + ": lseek: Illegal seek\n");
    libc.onLseek = nullptr;
    libc.onRead = [](int, void*, std::size_t) {
        errno = EIO;
        return ssize_t{-1};
    };
    EXPECT_EQ(read(0, 1), "null");
    EXPECT_EQ(errors.text(), file + ": lseek: Illegal seek\n" + file + ": Input/output error\n");
    EXPECT_EQ(libc.closed.size(), 2U);
}

TEST_F(SmFile, AFailedCloseIsToldAndTheDataIsGood)
{
    libc.onRead = [](int fd, void* buffer, std::size_t count) {
        std::memset(buffer, 'x', count);
        close(fd);
        return static_cast<ssize_t>(count);
    };
    EXPECT_EQ(read(0, 4), "xxxx");
    EXPECT_EQ(errors.text(), file + ": Bad file descriptor\n");
}

TEST_F(SmFile, AnEarlyEndIsTold)
{
    libc.onFstat = [](int, struct stat*) { return -1; };
    EXPECT_EQ(read(0, 11), "null");
    EXPECT_EQ(errors.text(), file + ": Unexpected end of file\n");
    EXPECT_EQ(read(0, 10), "0123456789");
}

TEST_F(SmFile, InterruptedAndShortReadsGoOn)
{
    int calls = 0;
    libc.onRead = [&calls](int, void* buffer, std::size_t) -> ssize_t {
        if (++calls % 2 == 1) {
            errno = EINTR;
            return -1;
        }
        *static_cast<char*>(buffer) = static_cast<char>('a' + calls / 2);
        return 1;
    };
    EXPECT_EQ(read(0, 3), "bcd");
    EXPECT_EQ(calls, 6);
}

TEST(SlotText, StringsAreCountedFromOne)
{
    Bytes bytes = {1, 4, 0, 0, 'a', 'b', 0, 'c', 0, 0};
    dmi_header h{};
    to_dmi_header(&h, bytes.data(), bytes.size());
    EXPECT_STREQ(dmi_string(&h, 0), "Not Specified");
    EXPECT_STREQ(dmi_string(&h, 1), "ab");
    EXPECT_STREQ(dmi_string(&h, 2), "c");
    EXPECT_STREQ(dmi_string(&h, 3), "<BAD INDEX>");
    EXPECT_STREQ(dmi_string(&h, 255), "<BAD INDEX>");
    to_dmi_header(&h, bytes.data(), 8);  // cut in the second string
    EXPECT_STREQ(dmi_string(&h, 1), "ab");
    EXPECT_STREQ(dmi_string(&h, 2), "<BAD INDEX>");
    h.length = 200;
    EXPECT_STREQ(dmi_string(&h, 1), "<BAD INDEX>");
}

TEST(SlotText, Usages)
{
    const char* expected[] = {"<OUT OF SPEC>", "Other", "Unknown", "Available", "In Use", "Unavailable"};
    for (int code = 0; code < 256; ++code) {
        EXPECT_STREQ(dmi_slot_current_usage(static_cast<u8>(code)), expected[code < 6 ? code : 0]) << code;
    }
}

TEST(SlotText, BusAddresses)
{
    StdoutCapture out;
    dmi_slot_segment_bus_func(0x12, 0x1A, 0x2B, "\t");
    dmi_slot_segment_bus_func(0xFFFF, 0xFF, 0xFE, "");
    dmi_slot_segment_bus_func(0xFFFF, 0xFF, 0xFF, "\t");
    EXPECT_EQ(out.text(),
              "\tBus Address: 0012:1a:05.3\n"
              "Bus Address: ffff:ff:1f.6\n");
}

}  // namespace
