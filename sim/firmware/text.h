// Text in wire records, and bytes as hexadecimal text.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

// Fills `field` with `text`, cut to the field's size, and with blanks behind it.
void pad_with_blanks(std::span<QRX_U8> field, std::string_view text);
// Fills `field` with `text`, cut to the field's size, and with zeros behind it.
void pad_with_zeros(std::span<QRX_U8> field, std::string_view text);

// Two lower-case digits for each byte.
[[nodiscard]] std::string to_hex(std::span<const QRX_U8> bytes);
// Reads the bytes of `digits`, which must be exactly two hexadecimal digits for each; false when they are not.
[[nodiscard]] bool from_hex(std::string_view digits, std::span<QRX_U8> bytes);

// FNV-1a over `text`, started with `seed`: where the model needs a number that looks arbitrary and never changes.
[[nodiscard]] QRX_U64 stable_hash(std::string_view text, QRX_U64 seed);

}  // namespace qrx::sim
