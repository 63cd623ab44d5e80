// Whole files in and out.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qrx::sim {

// The content of a file; empty with errno set when it cannot be read.
[[nodiscard]] std::optional<std::string> read_file(const std::string& path);

// Replaces a file, or makes it, so that at every moment either the old or the new content stands there whole: a
// temporary file in the same directory, brought to disk, takes its name. A symbolic link is followed. False with
// errno set, and the old file untouched.
[[nodiscard]] bool replace_file(const std::string& path, std::string_view content);

}  // namespace qrx::sim
