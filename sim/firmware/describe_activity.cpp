// The text form of a background activity of a drive or a virtual disk.
#include "sim/firmware/describe.h"

namespace qrx::sim {

namespace {

constexpr auto kActivityStateWords =
    std::to_array<JsonWord>({{QRX_NVME_BGA_STATUS_RUNNING, "running"}, {QRX_NVME_BGA_STATUS_PAUSE, "paused"}});
constexpr auto kActivityWords = std::to_array<JsonWord>({
    {QRX_NVME_BGA_TYPE_VD_INIT_QUICK, "quick-initialization"},
    {QRX_NVME_BGA_TYPE_VD_INIT_BACKGROUND, "initialization"},
    {QRX_NVME_BGA_TYPE_VD_REBUILD, "rebuild"},
    {QRX_NVME_BGA_TYPE_VD_SYNC, "sync"},
    {QRX_NVME_BGA_TYPE_VD_MIGRATE, "migrate"},
    {QRX_NVME_BGA_TYPE_HD_MEDIAPATROL, "pd-media-patrol"},
    {QRX_NVME_BGA_TYPE_VD_MEDIAPATROL, "media-patrol"},
});

template <class Io>
void describe(Io& io, BackgroundActivity& activity)
{
    io.code("type", activity.type, kActivityWords);
    io.code("state", activity.state, kActivityStateWords);
    io.number("duration_ms", activity.duration, 1, kMaxMilliseconds);
    io.number("elapsed_ms", activity.elapsed, 0, kMaxMilliseconds);
    io.check(!activity.finished(), "elapsed_ms", "is not below 'duration_ms'; an activity that is done is left out");
}

}  // namespace

template <class Io>
void describe_activity(Io& io, std::optional<BackgroundActivity>& activity)
{
    io.optional("activity", activity, [](auto& inner, BackgroundActivity& value) { describe(inner, value); });
}

template void describe_activity(JsonReader&, std::optional<BackgroundActivity>&);
template void describe_activity(JsonWriter&, std::optional<BackgroundActivity>&);

}  // namespace qrx::sim
