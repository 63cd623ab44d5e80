// The CRC-32 of IEEE 802.3: a table for each of eight bytes, and for long data a way that needs no table.
//
// Long data is first made short. The register after a text depends on the text only modulo the polynomial, and there
// a 64-bit word weighs as much as its copies 145, 183, 211 and 300 words further on together. So each word but the
// last 300 is cleared by adding it (XOR) at those four places, and the tables have only the last 300 words to read.
// The additions of neighbouring words do not depend on each other, so the compiler does several at once.
#include "api/src/function/file/common/crc32.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t kWord = sizeof(QRX_U64);
constexpr std::size_t kSlices = 8;

// Row n: what a byte does that stands n bytes before the last of the step.
constexpr std::array<qrx::CrcTable, kSlices> makeSlices()
{
    std::array<qrx::CrcTable, kSlices> slices{crc_tab};
    for (std::size_t row = 1; row < kSlices; ++row) {
        for (std::size_t index = 0; index < crc_tab.size(); ++index) {
            const QRX_U32 before = slices[row - 1][index];
            slices[row][index] = (before >> 8U) ^ crc_tab[before & 0xFFU];
        }
    }
    return slices;
}
constexpr auto kSliceTables = makeSlices();

QRX_U64 wordAt(const QRX_U8* data)
{
    QRX_U64 word = 0;
    std::memcpy(&word, data, kWord);
    return word;
}

QRX_U32 byTables(QRX_U32 crc, const QRX_U8* data, std::size_t len)
{
    for (; len >= kWord; data += kWord, len -= kWord) {
        const QRX_U64 word = wordAt(data) ^ crc;
        crc = 0;
        for (std::size_t byte = 0; byte < kSlices; ++byte) {
            crc ^= kSliceTables[kSlices - 1 - byte][(word >> (8 * byte)) & 0xFFU];
        }
    }
    for (; len > 0; ++data, --len) {
        crc = (crc >> 8U) ^ crc_tab[(crc ^ *data) & 0xFFU];
    }
    return crc;
}

// The four places, in words. All are longer than a step of additions that are done at once.
constexpr std::size_t kFirst = 145;
constexpr std::size_t kSecond = 183;
constexpr std::size_t kThird = 211;
constexpr std::size_t kReach = 300;

// Proof of the four places: the register after a single bit and `words` further words of zeros.
constexpr QRX_U32 weight(std::size_t words)
{
    QRX_U32 value = 1;
    for (std::size_t byte = 0; byte < words * kWord; ++byte) {
        value = (value >> 8U) ^ crc_tab[value & 0xFFU];
    }
    return value;
}
static_assert(weight(kReach) ==
              (weight(kReach - kFirst) ^ weight(kReach - kSecond) ^ weight(kReach - kThird) ^ weight(0)));

constexpr std::size_t kStep = 1024;                // words folded between two moves of the window
constexpr std::size_t kLong = 4 * kReach * kWord;  // from here on it pays

// The words of one step, and in front of them those that still add to them.
using Window = std::array<QRX_U64, kReach + kStep>;

// Adds to each of the `count` new words what the words before it bring.
void fold(Window& window, std::size_t count)
{
    QRX_U64* words = window.data() + kReach;
    for (std::size_t done = 0; done < count;) {
        const std::size_t end = std::min(count, done + kFirst);  // none of these depends on another
        const QRX_U64* first = words - kFirst;
        const QRX_U64* second = words - kSecond;
        const QRX_U64* third = words - kThird;
        const QRX_U64* fourth = words - kReach;
#if !defined(__clang__)
#pragma GCC ivdep
#endif
        for (std::size_t i = done; i < end; ++i) {
            words[i] ^= first[i] ^ second[i] ^ third[i] ^ fourth[i];
        }
        done = end;
    }
}

QRX_U32 byFolding(QRX_U32 crc, const QRX_U8* data, std::size_t len)
{
    // Every word but the last kReach is folded. What is left of them stands in the front of the window at the end.
    const std::size_t words = len / kWord;
    Window window{};
    QRX_U64 start = crc;  // the register adds to the first bytes
    for (std::size_t left = words - kReach; left > 0;) {
        const std::size_t count = std::min(left, kStep);
        std::memcpy(window.data() + kReach, data, count * kWord);
        window[kReach] ^= start;
        start = 0;
        fold(window, count);
        std::memmove(window.data(), window.data() + count, kReach * kWord);
        data += count * kWord;
        left -= count;
    }
    // The last kReach words get what the folded ones bring, but bring nothing themselves.
    std::array<QRX_U64, kReach> rest{};
    std::memcpy(rest.data(), data, kReach * kWord);
    for (const std::size_t distance : {kFirst, kSecond, kThird, kReach}) {
        for (std::size_t i = 0; i < distance; ++i) {
            rest[i] ^= window[kReach - distance + i];
        }
    }
    crc = byTables(0, reinterpret_cast<const QRX_U8*>(rest.data()), kReach * kWord);
    return byTables(crc, data + kReach * kWord, len % kWord);
}

}  // namespace

QRX_U32 crc32(QRX_U32 crc, const QRX_U8* data, std::size_t len)
{
    return len >= kLong ? byFolding(crc, data, len) : byTables(crc, data, len);
}
