// What an eye sees of a controller's child controllers.
#pragma once

#include <string>

#include "sim/firmware/controller.h"

namespace qrx::sim {

// Mode and privilege, and a line for each child controller.
[[nodiscard]] std::string show_children(const Controller& controller);

}  // namespace qrx::sim
