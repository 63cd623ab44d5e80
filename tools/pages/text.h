// Lines of the help texts, and small things that every page needs.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qrx::pages {

struct Line {
    std::size_t indent = 0;  // blanks in front; a tab counts as four
    std::string text;        // without them, and without blanks at its end

    [[nodiscard]] bool blank() const { return text.empty(); }
};

// Without blank lines at either end.
std::vector<Line> lines(std::string_view text);

// The brief text of a row as a sentence of its own: without the ":" in front. Only its first line.
std::string sentence(std::string_view brief);

// "a, b, c".
std::string joined(const std::vector<std::string>& parts, std::string_view between);

// A word of a shell: in single quotes.
std::string quoted(std::string_view word);

}  // namespace qrx::pages
