// The fixed-width integers of every record that crosses between host and controller.
// All of them are little-endian on the wire, and so is every host this tool is built for.
#pragma once

#include <bit>
#include <cstdint>

using QRX_U8 = std::uint8_t;
using QRX_U16 = std::uint16_t;
using QRX_U32 = std::uint32_t;
using QRX_U64 = std::uint64_t;
using QRX_BOOLEAN = bool;

static_assert(std::endian::native == std::endian::little, "wire records are read and written by plain copies");
