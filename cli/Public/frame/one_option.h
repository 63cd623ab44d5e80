// The option pass of a command that needs one option, and takes it once.
#pragma once

#include <optional>
#include <string_view>

#include "cli/Public/frame/handler.h"

namespace qrx {

// As readOptions with the one letter: `read()` stores its argument, or complains and gives false. Then complains where
// the option came twice, or not at all, which ends as a complaint of the scanner does.
template <class Read>
std::optional<int> readOneOption(OptionScan& scan, PCommand_Info row, char letter, Read&& read, OnComplaint refused = 0)
{
    const std::string_view known(&letter, 1);
    if (const auto result = readOptions(scan, row, known, refused, [&](int) { return read(); })) {
        return result;
    }
    if (scan.repeated(known)) {
        return duplicateOption();
    }
    return requireOptions(scan, row, known, refused.ofScanner);
}

}  // namespace qrx
