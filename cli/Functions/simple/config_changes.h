// What -a and -r change of a controller's settings.
#pragma once

#include <optional>

#include "api/src/interface/wire/adapter.h"

namespace qrx::config {

// BGARate and the words for it.
inline constexpr QRX_U8 kRateHigh = 0;
inline constexpr QRX_U8 kRateMedium = 2;
inline constexpr QRX_U8 kRateLow = 32;

inline constexpr char kUpdated[] = "HBA configuration is updated.\n";

struct Changes {
    std::optional<int> autoRebuild;
    std::optional<int> BGARate;
};

// Read the argument of -a and of -r; false after a complaint.
bool readAutoRebuild(const char* word, Changes& changes);
bool readRate(const char* word, Changes& changes);

// Puts the changes into the settings; false, after a complaint, when there are none.
bool apply(const Changes& changes, NVME_Adapter_Config& config);

}  // namespace qrx::config
