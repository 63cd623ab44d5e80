// The option pass that most handlers share.
//
//     OptionScan scan(argc, argv, kLetters, kLong);
//     Wish wish;
//     if (const auto result = readOptions(scan, pCmdInfo, "ai", 0, [&](int letter) { return read(letter, ...); })) {
//         return *result;
//     }
#pragma once

#include <optional>
#include <string_view>

#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/report.h"

namespace qrx {

// What the handler returns after a complaint in the option pass: mostly the same, whoever complained.
struct OnComplaint {
    constexpr OnComplaint(int result) : ofScanner(result), ofReader(result) {}
    constexpr OnComplaint(int scanner, int reader) : ofScanner(scanner), ofReader(reader) {}

    int ofScanner;  // of an option that there is none
    int ofReader;   // of an argument
};

// Calls `read(letter)` for each option in `known`; it stores the argument, or complains and gives false. Any other
// option shows the help. Gives what the handler has to return at once: `refused` after a complaint of the scanner or of
// `read`, 0 after the help that was asked for. Nothing: go on. This is for commands that are complete without options.
template <class Read>
std::optional<int> passOptions(OptionScan& scan, PCommand_Info row, std::string_view known, OnComplaint refused,
                               Read&& read)
{
    for (int letter; (letter = scan.next()) != OptionScan::kEnd;) {
        if (letter == OptionScan::kError) {
            return refused.ofScanner;
        }
        if (known.find(static_cast<char>(letter)) == std::string_view::npos) {
            return showHelp(row, 0);
        }
        if (!read(letter)) {
            return refused.ofReader;
        }
    }
    return std::nullopt;
}

// The same for all others: a bare command word shows the help too, and the handler returns 1.
template <class Read>
std::optional<int> readOptions(OptionScan& scan, PCommand_Info row, std::string_view known, OnComplaint refused,
                               Read&& read)
{
    if (const std::optional<int> result = passOptions(scan, row, known, refused, read)) {
        return result;
    }
    return scan.argc() == 1 ? std::optional<int>(showHelp(row, 1)) : std::nullopt;
}

// Complains about the first of `letters` that was not given; the handler has to return `result` then. Nothing: all
// were.
inline std::optional<int> requireOptions(const OptionScan& scan, PCommand_Info row, std::string_view letters,
                                         int result = 0)
{
    for (const char letter : letters) {
        if (!scan.has(letter)) {
            return optionRequired(row, letter, result);
        }
    }
    return std::nullopt;
}

}  // namespace qrx
