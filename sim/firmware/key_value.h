// Lists of "key=value" that a user types, such as "nth=3,status=0x706".
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

struct KeyValue {
    std::string_view key;
    std::string_view value;
    bool has_value = false;  // an "=" was there
};

// One piece: what stands before its first "=" and behind it. They refer to `text`.
[[nodiscard]] KeyValue split_key_value(std::string_view text);

// The pieces between the commas; one, empty, of an empty text. They refer to `text`.
[[nodiscard]] std::vector<KeyValue> split_key_values(std::string_view text);

// A number in decimal, or in hexadecimal behind "0x".
[[nodiscard]] std::optional<QRX_U64> parse_number(std::string_view text);

}  // namespace qrx::sim
