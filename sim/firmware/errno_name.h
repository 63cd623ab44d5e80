// Error numbers of the operating system, by name.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qrx::sim {

// "EIO" for 5; the number itself for one without a name here.
[[nodiscard]] std::string errno_name(int error);
// 5 for "EIO", and for "5"; numbers are 1 to 4095.
[[nodiscard]] std::optional<int> parse_errno(std::string_view text);
// "EIO, EINVAL, ...": the names that parse_errno knows.
[[nodiscard]] std::string errno_names();

}  // namespace qrx::sim
