#include "api/src/function/timesync/timesync.h"

#include <cstdint>
#include <ctime>

#include "api/src/function/log/log.h"
#include "api/src/interface/adapter.h"

QRX_U64 qrx_get_utc_now()
{
    const auto seconds = static_cast<std::int32_t>(std::time(nullptr));
    return static_cast<QRX_U64>(std::int64_t{seconds});
}

void TimeSyncFunction(QRX_U16 adapter_id)
{
    const QRX_U64 now = qrx_get_utc_now();
    add_log("time sync utc: %lld to adapter %d\n", static_cast<long long>(now), adapter_id);
    NVME_Adapter_Time time{};
    time.hi = static_cast<QRX_U16>(now >> 32U);
    time.mid = static_cast<QRX_U16>(now >> 16U);
    time.lw = static_cast<QRX_U16>(now);
    QRX_Adapter_SetTime(adapter_id, &time);
}
