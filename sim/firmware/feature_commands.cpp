// Get Features and Set Features of an NVMe function.
#include <array>
#include <cstring>

#include "api/src/interface/wire/buffer.h"
#include "sim/firmware/nvme_function.h"

namespace qrx::sim {

namespace {

enum class Select : QRX_U8 { kCurrent = 0, kDefault = 1, kSaved = 2, kCapabilities = 3 };

constexpr QRX_U32 kCapabilityChangeable = 1U << 2;
constexpr QRX_U32 kSave = 1U << 31;
constexpr QRX_U64 kTimestampMask = 0xFFFFFFFFFFFFULL;
constexpr QRX_U64 kTimestampSetByHost = 1ULL << 49;  // bits 51 to 49: where the timestamp comes from

// CDW11 of the temperature threshold: which sensor, and which of its two limits.
bool composite_sensor(QRX_U32 cdw11)
{
    return (cdw11 >> 16 & 0xF) == 0;
}
bool under_limit(QRX_U32 cdw11)
{
    return (cdw11 >> 20 & 3) == 1;
}

bool threshold_known(QRX_U32 cdw11)
{
    return composite_sensor(cdw11) && (cdw11 >> 20 & 3) <= 1;
}

}  // namespace

Completion NvmeFunction::get_features(const nvme_admin_cmd& command, std::span<QRX_U8> data) const
{
    const auto id = static_cast<QRX_U8>(command.cdw10);
    const QRX_U32 selected = command.cdw10 >> 8 & 7;
    if (selected > static_cast<QRX_U32>(Select::kCapabilities)) {
        return complete(status::kInvalidField);
    }
    const auto select = static_cast<Select>(selected);
    if (id == feature::kTimestamp) {
        if (select == Select::kCapabilities) {
            return complete(status::kSuccess, kCapabilityChangeable);
        }
        const QRX_U64 now = select == Select::kCurrent
                                ? (clock.milliseconds & kTimestampMask) | (clock.set ? kTimestampSetByHost : 0)
                                : Clock::kPowerOn;
        return complete(wire::write(data, 0, now) ? status::kSuccess : status::kInvalidField);
    }
    const auto index = Features::index(id);
    if (!index) {
        const auto vendor = select == Select::kCurrent ? vendor_feature(command, data) : std::nullopt;
        return vendor.value_or(complete(status::kInvalidField));
    }
    const FeatureRule& rule = feature_rules()[*index];
    const bool threshold = id == feature::kTemperatureThreshold;
    if (threshold && !threshold_known(command.cdw11)) {
        return complete(status::kInvalidField);
    }
    const bool under = threshold && under_limit(command.cdw11);
    switch (select) {
    case Select::kCurrent:
        return complete(status::kSuccess, under ? features.under_temperature : features.values[*index]);
    case Select::kCapabilities:
        return complete(status::kSuccess, rule.changeable != 0 ? kCapabilityChangeable : 0);
    default:
        return complete(status::kSuccess, under ? 0 : rule.start);  // nothing is saved over a power cycle
    }
}

Completion NvmeFunction::set_features(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    const auto id = static_cast<QRX_U8>(command.cdw10);
    const auto index = Features::index(id);
    if ((command.cdw10 & kSave) == 0) {
        if (const auto vendor = set_vendor_feature(command, data)) {
            return *vendor;
        }
    }
    if (!index && id != feature::kTimestamp) {
        return complete(status::kInvalidField);
    }
    if ((command.cdw10 & kSave) != 0) {
        return complete(status::kFeatureNotSaveable);
    }
    if (!index) {
        const auto timestamp = wire::read<QRX_U64>(data);
        if (!timestamp) {
            return complete(status::kInvalidField);
        }
        clock.set_to(*timestamp & kTimestampMask);
        return complete(status::kSuccess);
    }
    const FeatureRule& rule = feature_rules()[*index];
    if (id == feature::kNumberOfQueues) {
        return complete(status::kSequenceError);  // too late: the driver's queues exist
    }
    if (id == feature::kPowerManagement) {
        return complete((command.cdw11 & 0x1F) == 0 ? status::kSuccess : status::kInvalidField);  // one power state
    }
    if (rule.changeable == 0) {
        return complete(status::kFeatureNotChangeable);
    }
    if (id == feature::kTemperatureThreshold) {
        if (!threshold_known(command.cdw11)) {
            return complete(status::kInvalidField);
        }
        QRX_U32& limit = under_limit(command.cdw11) ? features.under_temperature : features.values[*index];
        limit = command.cdw11 & rule.changeable;
        return complete(status::kSuccess);
    }
    features.values[*index] = command.cdw11 & rule.changeable;
    return complete(status::kSuccess);
}

}  // namespace qrx::sim
