// Comma-separated lists as the user types them.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace qrx {

// Calls `take(element)` for each element of the list, in order, until it gives false. Empty elements are passed over.
// False when `take` gave it.
template <class Take>
bool eachElement(std::string_view list, Take&& take)
{
    while (!list.empty()) {
        const std::string element(list.substr(0, list.find(',')));
        list.remove_prefix(std::min(element.size() + 1, list.size()));
        if (!element.empty() && !take(element.c_str())) {
            return false;
        }
    }
    return true;
}

}  // namespace qrx
