// The features of a device that Get and Set Features reach, but for the timestamp, which is the clock's.
#pragma once

#include <array>
#include <optional>
#include <span>

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

namespace feature {
inline constexpr QRX_U8 kPowerManagement = 0x02;
inline constexpr QRX_U8 kTemperatureThreshold = 0x04;
inline constexpr QRX_U8 kNumberOfQueues = 0x07;
inline constexpr QRX_U8 kTimestamp = 0x0E;
}  // namespace feature

// One feature that is a word.
struct FeatureRule {
    QRX_U8 id;
    const char* name;
    QRX_U32 start;       // value after power-on
    QRX_U32 changeable;  // bits that Set Features may change; 0: not changeable
};

[[nodiscard]] std::span<const FeatureRule> feature_rules();

struct Features {
    static constexpr std::size_t kCount = 10;

    std::array<QRX_U32, kCount> values = defaults();  // in the order of feature_rules()
    QRX_U32 under_temperature = 0;                    // Kelvin; the lower limit beside the threshold of 0x04

    friend bool operator==(const Features&, const Features&) = default;

    [[nodiscard]] static std::array<QRX_U32, kCount> defaults();
    // Where feature `id` stands in feature_rules().
    [[nodiscard]] static std::optional<std::size_t> index(QRX_U8 id);
};

}  // namespace qrx::sim
