// `qrx_sim make-image`: makes a firmware image to show and test updates with.
#pragma once

#include <string_view>

#include "sim/launcher/options.h"

namespace qrx::sim {

// The exit value: 0, or kExitOwnFailure after saying on standard error what is wrong and what is allowed.
[[nodiscard]] int run_make_image(const Options& options);

// What its --help prints.
[[nodiscard]] std::string_view image_usage();

}  // namespace qrx::sim
