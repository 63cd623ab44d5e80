// A controller that answers with the bytes of a fuzz input, and a world in which commands do no harm.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include "api/src/interface/wire/adapter.h"

namespace qrx::fuzz {

// What the controller says. The first byte of an answer tells how the command ends:
enum : std::uint8_t {
    kFails = 1,   // with a status, which the next two bytes are; bit 1 then means: a failed call of the driver
    kSigns = 2,   // the envelope is right, and its cmd_status 0
    kShort = 4,   // what is not told stays as it was; otherwise it is what was told, again and again
    kPages = 16,  // the data is told in pieces of 64 bytes instead of 8
};
// The next byte tells how many pieces of data follow. Behind the last answer all answers are zeros.
class Speech {
public:
    Speech() = default;
    explicit Speech(std::span<const std::uint8_t> bytes) : left_(bytes) {}
    std::uint8_t next();
    std::span<const std::uint8_t> next(std::size_t most);

private:
    std::span<const std::uint8_t> left_;
};

// Fills `out` with `told` from its byte `at` on, again and again; with zeros if nothing is told. Returns where it ends.
// For pages by the thousand: it copies pieces, because a loop over bytes costs a measured comparison for each.
std::size_t goRound(std::span<std::uint8_t> out, std::span<const std::uint8_t> told, std::size_t at);

// Takes from the ports that a controller says it has until it has at most one, with up to 255 disks. `info -o pd` asks
// for each disk that there may be, and takes half a second for 255 ports.
void limitPorts(std::uint8_t& ports);

// Answers one command: fills `out`, and returns the status.
using Answer = std::function<std::uint32_t(std::span<std::uint8_t> out)>;

// The answers of `speech`, which must outlive them.
Answer spoken(Speech& speech);

// While it lives: one controller that answers, in slot 0 of the device table; `stream` and standard output lead
// nowhere; no file is opened for writing, and those opened for reading hold `file`; no time goes by in sleeps, nor in
// waits for a bit of the eye monitor.
class World {
public:
    World(Answer answer, std::span<const std::uint8_t> file);
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    // Runs a command line, split as the shell splits it. Returns what the command returns.
    static int run(const char* line);
};

// Puts the device of the world into the table: what QRX_Init is replaced by.
void plugIn();

}  // namespace qrx::fuzz
