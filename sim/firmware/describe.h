// The text form of a machine: what each thing's fields are called, which values they take, and what must hold
// between them. A description serves both ways, as JsonReader and JsonWriter do; each file describe_*.cpp makes its
// own for both. A description that reads comes upon its thing as the last of its list, with the earlier ones read.
#pragma once

#include <algorithm>
#include <optional>

#include "sim/firmware/json_fields.h"
#include "sim/firmware/machine.h"

namespace qrx::sim {

constexpr QRX_U64 kAny8 = 0xFF;
constexpr QRX_U64 kAny16 = 0xFFFF;
constexpr QRX_U64 kAny32 = 0xFFFFFFFF;
constexpr QRX_U64 kAny64 = ~QRX_U64{0};
constexpr QRX_U64 kMaxDeviceNumber = 1087;
constexpr std::size_t kMaxDevices = 64;
constexpr std::size_t kMaxPdId = 254;  // 255 asks for all of them
constexpr QRX_U64 kMaxVdId = 254;
constexpr QRX_U64 kMaxMilliseconds = QRX_U64{1} << 52;

template <class Io>
void describe(Io& io, Adapter& adapter);
template <class Io>
void describe(Io& io, AdapterConfig& config);
template <class Io>
void describe(Io& io, HbaSettings& settings);
template <class Io>
void describe(Io& io, Board& board);
template <class Io>
void describe(Io& io, IoStatistics& statistics);
template <class Io>
void describe(Io& io, OpcodeGate& gate);
// The rate limits of the host functions that have some.
template <class Io>
void describe_rate_limits(Io& io, Controller& controller);
template <class Io>
void describe(Io& io, HostFunctions& functions);
template <class Io>
void describe(Io& io, ChildControllers& children);
template <class Io>
void describe(Io& io, Security& security);
template <class Io>
void describe(Io& io, PcieInterface& interface, const Controller& controller);
template <class Io>
void describe(Io& io, ConfigSpace& space);
template <class Io>
void describe_activity(Io& io, std::optional<BackgroundActivity>& activity);
template <class Io>
void describe(Io& io, Drive& drive, const Controller& controller);
template <class Io>
void describe(Io& io, VirtualDisk& vd, const Controller& controller);
template <class Io>
void describe(Io& io, Namespace& ns, const Controller& controller);
template <class Io>
void describe(Io& io, EventRing& ring);
template <class Io>
void describe(Io& io, SpiLog& log);
template <class Io>
void describe(Io& io, Diagnostics& diagnostics);
template <class Io>
void describe(Io& io, Controller& controller, const Machine::Parts& machine);

// What every NVMe device has. Drives may run firmware without a name.
template <class Io>
void describe_device(Io& io, NvmeFunction& function, bool unnamed_firmware);
// The device's number, address and slot.
template <class Io>
void describe_place(Io& io, NvmeFunction& function, const Machine::Parts& machine);
// The device's names and what every NVMe device has.
template <class Io>
void describe_identity(Io& io, NvmeFunction& function);
// The id of the function's last namespace, from 1 to `most`.
template <class Io>
void describe_nsid(Io& io, Namespace& ns, const NvmeFunction& function, QRX_U64 most);
// A namespace's size, identifiers, counters and data.
template <class Io>
void describe_extent(Io& io, Namespace& ns);

template <class Items, class Key>
void sort_by(Items& items, Key key)
{
    std::sort(items.begin(), items.end(),
              [key](const auto& left, const auto& right) { return left.*key < right.*key; });
}

}  // namespace qrx::sim
