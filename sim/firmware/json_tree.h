// JSON as a tree that knows the line of everything in it.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "api/src/interface/wire/types.h"
#include "sim/firmware/result.h"

namespace qrx::sim {

struct JsonTree {
    enum class Kind : QRX_U8 { kNull, kFlag, kNumber, kOtherNumber, kText, kList, kObject };

    struct Member;

    Kind kind = Kind::kNull;
    unsigned line = 0;  // 0 in a tree that was not read
    bool flag = false;
    QRX_U64 number = 0;  // kNumber: whole and not negative; all other numbers are kOtherNumber
    std::string text;
    std::vector<JsonTree> items;
    std::vector<Member> members;  // in the order of the text, each key once

    // "a number", "a list": for messages.
    [[nodiscard]] const char* kind_name() const;
    [[nodiscard]] const Member* find(std::string_view key) const;
};

struct JsonTree::Member {
    std::string key;
    unsigned line = 0;
    JsonTree value;
};

// "file:line: text"
[[nodiscard]] Failure failure_at(std::string_view file, unsigned line, std::string_view text);

// Reads `text`. Fails, as failure_at says it, on text that is not JSON, a key that occurs twice in its object, and
// nesting deeper than anything a machine needs.
[[nodiscard]] Result<JsonTree> parse_json(std::string_view text, std::string_view file);

// The tree as text, indented, with a line break at its end.
[[nodiscard]] std::string print_json(const JsonTree& tree);

}  // namespace qrx::sim
