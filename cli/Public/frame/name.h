// The name of a virtual disk as the user types it with -n.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "api/src/interface/wire/types.h"
#include "api/src/interface/wire/vd.h"

namespace qrx {

inline constexpr std::size_t kVdNameMax = sizeof(_NVME_VD_Config::Name);
static_assert(sizeof(_NVME_Create_VD::Name) == kVdNameMax);

// The name without enclosing double quotes. Nothing, after a complaint, for one that begins with a single quote or has
// more than kVdNameMax characters.
std::optional<std::string> readName(const char* word);

// True for a name of digits, letters, blanks and underscores, and for an empty one; otherwise complains.
bool checkName(const std::string& name);

// Puts the name into its field, with zeros behind it. `name` has at most kVdNameMax characters.
void storeName(std::string_view name, std::span<QRX_U8, kVdNameMax> field);

}  // namespace qrx
