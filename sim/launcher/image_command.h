// `qrx_sim make-image`: makes a firmware image to show and test updates with.
#pragma once

#include "sim/launcher/options.h"

namespace qrx::sim {

// The exit value: 0, or kExitOwnFailure after saying on standard error what is wrong and what is allowed.
[[nodiscard]] int run_make_image(const Options& options);

}  // namespace qrx::sim
