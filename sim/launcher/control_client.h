// `qrx_sim ctl`: reads its words, finds the machine, asks, and shows the answer.
#pragma once

#include "sim/launcher/options.h"

namespace qrx::sim {

// The exit value: 0; 1 when the machine refused, kExitOwnFailure when none was reached or the words were wrong. Says
// on standard error what went wrong.
[[nodiscard]] int run_control(const Options& options);

}  // namespace qrx::sim
