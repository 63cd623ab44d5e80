// Makes chosen commands fail, or their answers arrive short, damaged or late.
//
// A fault is written as "selector,...,kind,...":
//
//     nth=<n>            the n-th of the commands that the other selectors choose, from 1
//     every=<n>          each n-th of them
//     opcode=<byte>      commands of that opcode
//     command=<word>     vendor commands (0xE2, 0xC7) with that low half of CDW12
//     queue=admin|io     commands of that queue
//     device=<n>         commands to /dev/nvme<n> and its namespaces
//
//     status=<status>    ends with that NVMe status; the device does not see the command
//     errno=<error>      fails with that error; the device does not see the command
//     short=<bytes>      only so many bytes of the answer arrive
//     cmd-status=<byte>  the envelope of a vendor answer bears that status instead
//     unsigned           the envelope of a vendor answer does not bear its signature
//     corrupt[=<seed>]   some bytes of the answer are flipped, the same ones for the same seed
//     delay=<time>       takes so much longer: "50ms", "2s", "300us"
//
// Numbers are decimal, or hexadecimal with 0x. Without nth and every, all chosen commands are hit. One fault may have
// several kinds, but not status and errno, and neither of them with one that damages the answer.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "sim/firmware/decorator.h"
#include "sim/firmware/result.h"

namespace qrx::sim {

struct Fault {
    std::optional<QRX_U64> nth;
    std::optional<QRX_U64> every;
    std::optional<QRX_U8> opcode;
    std::optional<QRX_U16> command;
    std::optional<bool> admin_queue;
    std::optional<unsigned> device;

    std::optional<QRX_U32> status;
    std::optional<int> error;
    std::optional<std::size_t> shorten;
    std::optional<QRX_U8> cmd_status;
    bool unsign = false;
    std::optional<QRX_U64> corrupt;  // seed
    std::optional<std::chrono::microseconds> delay;

    friend bool operator==(const Fault&, const Fault&) = default;

    [[nodiscard]] bool damages() const { return shorten || cmd_status || unsign || corrupt; }

    // Whether the selectors other than nth and every choose the command.
    [[nodiscard]] bool chooses(const Node& node, bool admin, const nvme_admin_cmd& sent) const;
};

// Reads one fault. A failure says what is wrong and what is allowed.
[[nodiscard]] Result<Fault> parse_fault(std::string_view text);

class FaultInjector : public Decorator {
public:
    using Sleep = std::function<void(std::chrono::microseconds)>;

    // `inner` must outlive the injector; `sleep` lets real time go by.
    FaultInjector(Host& inner, std::span<const Fault> faults, Sleep sleep);

    // Where several faults hit a command all their delays count, the first status or error decides, and otherwise
    // all their damage is done.
    Completion admin(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data) override;
    Completion io(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data) override;

private:
    struct Armed {
        Fault fault;
        QRX_U64 seen = 0;   // commands that it has chosen
        bool hits = false;  // the command under way
    };

    Completion run(const Node& node, bool admin_queue, const nvme_admin_cmd& command, std::span<QRX_U8> data);
    void choose(const Node& node, bool admin_queue, const nvme_admin_cmd& command);
    void damage(const nvme_admin_cmd& command, std::span<const QRX_U8> before, std::span<QRX_U8> data) const;

    std::vector<Armed> armed_;
    Sleep sleep_;
};

}  // namespace qrx::sim
