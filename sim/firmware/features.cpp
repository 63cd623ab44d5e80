#include "sim/firmware/features.h"

namespace qrx::sim {

namespace {

constexpr auto kRules = std::to_array<FeatureRule>({
    {0x01, "arbitration", 0x00000006, 0xFFFFFF07},
    {feature::kPowerManagement, "power_management", 0, 0},
    {feature::kTemperatureThreshold, "temperature_threshold", 343, 0xFFFF},
    {0x05, "error_recovery", 0, 0x0000FFFF},
    {0x06, "write_cache", 1, 1},
    {feature::kNumberOfQueues, "queues", 0x000F000F, 0},
    {0x08, "interrupt_coalescing", 0, 0x0000FFFF},
    {0x09, "interrupt_vector", 0, 0},
    {0x0A, "write_atomicity", 0, 1},
    {0x0B, "asynchronous_events", 0, 0x000001FF},
});
static_assert(kRules.size() == Features::kCount);

}  // namespace

std::span<const FeatureRule> feature_rules()
{
    return kRules;
}

std::array<QRX_U32, Features::kCount> Features::defaults()
{
    std::array<QRX_U32, kCount> values{};
    for (std::size_t i = 0; i < kCount; ++i) {
        values[i] = kRules[i].start;
    }
    return values;
}

std::optional<std::size_t> Features::index(QRX_U8 id)
{
    for (std::size_t i = 0; i < kCount; ++i) {
        if (kRules[i].id == id) {
            return i;
        }
    }
    return std::nullopt;
}

}  // namespace qrx::sim
