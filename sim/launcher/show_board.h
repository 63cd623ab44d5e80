// What an eye sees of a controller's board: its pins, and its features.
#pragma once

#include <string>

#include "sim/firmware/controller.h"

namespace qrx::sim {

// Power pins, PERST# lines and LEDs, a line each.
[[nodiscard]] std::string show_pins(const Controller& controller);

// The features that are switched, where the VPD lies, and what the SPI flash holds, a line each.
[[nodiscard]] std::string show_features(const Controller& controller);

// Error status, ports, how long it stalls yet, and whether it logs vendor-defined messages, a line each.
[[nodiscard]] std::string show_diagnostics(const Controller& controller);

}  // namespace qrx::sim
