// Commands that a controller without RAID does not have.
#pragma once

namespace qrx {

inline constexpr char kRefusedInJbof[] = "This feature is not support JBOF.\n";

// What most of these commands return after the refusal: the length of its text.
inline constexpr int kJbofResult = sizeof(kRefusedInJbof) - 1;

// True, after the refusal, when the current controller has no RAID.
bool refusedInJbof();

}  // namespace qrx
