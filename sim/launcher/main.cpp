// qrx_sim: runs a program on a machine with a simulated controller.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <iomanip>
#include <iostream>
#include <span>

#include "sim/firmware/factory.h"
#include "sim/launcher/control_client.h"
#include "sim/launcher/control_socket.h"
#include "sim/launcher/image_command.h"
#include "sim/launcher/machine_setup.h"
#include "sim/launcher/options.h"
#include "sim/launcher/program.h"

namespace {

using namespace qrx::sim;

void list_scenarios()
{
    std::size_t longest = 0;
    for (const Scenario& scenario : scenarios()) {
        longest = std::max(longest, scenario.name.size());
    }
    const int width = static_cast<int>(longest) + 2;
    for (const Scenario& scenario : scenarios()) {
        std::cout << std::left << std::setw(width) << scenario.name << scenario.description << '\n';
    }
}

int run(const Options& options)
{
    MachineSetup setup(options);
    ControlSocket control(setup.machine(), options.control, options.clock_runs);
    const int value = run_program(setup.host(), options.program, &control);
    control.tick();
    setup.save();
    return value;
}

}  // namespace

int main(int argc, char** argv)
try {
    if (!fill_closed_streams()) {
        return kExitOwnFailure;
    }
    outlive_full_files();
    const std::span<const char* const> words(argv, static_cast<std::size_t>(argc));
    const Result<Options> options = parse_options(words.empty() ? words : words.subspan(1));
    if (!options) {
        std::cerr << "qrx_sim: " << options.error() << '\n';
        return kExitOwnFailure;
    }
    switch (options->action) {
    case Options::Action::help:
        std::cout << usage();
        break;
    case Options::Action::list_scenarios:
        list_scenarios();
        break;
    case Options::Action::version:
        std::cout << "qrx_sim " QRX_VERSION "\n";
        break;
    case Options::Action::control:
        return run_control(*options);
    case Options::Action::make_image:
        return run_make_image(*options);
    case Options::Action::run:
        return run(*options);
    }
    return std::cout.flush() ? 0 : kExitOwnFailure;
} catch (const std::exception& failure) {
    (void)std::fprintf(stderr, "qrx_sim: %s\n", failure.what());
    return kExitOwnFailure;
}
