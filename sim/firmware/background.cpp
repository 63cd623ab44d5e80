#include "sim/firmware/background.h"

#include <algorithm>

namespace qrx::sim {

QRX_U8 BackgroundActivity::percentage() const
{
    if (finished()) {
        return 100;
    }
    // In floating point, so that no duration is long enough to overflow; cut, so that 100 means done.
    return static_cast<QRX_U8>(static_cast<long double>(elapsed) * 100 / static_cast<long double>(duration));
}

void BackgroundActivity::advance(Clock::Duration passed)
{
    if (running() && !finished()) {
        elapsed += std::min(static_cast<QRX_U64>(passed.count()), duration - elapsed);
    }
}

NVME_BGA_STATUS BackgroundActivity::record(QRX_U8 id) const
{
    NVME_BGA_STATUS record{};
    record.BgaType = type;
    record.ID = id;
    record.Percentage = percentage();
    record.BgaStatus = state;
    return record;
}

}  // namespace qrx::sim
