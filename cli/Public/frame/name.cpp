#include "cli/Public/frame/name.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cctype>

#include "cli/Public/common.h"
#include "cli/Public/frame/report.h"

namespace qrx {

std::optional<std::string> readName(const char* word)
{
    std::array<char, 4 * kVdNameMax> text{};  // what is cut off such a text is of one that is too long anyway
    if (noQuoteCopy(text, word) != 0) {
        return std::nullopt;
    }
    std::string name(text.data());
    if (name.size() > kVdNameMax) {
        print("-n : length of name should be no more than %d characters\n", static_cast<int>(kVdNameMax));
        return std::nullopt;
    }
    return name;
}

bool checkName(const std::string& name)
{
    const auto isAllowed = [](unsigned char c) { return std::isalnum(c) != 0 || c == ' ' || c == '_'; };
    return std::all_of(name.begin(), name.end(), isAllowed) ||
           complain("-n, name must be numeric, character, space or underline. Now is %s\n", name.c_str());
}

void storeName(std::string_view name, std::span<QRX_U8, kVdNameMax> field)
{
    assert(name.size() <= field.size());
    std::fill(std::copy(name.begin(), name.end(), field.begin()), field.end(), QRX_U8{0});
}

}  // namespace qrx
