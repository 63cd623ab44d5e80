// Advanced Error Reporting of a drive: its registers as the root complex reads them, and errors that are put there.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "api/src/interface/wire/aer.h"
#include "sim/firmware/config_space.h"

namespace qrx::sim {

[[nodiscard]] AER_Data aer_record(const ConfigSpace& space);

// Puts an error into the registers as if it had happened; "none" clears all errors. False for an unknown word.
[[nodiscard]] bool put_aer_error(ConfigSpace& space, std::string_view word);
// All words, for people.
[[nodiscard]] std::string aer_errors();

}  // namespace qrx::sim
