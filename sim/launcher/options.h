// The command line of qrx_sim.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sim/firmware/fault_injector.h"
#include "sim/firmware/result.h"
#include "sim/launcher/program.h"

namespace qrx::sim {

struct Options {
    enum class Action { run, control, make_image, help, list_scenarios, version };

    Action action = Action::run;
    std::string scenario;     // name or file; empty: the default
    std::string state_file;   // empty: none
    std::string trace_file;   // empty: none
    std::string mount_table;  // file; empty: the scenario's own
    std::string control;      // socket for `qrx_sim ctl`; empty: a place of its own
    bool clock_runs = true;   // simulated time follows the real one
    std::vector<Fault> faults;
    ProgramOptions program;  // for `ctl` and `make-image` its command is the words behind that
};

// Reads the words behind the program's name. A failure says what is wrong and what is allowed.
[[nodiscard]] Result<Options> parse_options(std::span<const char* const> words);

// What --help prints.
[[nodiscard]] std::string_view usage();

}  // namespace qrx::sim
