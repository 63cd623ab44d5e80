// The rate limits of a host function. 0 is none.
#pragma once

#include "api/src/interface/wire/qos.h"
#include "api/src/interface/wire/types.h"

namespace qrx::sim {

struct RateLimits {
    QRX_U16 iops_read = 0;  // thousands
    QRX_U16 iops_write = 0;
    QRX_U16 bandwidth_read = 0;  // Mib
    QRX_U16 bandwidth_write = 0;

    friend bool operator==(const RateLimits&, const RateLimits&) = default;

    [[nodiscard]] bool none() const { return *this == RateLimits{}; }
    // Whether the firmware can keep them.
    [[nodiscard]] bool valid() const
    {
        const auto fits = [](QRX_U16 limit, QRX_U16 least) { return limit == 0 || limit >= least; };
        return fits(iops_read, kQosIopsMin) && fits(iops_write, kQosIopsMin) &&
               fits(bandwidth_read, kQosBandwidthMin) && fits(bandwidth_write, kQosBandwidthMin);
    }
    [[nodiscard]] QoSTable record() const
    {
        return {iops_read, iops_write, bandwidth_read, bandwidth_write, static_cast<QRX_U8>(none() ? 0 : 1), {}};
    }
};

}  // namespace qrx::sim
