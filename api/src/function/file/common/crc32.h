// The CRC-32 of IEEE 802.3 in its reflected form.
#pragma once

#include <array>
#include <cstddef>

#include "api/src/interface/wire/types.h"

namespace qrx {

inline constexpr QRX_U32 kCrcPolynomial = 0xEDB88320;
inline constexpr QRX_U32 kCrcStart = 0xFFFFFFFF;  // of the register, before the first byte

using CrcTable = std::array<QRX_U32, 256>;

constexpr CrcTable makeCrcTable()
{
    CrcTable table{};
    for (QRX_U32 index = 0; index < table.size(); ++index) {
        QRX_U32 value = index;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1U) != 0 ? (value >> 1U) ^ kCrcPolynomial : value >> 1U;
        }
        table[index] = value;
    }
    return table;
}

}  // namespace qrx

// What one byte does to the register.
inline constexpr qrx::CrcTable crc_tab = qrx::makeCrcTable();
static_assert(crc_tab[1] == 0x77073096 && crc_tab[255] == 0x2D02EF8D);

// Carries the register `crc` over `len` bytes. Neither is it inverted before, nor after.
QRX_U32 crc32(QRX_U32 crc, const QRX_U8* data, std::size_t len);
