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

// Calls `read(letter)` for each option in `known`; it stores the argument, or complains and gives false. Any other
// option shows the help. Gives what the handler has to return at once: `refused` after a complaint of `read` or of the
// scanner, 0 after the help that was asked for. Nothing: go on. This is for commands that are complete without options.
template <class Read>
std::optional<int> passOptions(OptionScan& scan, PCommand_Info row, std::string_view known, int refused, Read&& read)
{
    for (int letter; (letter = scan.next()) != OptionScan::kEnd;) {
        if (letter == OptionScan::kError) {
            return refused;
        }
        if (known.find(static_cast<char>(letter)) == std::string_view::npos) {
            return showHelp(row, 0);
        }
        if (!read(letter)) {
            return refused;
        }
    }
    return std::nullopt;
}

// The same for all others: a bare command word shows the help too, and the handler returns 1.
template <class Read>
std::optional<int> readOptions(OptionScan& scan, PCommand_Info row, std::string_view known, int refused, Read&& read)
{
    if (const std::optional<int> result = passOptions(scan, row, known, refused, read)) {
        return result;
    }
    return scan.argc() == 1 ? std::optional<int>(showHelp(row, 1)) : std::nullopt;
}

}  // namespace qrx
