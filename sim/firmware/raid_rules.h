// What each RAID mode asks of its members, and how many of them it can lose.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "api/src/interface/wire/vd.h"

namespace qrx::sim {

struct RaidRule {
    QRX_U8 mode;  // RAID mode code
    std::string_view name;
    QRX_U8 support_bit;  // in the adapter's mask of RAID modes
    QRX_U8 least;        // members
    QRX_U8 most;
    bool even;            // only an even number of members
    QRX_U8 groups;        // sets of members side by side, each of which must hold; 0: mirrored pairs
    QRX_U8 losses;        // members that a group can lose, at least; kAllButOne: one is enough
    QRX_U8 parity_disks;  // of a group, at least, and of one that nothing else was asked for; 0: it has none to count

    static constexpr QRX_U8 kAllButOne = 255;

    // Whether it outlives the loss of a member.
    [[nodiscard]] bool redundant() const { return losses != 0; }
    [[nodiscard]] bool takes(std::size_t members) const
    {
        return members >= least && members <= most && (!even || members % 2 == 0);
    }
    // The parity disks of each group, where `all` groups together are to have so many, 0 standing for as many as usual.
    // Nothing where there are none to count, they are too few, no group would have a disk left, or groups would differ.
    [[nodiscard]] std::optional<QRX_U8> parity_of_group(QRX_U8 all, std::size_t members) const;
    // Whether a set whose groups have `parity` disks still holds its data when the members marked in `lost` are gone.
    [[nodiscard]] bool survives(std::span<const bool> lost, QRX_U8 parity) const;
};

// The rule of a mode, or null for a code that is none.
[[nodiscard]] const RaidRule* find_raid_rule(QRX_U8 mode);

}  // namespace qrx::sim
