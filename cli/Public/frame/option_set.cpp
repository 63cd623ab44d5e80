// The option scanner's tables, made of rows.
#include "cli/Public/frame/option_set.h"

#include <algorithm>
#include <cassert>

namespace qrx {

OptionSet::OptionSet()
{
    close();
}

OptionSet& OptionSet::add(char letter, const char* name, int argument)
{
    assert(count_ < kMost && known().find(letter) == std::string_view::npos);
    letters_[2 * count_] = letter;
    letters_[2 * count_ + 1] = ':';
    rows_[count_] = {name, argument, nullptr, letter};
    known_[count_] = letter;
    ++count_;
    close();
    return *this;
}

void OptionSet::close()
{
    constexpr std::string_view kCommon = "\x01:h";
    std::copy(kCommon.begin(), kCommon.end(), letters_.begin() + 2 * static_cast<std::ptrdiff_t>(count_));
    rows_[count_] = kOutputRow;
    rows_[count_ + 1] = kHelpRow;
    rows_[count_ + 2] = kEndRow;
}

}  // namespace qrx
