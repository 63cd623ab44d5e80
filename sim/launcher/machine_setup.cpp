#include "sim/launcher/machine_setup.h"

#include <fcntl.h>
#include <ext/stdio_filebuf.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <thread>
#include <utility>

#include "sim/firmware/factory.h"
#include "sim/firmware/tracer.h"
#include "sim/launcher/files.h"

namespace qrx::sim {
namespace {

[[noreturn]] void fail(const std::string& text)
{
    throw std::runtime_error(text);
}

std::unique_ptr<Machine> value_of(Result<std::unique_ptr<Machine>> result)
{
    if (!result) {
        fail(result.error());
    }
    return std::move(*result);
}

bool is_scenario(std::string_view name)
{
    const auto known = scenarios();
    return std::ranges::any_of(known, [&](const Scenario& scenario) { return scenario.name == name; });
}

// A built-in scenario by its name, or one from a file.
std::unique_ptr<Machine> make_from_scenario(const std::string& name)
{
    if (name.empty()) {
        return value_of(make_scenario(scenarios().front().name));
    }
    if (is_scenario(name)) {
        return value_of(make_scenario(name));
    }
    const std::optional<std::string> text = read_file(name);
    if (text) {
        return value_of(load_machine(*text, name));
    }
    const int error = errno;
    const std::string reason = error == ENOENT ? "is neither a file nor the name of a scenario"
                                               : std::string("cannot be read: ") + std::strerror(error);
    std::string names;
    for (const Scenario& scenario : scenarios()) {
        names += (names.empty() ? "" : ", ") + std::string(scenario.name);
    }
    fail("--scenario: '" + name + "' " + reason + "; the scenarios are " + names);
}

// A file of which the program inherits nothing.
class TraceFile {
public:
    explicit TraceFile(const std::string& path)
        : buffer_(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666), std::ios::out), stream_(&buffer_)
    {
        if (!buffer_.is_open()) {
            fail("--trace: cannot write '" + path + "': " + std::strerror(errno));
        }
    }
    [[nodiscard]] std::ostream& stream() { return stream_; }

private:
    __gnu_cxx::stdio_filebuf<char> buffer_;
    std::ostream stream_;
};

}  // namespace

// The machine first, then what stands in front of it, the outermost last.
struct MachineSetup::Layers {
    std::unique_ptr<Machine> machine;
    std::optional<std::string> given_mounts;  // by --mtab, in place of
    std::string own_mounts;
    std::optional<FaultInjector> faults;
    std::optional<TraceFile> trace_file;
    std::optional<Tracer> tracer;
    Host* front = nullptr;
};

MachineSetup::MachineSetup(const Options& options)
    : state_file_(options.state_file), layers_(std::make_unique<Layers>())
{
    Layers& layers = *layers_;
    const std::optional<std::string> state = state_file_.empty() ? std::nullopt : read_file(state_file_);
    if (state) {
        layers.machine = value_of(load_machine(*state, state_file_));
    } else if (!state_file_.empty() && errno != ENOENT) {
        fail("--state: cannot read '" + state_file_ + "': " + std::strerror(errno));
    } else {
        layers.machine = make_from_scenario(options.scenario);
        save();  // a place that cannot be written is found before anything runs
    }
    if (options.clock_runs) {
        layers.machine->wait_with([](Clock::Duration time) { std::this_thread::sleep_for(time); });
    }
    layers.front = layers.machine.get();
    if (!options.mount_table.empty()) {
        std::optional<std::string> text = read_file(options.mount_table);
        if (!text) {
            fail("--mtab: cannot read '" + options.mount_table + "': " + std::strerror(errno));
        }
        layers.own_mounts = layers.machine->mount_table();
        layers.given_mounts = *text;
        layers.machine->set_mount_table(*std::move(text));
    }
    if (!options.faults.empty()) {
        layers.front = &layers.faults.emplace(
            *layers.front, options.faults, [](std::chrono::microseconds time) { std::this_thread::sleep_for(time); });
    }
    if (!options.trace_file.empty()) {
        layers.trace_file.emplace(options.trace_file);
        layers.front = &layers.tracer.emplace(*layers.front, layers.trace_file->stream());
    }
}

MachineSetup::~MachineSetup() = default;

Host& MachineSetup::host()
{
    return *layers_->front;
}

Machine& MachineSetup::machine()
{
    return *layers_->machine;
}

void MachineSetup::save() const
{
    save_state();
    if (layers_->trace_file && !layers_->trace_file->stream().flush()) {
        fail("--trace: cannot write all of it");
    }
}

void MachineSetup::save_state() const
{
    if (state_file_.empty()) {
        return;
    }
    Machine& machine = *layers_->machine;
    const bool given = layers_->given_mounts && machine.mount_table() == *layers_->given_mounts;
    if (given) {
        machine.set_mount_table(layers_->own_mounts);  // the state remembers the machine, not the options of one run
    }
    const bool written = replace_file(state_file_, save_machine(machine));
    const int error = errno;
    if (given) {
        machine.set_mount_table(*layers_->given_mounts);
    }
    errno = error;
    if (!written) {
        fail("--state: cannot write '" + state_file_ + "': " + std::strerror(errno));
    }
}

}  // namespace qrx::sim
