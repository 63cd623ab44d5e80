// Numbers as the user types them, and ids under the one-based rule.
//
// `long` is 32 bits in every command: what does not fit saturates at the ends of the 32-bit range, and is cut to the
// field's width by whoever stores it. A reader gives nothing for a text that is no number, and for a null text, which
// is an option whose optional argument was left out.
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <utility>

namespace qrx {

// strtol with a 32-bit long. `end`, if not null, gets the first character that was not read.
std::int32_t strtol32(const char* text, int base, const char** end = nullptr);

// strtoul with a 32-bit unsigned long.
std::uint32_t strtoul32(const char* text, int base);

// A text that passes isNumber, in base 10. An empty text is 0.
std::optional<std::int32_t> readNumber(const char* text);

// Hexadecimal where the text holds "0x" anywhere (a text that does not begin with its number is then 0); otherwise as
// readNumber.
std::optional<std::int32_t> readHexOrNumber(const char* text);

// The same, but that a hexadecimal one may take all 32 bits, and more, of which the lower 32 count. The decimal one
// saturates at 0x7FFFFFFF.
std::optional<std::uint32_t> readWideHexOrNumber(const char* text);

// For a number of which nothing may be lost, since a part of it would be another block, word or set of disks: as
// readHexOrNumber, but as wide as `bits` (64 at most), and nothing for a sign, for what is no digit behind the digits,
// and for a number that the bits do not hold.
std::optional<std::uint64_t> readExact(const char* text, unsigned bits = 64);

// An id as one of the readers above gave it, where the field that it goes to holds it. Nothing for a larger one: cut,
// it would be the id of another disk.
template <std::unsigned_integral Field = std::uint16_t>
std::optional<Field> narrowId(std::optional<std::int32_t> id)
{
    return id && std::in_range<Field>(*id) ? std::optional(static_cast<Field>(*id)) : std::nullopt;
}

// 1 in one-based mode, otherwise 0: what is added to an id that is shown, and taken off one that is typed.
int idBase();

// An id as typed: readNumber less idBase(). Nothing for a result below 0 too.
std::optional<std::int32_t> readId(const char* text);

}  // namespace qrx
