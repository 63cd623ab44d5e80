// The machine that the options ask for, with what stands in front of it: mount table, faults, trace.
#pragma once

#include <memory>
#include <string>

#include "sim/firmware/host.h"
#include "sim/firmware/machine.h"
#include "sim/launcher/options.h"

namespace qrx::sim {

class MachineSetup {
public:
    // Throws std::runtime_error with a text that says what is wrong and what is allowed.
    explicit MachineSetup(const Options& options);
    MachineSetup(const MachineSetup&) = delete;
    MachineSetup& operator=(const MachineSetup&) = delete;
    ~MachineSetup();

    [[nodiscard]] Host& host();
    // What lies behind all that stands in front of it.
    [[nodiscard]] Machine& machine();
    // Writes the state file, if there is to be one, and what is left of the trace. Throws as well.
    void save() const;

private:
    struct Layers;

    void save_state() const;

    std::string state_file_;
    std::unique_ptr<Layers> layers_;
};

}  // namespace qrx::sim
