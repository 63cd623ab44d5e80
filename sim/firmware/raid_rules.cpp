#include "sim/firmware/raid_rules.h"

#include <algorithm>
#include <array>

namespace qrx::sim {

namespace {

constexpr QRX_U8 kAll = RaidRule::kAllButOne;
constexpr QRX_U8 kMost = kVdMembersMax;

constexpr auto kRules = std::to_array<RaidRule>({
    {kRaid0, "RAID0", 0, 1, kMost, false, 1, 0, 0},
    {kRaid1, "RAID1", 1, 2, 2, false, 1, kAll, 0},
    {kJbod, "JBOD", 2, 1, 1, false, 1, 0, 0},
    {kRaid10, "RAID10", 3, 4, kMost, true, 0, kAll, 0},
    {kRaid5, "RAID5", 4, 3, kMost, false, 1, 1, 0},
    {kRaid50, "RAID50", 5, 6, kMost, true, 2, 1, 0},
    {kRaid6, "RAID6", 6, 3, kMost, false, 1, 2, 2},
    {kRaid60, "RAID60", 7, 6, kMost, true, 2, 2, 2},
});

}  // namespace

std::optional<QRX_U8> RaidRule::parity_of_group(QRX_U8 all, std::size_t members) const
{
    if (all == 0) {
        return parity_disks;
    }
    if (parity_disks == 0 || all % groups != 0 || all / groups < parity_disks || all >= members) {
        return std::nullopt;
    }
    return static_cast<QRX_U8>(all / groups);
}

bool RaidRule::survives(std::span<const bool> lost, QRX_U8 parity) const
{
    const QRX_U8 outlived = parity_disks == 0 ? losses : std::max(losses, parity);
    const std::size_t count = groups == 0 ? lost.size() / 2 : groups;
    if (count == 0 || lost.size() < count) {
        return false;
    }
    const std::size_t size = lost.size() / count;
    for (std::size_t group = 0; group < count; ++group) {
        const auto members = lost.subspan(group * size, size);
        const auto gone = static_cast<std::size_t>(std::count(members.begin(), members.end(), true));
        if (gone > outlived || gone >= size) {
            return false;
        }
    }
    return true;
}

const RaidRule* find_raid_rule(QRX_U8 mode)
{
    const auto* const found =
        std::find_if(kRules.begin(), kRules.end(), [mode](const RaidRule& rule) { return rule.mode == mode; });
    return found == kRules.end() ? nullptr : found;
}

}  // namespace qrx::sim
