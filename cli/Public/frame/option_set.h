// The two tables that the option scanner wants, made of a command's own rows, for commands that have their options in a
// table anyway.
//
//     OptionSet options;
//     for (const Field& field : kFields) options.add(field.letter, field.name);
//     OptionScan scan(argc, argv, options.letters(), options.rows());
//     readOptions(scan, pCmdInfo, options.known(), 0, ...)
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "cli/Public/frame/option_scan.h"

namespace qrx {

class OptionSet {
public:
    static constexpr std::size_t kMost = 24;  // options that may be added

    OptionSet();

    // Adds an option that takes an argument. Behind the long name it may be left out if `argument` says so. `name`
    // must outlive this.
    OptionSet& add(char letter, const char* name, int argument = required_argument);

    // What was added; with the silent option and -h behind it in the first two.
    [[nodiscard]] const char* letters() const { return letters_.data(); }
    [[nodiscard]] const option* rows() const { return rows_.data(); }
    [[nodiscard]] std::string_view known() const { return {known_.data(), count_}; }

private:
    void close();

    std::array<char, 2 * kMost + 4> letters_{};
    std::array<option, kMost + 3> rows_{};
    std::array<char, kMost> known_{};
    std::size_t count_ = 0;
};

}  // namespace qrx
