// The vendor commands that read and write the registers of the PCIe interfaces.
#include <algorithm>
#include <array>

#include "sim/firmware/controller.h"
#include "sim/firmware/reply.h"

namespace qrx::sim {

namespace {

// Where an interface tells its link: speed in bits 19 to 16, lanes in bits 23 to 20.
constexpr std::array<QRX_U32, 6> kLinkStatus{0xE3203148, 0xE3403148, 0xE2203148, 0xE2403148, 0xE2603148, 0xE2803148};

constexpr bool is_link_status(QRX_U8 id, QRX_U32 address)
{
    return id < kLinkStatus.size() && address == kLinkStatus[id];
}

constexpr QRX_U8 interface_of(QRX_U32 cdw12)
{
    return static_cast<QRX_U8>(cdw12 >> 16);
}

}  // namespace

const PciePort* Controller::port_of(QRX_U8 interface) const
{
    const bool root = interface >= PcieInterface::kFirstRootComplex;
    const QRX_U8 type = root ? kPcieRootComplex : kPcieEndPoint;
    unsigned before = root ? interface - unsigned{PcieInterface::kFirstRootComplex} : interface;
    for (const PciePort& port : adapter.pcie) {
        if (port.type == type && before-- == 0) {
            return &port;
        }
    }
    return nullptr;
}

const ConfigSpace* Controller::config_space_behind(QRX_U8 interface) const
{
    static constexpr ConfigSpace kDead{.answer = ConfigSpace::kTimeout};
    const auto found = std::find_if(drives.begin(), drives.end(), [interface](const Drive& drive) {
        return drive.slot + PcieInterface::kFirstRootComplex == interface;
    });
    if (found == drives.end() || !board.reachable(found->id)) {
        return nullptr;  // the link is down
    }
    return found->failed ? &kDead : &found->config_space;
}

PcieInterface& Controller::interface_at(QRX_U8 id)
{
    const auto place = std::find_if(interfaces.begin(), interfaces.end(),
                                    [id](const PcieInterface& candidate) { return candidate.id >= id; });
    if (place != interfaces.end() && place->id == id) {
        return *place;
    }
    PcieInterface made;
    made.id = id;
    return *interfaces.insert(place, std::move(made));
}

Completion Controller::read_register(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    const QRX_U8 id = interface_of(command.cdw12);
    const QRX_U32 at = command.cdw13;
    const PciePort* const port = port_of(id);
    if (port == nullptr || at % sizeof(QRX_U32) != 0) {
        return complete(Verdict::kInvalidParameter);
    }
    if (data.size() < sizeof(QRX_U32)) {
        return complete(status::kInvalidField);
    }
    const QRX_U32 value =
        is_link_status(id, at) ? QRX_U32{port->width} << 20 | QRX_U32{port->speed} << 16 : interface_at(id).read(at);
    put(data, 0, value);  // this one comes without an envelope
    return complete(status::kSuccess);
}

Verdict Controller::write_register(const nvme_admin_cmd& command)
{
    const QRX_U8 id = interface_of(command.cdw12);
    if (port_of(id) == nullptr || command.cdw13 % sizeof(QRX_U32) != 0) {
        return Verdict::kInvalidParameter;
    }
    return is_link_status(id, command.cdw13)
               ? Verdict::kGood
               : interface_at(id).write(command.cdw13, command.cdw14, config_space_behind(id));
}

}  // namespace qrx::sim
