// Firmware images for tests, and what of them goes to a controller.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "tests/unit/support/bytes.h"

namespace qrx::test {

// The CRC-32 register after `bytes`, bit by bit.
inline QRX_U32 plainCrc(const Bytes& bytes, QRX_U32 crc = 0xFFFFFFFF)
{
    for (const QRX_U8 byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1U) != 0 ? (crc >> 1U) ^ 0xEDB88320 : crc >> 1U;
        }
    }
    return crc;
}

// As an image header has it: the bytes of the register reversed.
inline QRX_U32 headerCrc(const Bytes& bytes)
{
    return __builtin_bswap32(plainCrc(bytes));
}

inline void put32(Bytes& image, std::size_t offset, QRX_U32 value)
{
    std::memcpy(&image.at(offset), &value, sizeof(value));
}

inline QRX_U32 sumOf(const Bytes& image)
{
    QRX_U32 sum = 0;
    for (std::size_t offset = 0; offset + 4 <= image.size(); offset += 4) {
        QRX_U32 word = 0;
        std::memcpy(&word, &image[offset], sizeof(word));
        sum += word;
    }
    return sum;
}

// Sets the last word so that the sum is `sum`.
inline void setSum(Bytes& image, QRX_U32 sum = 0)
{
    put32(image, image.size() - 4, 0);
    put32(image, image.size() - 4, sum - sumOf(image));
}

inline constexpr std::array<std::size_t, 3> kHeaders{0x40000, 0x60000, 0x80000};
inline constexpr std::size_t kSegmentSize = 4096;  // bytes that one command carries
inline constexpr std::size_t kBody = 0x345;        // bytes of each component
inline constexpr std::size_t kRawSize = 0x81000;   // the least that holds all of them in whole pages

// A raw image whose components have their bodies `bodies` bytes behind their headers.
inline Bytes rawImage(std::array<std::size_t, 3> bodies, std::size_t size = kRawSize)
{
    Bytes image = pattern(size, 77);
    for (std::size_t i = 0; i < kHeaders.size(); ++i) {
        const std::size_t body = kHeaders[i] + bodies[i];
        put32(image, kHeaders[i] + 44, kBody);
        put32(
            image, kHeaders[i] + 40,
            headerCrc(Bytes(image.begin() + static_cast<long>(body), image.begin() + static_cast<long>(body + kBody))));
    }
    setSum(image);
    return image;
}

// The segments as the controller gets them: whole pages, the end of the last one left over from the page before.
inline std::vector<Bytes> segmentsOf(const Bytes& image)
{
    std::vector<Bytes> segments;
    Bytes page(4096);
    for (std::size_t offset = 0; offset < image.size(); offset += page.size()) {
        const std::size_t length = std::min(page.size(), image.size() - offset);
        std::copy_n(image.begin() + static_cast<long>(offset), length, page.begin());
        segments.push_back(page);
    }
    return segments;
}

inline std::string textOf(const Bytes& bytes)
{
    return {bytes.begin(), bytes.end()};
}

}  // namespace qrx::test
