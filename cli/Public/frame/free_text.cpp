// A free text of the user's, without its double quotes.
#include "cli/Public/frame/free_text.h"

#include <algorithm>
#include <cassert>

#include "cli/Public/common.h"
#include "cli/Public/frame/report.h"

namespace qrx {

FreeText::FreeText(const char* word) : word_(word), good_(noQuoteCopy(text_, word) == 0) {}

bool FreeText::fits(int letter, std::size_t most) const
{
    assert(most <= kMost);
    return view().size() <= most || complain("-%c : invalid length '%s', the maximum size is %d bytes.\n", letter,
                                             word_, static_cast<int>(most));
}

bool FreeText::store(int letter, std::span<QRX_U8> field, QRX_U8 filler) const
{
    if (!good() || !fits(letter, field.size())) {
        return false;
    }
    std::fill(std::copy(view().begin(), view().end(), field.begin()), field.end(), filler);
    return true;
}

}  // namespace qrx
