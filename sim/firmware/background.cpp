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

Clock::Duration BackgroundActivity::left() const
{
    return running() ? Clock::Duration(finished() ? 0 : duration - elapsed) : Clock::Duration::max();
}

Clock::Duration BackgroundActivity::left_of_tenth() const
{
    if (!running() || finished()) {
        return left();
    }
    const QRX_U64 tenth = percentage() / 10U + 1;
    const QRX_U64 end = duration / 10 * tenth + (duration % 10 * tenth + 9) / 10;
    return Clock::Duration(end > elapsed ? end - elapsed : 1);
}

void BackgroundActivity::stretch(QRX_U64 from, QRX_U64 to)
{
    const auto scaled = [from, to](QRX_U64 value) { return value / from * to + value % from * to / from; };
    duration = std::max<QRX_U64>(scaled(duration), 1);
    elapsed = std::min(scaled(elapsed), duration - 1);
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

QRX_U64 rate_factor(QRX_U8 rate)
{
    switch (rate) {
    case 0:
        return 1;
    case 32:
        return 4;
    default:
        return 2;
    }
}

QRX_U64 activity_duration(QRX_U8 type, QRX_U64 bytes, QRX_U8 rate)
{
    constexpr QRX_U64 kBytesPerMillisecond = 1000000;  // of every member at once, at the rate "high"
    constexpr QRX_U64 kQuickShare = 100;               // a quick initialization writes the hundredth part
    QRX_U64 duration = bytes / kBytesPerMillisecond * rate_factor(rate);
    if (type == QRX_NVME_BGA_TYPE_VD_INIT_QUICK) {
        duration /= kQuickShare;
    }
    return std::max<QRX_U64>(duration, 1);
}

const char* activity_name(QRX_U8 type)
{
    switch (type) {
    case QRX_NVME_BGA_TYPE_VD_INIT_QUICK:
        return "quick initialization";
    case QRX_NVME_BGA_TYPE_VD_INIT_BACKGROUND:
        return "initialization";
    case QRX_NVME_BGA_TYPE_VD_REBUILD:
        return "rebuild";
    case QRX_NVME_BGA_TYPE_VD_SYNC:
        return "synchronization";
    case QRX_NVME_BGA_TYPE_VD_MIGRATE:
        return "migration";
    case QRX_NVME_BGA_TYPE_HD_MEDIAPATROL:
    case QRX_NVME_BGA_TYPE_VD_MEDIAPATROL:
        return "media patrol";
    default:
        return "activity";
    }
}

const char* activity_word(QRX_U8 type)
{
    switch (type) {
    case QRX_NVME_BGA_TYPE_VD_INIT_QUICK:
    case QRX_NVME_BGA_TYPE_VD_INIT_BACKGROUND:
        return "_INIT";
    case QRX_NVME_BGA_TYPE_VD_REBUILD:
        return "_REBUILD";
    case QRX_NVME_BGA_TYPE_VD_MEDIAPATROL:
        return "_MP";
    default:
        return "";
    }
}

}  // namespace qrx::sim
