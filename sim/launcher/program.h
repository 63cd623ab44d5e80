// Starts the program on a simulated machine, answers its calls, and tells how it ended.
#pragma once

#include <string>
#include <vector>

#include "sim/firmware/host.h"
#include "sim/launcher/attendant.h"

namespace qrx::sim {

enum class Transport { automatic, seccomp, preload };

struct ProgramOptions {
    std::vector<std::string> command;  // program and arguments, at least one
    Transport transport = Transport::automatic;
    bool verbose = false;  // says on standard error which way in is taken
};

// Exit values of our own, as env(1) has them.
inline constexpr int kExitOwnFailure = 125;
inline constexpr int kExitCannotRun = 126;
inline constexpr int kExitNotFound = 127;

// From now on a file that may grow no more (RLIMIT_FSIZE) is an error of the write, not the end of qrx_sim. Programs
// start with what was before.
void outlive_full_files();

// Puts something unusable in the place of each standard stream that is closed: what is meant for the screen must not go
// into a file that would be opened there. False when that failed.
[[nodiscard]] bool fill_closed_streams();

// Runs the program to its end. Its exit value, 128 + signal when it was killed, or one of the above, with a message on
// standard error. SIGTERM and SIGHUP are passed on to the program, which is killed if it does not end upon it; SIGINT
// and SIGQUIT are left to it. An attendant has its turn between calls.
[[nodiscard]] int run_program(Host& host, const ProgramOptions& options, Attendant* attendant = nullptr);

}  // namespace qrx::sim
