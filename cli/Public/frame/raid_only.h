// Commands that a controller without RAID does not have, and those that it alone has.
#pragma once

namespace qrx {

inline constexpr char kRefusedInJbof[] = "This feature is not support JBOF.\n";

// What most of these commands return after the refusal: the length of its text.
inline constexpr int kJbofResult = sizeof(kRefusedInJbof) - 1;

// True, after the refusal, when the current controller has no RAID.
bool refusedInJbof();

// The same for the commands of a controller without RAID.
inline constexpr char kRefusedInRaid[] = "This feature is support JBOF only.\n";
inline constexpr int kRaidResult = sizeof(kRefusedInRaid) - 1;
bool refusedInRaid();

}  // namespace qrx
