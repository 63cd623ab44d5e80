// The option loop of a handler: rewinds the scanner, counts each option, and passes over the silent one.
//
//     OptionScan scan(argc, argv, "a:i:\x01:h", kLong);
//     for (int letter; (letter = scan.next()) != OptionScan::kEnd;) {
//         switch (letter) {
//         case 'i': ... scan.word() ...; break;
//         case OptionScan::kError: return 0;
//         default: return showHelp(pCmdInfo, 0);
//         }
//     }
//     if (scan.repeated("ai")) return duplicateOption();
#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>

#include "cli/Public/getopt.h"

namespace qrx {

// The rows that close the long table of a handler. Every handler takes the silent option (short "\x01:" in its option
// string, long `output`): it absorbs the word that start-up leaves behind for -output.
inline constexpr option kOutputRow{"output", required_argument, nullptr, 1};
inline constexpr option kHelpRow{"help", no_argument, nullptr, 'h'};
inline constexpr option kEndRow{nullptr, 0, nullptr, 0};

class OptionScan {
public:
    static constexpr int kEnd = -1;
    static constexpr int kError = '?';  // the scanner has printed its message

    // `rows` ends with kEndRow. All arguments must outlive the scan.
    OptionScan(int argc, char** argv, const char* letters, const option* rows);

    // The next option, counted; kError; or kEnd. The silent option and its argument are passed over.
    int next();

    // How often next() has given `letter`.
    [[nodiscard]] unsigned count(int letter) const { return counts_[index(letter)]; }
    [[nodiscard]] bool has(int letter) const { return count(letter) != 0; }
    // Words of the command, its own included.
    [[nodiscard]] int argc() const { return argc_; }
    // True when any of the letters came more than once.
    [[nodiscard]] bool repeated(std::string_view letters) const;

    // The argument of the last option; an empty text where an optional argument was left out. Never null.
    [[nodiscard]] char* word();

private:
    static std::size_t index(int letter) { return static_cast<unsigned char>(letter); }

    int argc_;
    char** argv_;
    const char* letters_;
    const option* rows_;
    std::array<unsigned, 256> counts_{};
    int stuckAt_ = 0;  // the word on which a flag letter with text behind it keeps the scanner, or 0
    char none_[1] = {'\0'};
};

// A word that an option takes, compared without regard to case, and what it stands for.
struct Keyword {
    const char* word;
    int value;
};
// Nothing for an unknown word, and for null.
std::optional<int> keyword(const char* text, std::span<const Keyword> words);

// Stores `value`, cut to the field's width; false, and the field as it was, when there is none.
template <class Value, class Field>
bool take(std::optional<Value> value, Field& field)
{
    if (value) {
        field = static_cast<Field>(*value);
    }
    return value.has_value();
}

}  // namespace qrx
