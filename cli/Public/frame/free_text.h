// A free text of the user's, without its double quotes.
//
//     case 's': return qrx::FreeText(scan.word()).store('s', record.SN, ' ');
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "api/src/interface/wire/types.h"

namespace qrx {

class FreeText {
public:
    // Longest text that fits() may be asked for. One that is longer still is cut somewhere behind it.
    static constexpr std::size_t kMost = 64;

    // `word` must outlive this. A single quote at its front is complained about on standard output.
    explicit FreeText(const char* word);

    // False after that complaint.
    [[nodiscard]] bool good() const { return good_; }
    [[nodiscard]] std::string_view view() const { return text_.data(); }
    // Whether it has at most `most` bytes; complains if not, as of option `letter`.
    [[nodiscard]] bool fits(int letter, std::size_t most) const;
    // Puts it into `field` with `filler` behind it. False after a complaint, of option `letter` if it is too long.
    bool store(int letter, std::span<QRX_U8> field, QRX_U8 filler) const;

private:
    const char* word_;
    std::array<char, kMost + 16> text_{};
    bool good_;
};

}  // namespace qrx
