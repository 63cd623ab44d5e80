// The option pass of a command that needs one option, and takes it once.
#pragma once

#include <optional>
#include <string_view>

#include "cli/Public/frame/handler.h"

namespace qrx {

// As readOptions with the one letter: `read()` stores its argument, or complains and gives false, and the handler
// returns 0. Then complains where the option came twice or not at all.
template <class Read>
std::optional<int> readOneOption(OptionScan& scan, PCommand_Info row, char letter, Read&& read)
{
    const std::string_view known(&letter, 1);
    if (const auto result = readOptions(scan, row, known, 0, [&](int) { return read(); })) {
        return result;
    }
    if (scan.repeated(known)) {
        return duplicateOption();
    }
    return scan.has(letter) ? std::nullopt : std::optional<int>(optionRequired(row, letter));
}

}  // namespace qrx
