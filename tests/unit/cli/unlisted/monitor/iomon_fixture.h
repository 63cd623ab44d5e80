// The counters of a controller under test, put into the answer byte by byte, and the page that is made of them.
#pragma once

#include <array>
#include <cstdio>
#include <string>

#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"

namespace qrx::test {

// Each counter of each namespace has a value of its own: the base of the counter and the namespace's id.
enum Base : QRX_U32 {
    kReadIo = 1000,
    kReadSectors = 2000,
    kWriteIo = 3000,
    kWriteSectors = 4000,
    kReadFails = 5000,
    kWriteFails = 6000,
    kReadSuccesses = 7000,
    kWriteSuccesses = 8000,
    kReadTicks = 9000,
    kWriteTicks = 10000,
    kInflight = 11000,
    kInQueue = 12000,
};
// What the 64-bit counters have besides, so that a lost upper half shows.
inline constexpr QRX_U64 kHigh = QRX_U64{7} << 32;

inline void put(Bytes& bytes, std::size_t offset, QRX_U64 value, unsigned width)
{
    for (unsigned i = 0; i < width; ++i) {
        bytes.at(offset + i) = static_cast<QRX_U8>(value >> (8 * i));
    }
}

inline Bytes counters()
{
    Bytes bytes(2500);
    for (std::size_t i = 0; i < 32; ++i) {
        const QRX_U64 id = i + 1;
        put(bytes, 16 * i, kHigh + kReadIo + id, 8);
        put(bytes, 16 * i + 8, kHigh + kReadSectors + id, 8);
        put(bytes, 512 + 16 * i, kHigh + kWriteIo + id, 8);
        put(bytes, 512 + 16 * i + 8, kHigh + kWriteSectors + id, 8);
        put(bytes, 1024 + 2 * i, kReadFails + id, 2);
        put(bytes, 1088 + 2 * i, kWriteFails + id, 2);
        put(bytes, 1152 + 8 * i, kHigh + kReadSuccesses + id, 8);
        put(bytes, 1408 + 8 * i, kHigh + kWriteSuccesses + id, 8);
        put(bytes, 1664 + 8 * i, kHigh + kReadTicks + id, 8);
        put(bytes, 1920 + 8 * i, kHigh + kWriteTicks + id, 8);
        put(bytes, 2176 + 2 * i, kInflight + id, 2);
        put(bytes, 2240 + 8 * i, kHigh + kInQueue + id, 8);
    }
    return bytes;
}

// Idle times: window w of namespace n was busy for w percent and n hundredths of a percent.
inline Bytes windows(QRX_U8 cursor, QRX_U8 tag)
{
    Bytes bytes(1284);
    for (unsigned i = 0; i < 32; ++i) {
        for (unsigned w = 0; w < 10; ++w) {
            put(bytes, 40 * i + 4 * w, 1000000 - (w + 1) * 10000 - (i + 1) * 100, 4);
        }
    }
    bytes[1280] = cursor;
    bytes[1281] = tag;
    return bytes;
}

inline std::string wide(unsigned base, unsigned id)
{
    return std::to_string(kHigh + base + id);
}

inline std::string countersText(unsigned id)
{
    return "        Read:\n          I/O count           :" + wide(kReadIo, id) +
           "\n          Sector count        :" + wide(kReadSectors, id) +
           "\n          Success count       :" + wide(kReadSuccesses, id) +
           "\n          Fail count          :" + std::to_string(kReadFails + id) +
           "\n          I/O Ticks           :" + wide(kReadTicks, id) +
           "(microseconds)\n\n        Write:\n          I/O count           :" + wide(kWriteIo, id) +
           "\n          Sector count        :" + wide(kWriteSectors, id) +
           "\n          Success count       :" + wide(kWriteSuccesses, id) +
           "\n          Fail count          :" + std::to_string(kWriteFails + id) +
           "\n          I/O Ticks           :" + wide(kWriteTicks, id) +
           "(microseconds)\n\n        Inflight I/O          :" + std::to_string(kInflight + id) +
           "\n        Time in queue         :" + wide(kInQueue, id) + "(microseconds)\n\n";
}

// `calculating` is the number of the window that has no figure; 0: all have one.
inline std::string windowsText(unsigned id, unsigned calculating)
{
    std::string text;
    for (unsigned w = 1; w <= 10; ++w) {
        std::array<char, 80> line{};
        if (w == calculating) {
            (void)std::snprintf(line.data(), line.size(), "        Busy time slide window  #%u:Calculating\n", w);
        } else {
            (void)std::snprintf(line.data(), line.size(), "        Busy time slide window %s%u:%u.%02u%%\n",
                                w == 10 ? "#" : " #", w, w, id);
        }
        text += line.data();
    }
    return text;
}

inline std::string ringText(unsigned cursor, unsigned tag)
{
    return "        Cursor      :" + std::to_string(cursor) + "\n        Tag         :" + std::to_string(tag) + "\n";
}

// The page of one namespace, from answers of counters() and windows(3, 77).
inline std::string pageOf(unsigned id)
{
    return "  NS " + std::to_string(id) + " Raw Data:\n" + countersText(id) + "  NS Statistics Data:\n" +
           windowsText(id, 5) + ringText(3, 77);
}

// That of all of them.
inline std::string pageOfAll()
{
    std::string text = "  NS Raw Data:\n";
    for (unsigned id = 1; id <= 32; ++id) {
        text += "      NS " + std::to_string(id) + ":\n" + countersText(id);
    }
    text += "  NS Statistics Data:\n";
    for (unsigned id = 1; id <= 32; ++id) {
        text += "      NS " + std::to_string(id) + ":\n" + windowsText(id, 5);
    }
    return text + ringText(3, 77);
}

class IomonTest : public StorageTest {
protected:
    static Command readCounters() { return page(0x1FE0, 0x1401).word(10, 1023); }
    static Command readWindows() { return page(0x20E0, 0x1401).word(10, 1023); }
    void expectBoth()
    {
        machine.expect(readCounters().data(counters()));
        machine.expect(readWindows().data(windows(3, 77)));
    }
};

}  // namespace qrx::test
