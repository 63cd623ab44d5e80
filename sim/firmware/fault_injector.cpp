#include "sim/firmware/fault_injector.h"

#include <algorithm>
#include <cstddef>

#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/envelope.h"
#include "sim/firmware/opcodes.h"

namespace qrx::sim {

namespace {

constexpr std::size_t kFlippedShare = 16;  // one byte in so many is flipped, and one at least

// The next number of a SplitMix64 sequence.
QRX_U64 next_random(QRX_U64& state)
{
    state += 0x9E3779B97F4A7C15ULL;
    QRX_U64 mixed = state;
    mixed = (mixed ^ mixed >> 30) * 0xBF58476D1CE4E5B9ULL;
    mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EBULL;
    return mixed ^ mixed >> 31;
}

void flip(std::span<QRX_U8> data, QRX_U64 seed)
{
    if (data.empty()) {
        return;
    }
    const std::size_t count = std::max<std::size_t>(data.size() / kFlippedShare, 1);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = next_random(seed) % data.size();
        data[at] ^= static_cast<QRX_U8>(1 + next_random(seed) % 255);
    }
}

}  // namespace

bool Fault::chooses(const Node& node, bool admin, const nvme_admin_cmd& sent) const
{
    const bool vendor = admin && (sent.opcode == kVendorRead || sent.opcode == kVendorWrite);
    return (!opcode || *opcode == sent.opcode) && (!admin_queue || *admin_queue == admin) &&
           (!device || *device == node.controller) &&
           (!command || (vendor && *command == static_cast<QRX_U16>(sent.cdw12)));
}

FaultInjector::FaultInjector(Host& inner, std::span<const Fault> faults, Sleep sleep)
    : Decorator(inner), sleep_(std::move(sleep))
{
    for (const Fault& fault : faults) {
        armed_.push_back({fault});
    }
}

Completion FaultInjector::admin(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    return run(node, true, command, data);
}

Completion FaultInjector::io(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    return run(node, false, command, data);
}

void FaultInjector::choose(const Node& node, bool admin_queue, const nvme_admin_cmd& command)
{
    for (Armed& armed : armed_) {
        const Fault& fault = armed.fault;
        armed.hits = fault.chooses(node, admin_queue, command);
        if (armed.hits) {
            ++armed.seen;
            armed.hits = (!fault.nth || armed.seen == *fault.nth) && (!fault.every || armed.seen % *fault.every == 0);
        }
    }
}

Completion FaultInjector::run(const Node& node, bool admin_queue, const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    choose(node, admin_queue, command);
    const Fault* decider = nullptr;
    bool damages = false;
    for (const Armed& armed : armed_) {
        if (!armed.hits) {
            continue;
        }
        if (armed.fault.delay && sleep_) {
            sleep_(*armed.fault.delay);
        }
        if (decider == nullptr && (armed.fault.status || armed.fault.error)) {
            decider = &armed.fault;
        }
        damages = damages || armed.fault.damages();
    }
    if (decider != nullptr) {
        return {decider->status.value_or(0), 0, decider->error.value_or(0)};
    }
    const std::vector<QRX_U8> before(data.begin(), damages ? data.end() : data.begin());
    const auto completion = admin_queue ? inner().admin(node, command, data) : inner().io(node, command, data);
    if (damages && completion.error == 0) {
        damage(command, before, data);
    }
    return completion;
}

void FaultInjector::damage(const nvme_admin_cmd& command, std::span<const QRX_U8> before, std::span<QRX_U8> data) const
{
    if (!data_from_device(command.opcode)) {
        return;
    }
    for (const Armed& armed : armed_) {
        if (!armed.hits) {
            continue;
        }
        std::size_t arrived = data.size();
        if (armed.fault.shorten) {
            arrived = std::min(arrived, *armed.fault.shorten);
            const auto offset = static_cast<std::ptrdiff_t>(arrived);
            std::copy(before.begin() + offset, before.end(), data.begin() + offset);
        }
        const bool enveloped = command.opcode == kVendorRead || command.opcode == kPairReceive;
        if (enveloped && arrived >= sizeof(NVMEReceiveData)) {
            if (armed.fault.cmd_status) {
                data[offsetof(NVMEReceiveData, cmd_status)] = *armed.fault.cmd_status;
            }
            if (armed.fault.unsign) {
                data[0] = static_cast<QRX_U8>(~data[0]);
            }
        }
        if (armed.fault.corrupt) {
            flip(data.first(arrived), *armed.fault.corrupt);
        }
    }
}

}  // namespace qrx::sim
