// How a machine comes to be: from a scenario's name, or from the text of a scenario file or a state file.
//
// Both kinds of file have one form. A scenario file may leave out all that has a default; a state file is a machine
// written whole, so that loading what was saved gives the same machine.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "sim/firmware/machine.h"
#include "sim/firmware/result.h"

namespace qrx::sim {

struct Scenario {
    std::string_view name;
    std::string_view description;  // one line
    std::string_view text;         // as in a scenario file
};

// The scenarios that are built in; the first is the default.
[[nodiscard]] std::span<const Scenario> scenarios();

// The machine of a built-in scenario. An unknown name fails with a text that lists the names.
[[nodiscard]] Result<std::unique_ptr<Machine>> make_scenario(std::string_view name);

// The machine that `text` describes. A failure's text names `file`, the line and what is wrong and allowed there:
// "lab.json:12: 'members' names PD 7, which is not among the drives".
[[nodiscard]] Result<std::unique_ptr<Machine>> load_machine(std::string_view text, std::string_view file);

// The whole machine as text.
[[nodiscard]] std::string save_machine(const Machine& machine);

}  // namespace qrx::sim
