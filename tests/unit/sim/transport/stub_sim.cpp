// Runs a program on the stub machine: qrx_sim with nothing behind it. First argument: the way in.
#include <string_view>

#include "sim/launcher/program.h"
#include "tests/unit/sim/transport/stub_host.h"

int main(int argc, char** argv)
{
    if (argc < 3) {
        return qrx::sim::kExitOwnFailure;
    }
    qrx::sim::StubHost host;
    host.keep_commands = false;
    qrx::sim::ProgramOptions options;
    const std::string_view way = argv[1];
    options.transport = way == "seccomp"   ? qrx::sim::Transport::seccomp
                        : way == "preload" ? qrx::sim::Transport::preload
                                           : qrx::sim::Transport::automatic;
    options.command.assign(argv + 2, argv + argc);
    return qrx::sim::run_program(host, options);
}
