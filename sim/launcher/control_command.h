// The commands of `qrx_sim ctl`: what a hand in a lab does to the machine, and what an eye sees of it.
#pragma once

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "sim/firmware/machine.h"
#include "sim/firmware/result.h"

namespace qrx::sim {

struct ControlRequest {
    std::optional<unsigned> controller;  // number; none: the only one, or the first
    std::string command;
    std::string argument;  // empty where there is none; the content of a file where the command takes a file
};

// What a command needs behind its name.
enum class ControlArgument { none, text, optional_text, file_to_read, file_to_write };

// The rule of a command by its name, or a failure that lists the commands.
[[nodiscard]] Result<ControlArgument> control_argument(std::string_view command);

// "30s", "5m", "2h": a number and a unit, at most 1000 days.
[[nodiscard]] Result<Clock::Duration> parse_duration(std::string_view text);

// Carries out a request. The text to show; for a command that writes a file, the file's content.
[[nodiscard]] Result<std::string> carry_out(Machine& machine, const ControlRequest& request);

// What `ctl help` shows.
[[nodiscard]] std::string_view control_usage();

}  // namespace qrx::sim
