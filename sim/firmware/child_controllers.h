// The controller as a multi-function device: the child controllers that hosts carve out of it, what is left to carve
// from, who may do so, which admin commands a child may carry out, and what happened to children.
//
// Calls that a host asks for give the NVMe status with which its command ends. One that fails changes nothing.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "api/src/interface/wire/mfnd.h"
#include "sim/firmware/result.h"
#include "sim/firmware/status.h"

namespace qrx::sim {

// What the device has to give, its children together.
struct ChildLimits {
    QRX_U16 functions = 32;
    QRX_U16 queue_pairs = 128;
    QRX_U16 interrupts = 256;
    QRX_U16 namespaces = 64;
    QRX_U8 namespaces_of_one = 16;
    QRX_U32 storage = 1024;      // provision units
    QRX_U32 granularity = 1024;  // MB of a unit
    QRX_U32 read_bandwidth = 6400;
    QRX_U32 write_bandwidth = 3200;
    QRX_U32 read_iops = 1000000;
    QRX_U32 write_iops = 400000;

    friend bool operator==(const ChildLimits&, const ChildLimits&) = default;
};

struct ChildQos {
    enum Policy : QRX_U8 { kReserve, kLimit, kMix };
    // Numbers, in the order of the wire: of each, for reads and then for writes.
    enum Number : QRX_U8 { kReservedBandwidth = 0, kBandwidthLimit = 2, kReservedIops = 4, kIopsLimit = 6 };

    QRX_U8 policy = kReserve;
    std::array<QRX_U32, 8> numbers{};

    friend bool operator==(const ChildQos&, const ChildQos&) = default;

    // What the child has for itself; nothing under a policy of limits alone.
    [[nodiscard]] QRX_U32 reserved(unsigned number) const { return policy == kLimit ? 0 : numbers.at(number); }
};

struct ChildController {
    enum State : QRX_U8 { kRunning, kPaused, kShutDown, kFailed };

    QRX_U16 id = 1;
    std::string serial;
    QRX_U16 queue_pairs = 2;
    QRX_U16 interrupts = 3;
    QRX_U16 namespaces = 1;
    QRX_U32 storage = 64;  // provision units
    std::optional<ChildQos> qos;
    QRX_U8 state = kRunning;
    QRX_U8 critical_warning = 0;  // of its health log
    QRX_U32 starts = 1;
    QRX_U32 erasures = 0;

    friend bool operator==(const ChildController&, const ChildController&) = default;

    [[nodiscard]] _MSFT_CHILD_CTRL_ENTRY record() const;
    // Takes over what an entry says: each count that is not 0, or all of them if its flags say that they are valid;
    // the QoS likewise as a whole; a serial number if there is one. False for one that is no printable text.
    [[nodiscard]] bool apply(const _MSFT_CHILD_CTRL_ENTRY& entry);
};

struct ChildPermission {
    QRX_U8 opcode = 0;
    bool allowed = false;
    bool changeable = true;

    friend bool operator==(const ChildPermission&, const ChildPermission&) = default;
};

struct ChildEvent {
    QRX_U8 child = 1;
    QRX_U8 log_page = 0;
    QRX_U32 flags = 0;

    friend bool operator==(const ChildEvent&, const ChildEvent&) = default;
};

struct ChildControllers {
    static constexpr QRX_U16 kMaxId = 255;       // that an event can tell of
    static constexpr std::size_t kEvents = 255;  // that the log can tell of
    static constexpr std::size_t kPermissions = 255;
    static constexpr std::size_t kSerialMax = sizeof(_MSFT_CHILD_CTRL_ENTRY::sn);
    // The one log page of a child.
    static constexpr QRX_U8 kHealthPage = 2;

    ChildLimits limits;
    bool multiple = false;  // there may be children
    bool admin = true;      // the host may manage them
    // Of the namespaces of children.
    QRX_U16 metadata = 0;
    QRX_U8 sector_shift = 9;
    QRX_U8 protection = 0;
    QRX_U8 sharing = 0;
    std::vector<ChildPermission> permissions = factory_permissions();  // in order of opcode
    std::vector<ChildController> children;                             // in order of id
    std::vector<ChildEvent> events;                                    // oldest first, the latest kEvents

    friend bool operator==(const ChildControllers&, const ChildControllers&) = default;

    [[nodiscard]] static std::vector<ChildPermission> factory_permissions();

    [[nodiscard]] const ChildController* find(QRX_U16 id) const;
    [[nodiscard]] bool permits(QRX_U8 opcode) const;

    // Makes a child; without an id of its own it gets `id`, or the lowest that is free where that is 0. `parent` is the
    // serial number after which one without a name is named.
    QRX_U32 create(QRX_U16 id, const _MSFT_CHILD_CTRL_ENTRY& entry, std::string_view parent);
    // These take kMfndAllChildren too.
    QRX_U32 update(QRX_U16 id, const _MSFT_CHILD_CTRL_ENTRY& entry);
    QRX_U32 remove(QRX_U16 id);
    QRX_U32 control(QRX_U16 id, QRX_U8 selector);
    // Starts anew with `count` children.
    QRX_U32 reset(QRX_U8 count, std::string_view parent);
    // Lets all of them start, as after a power cycle.
    void restart();

    QRX_U32 set_operation(QRX_U32 word);
    QRX_U32 set_properties(const _MSFT_CHILD_CTRL_PROPERTIES& properties);
    QRX_U32 set_permissions(const _MSFT_CHILD_CTRL_PERMISSION_LIST& list);

    // What befalls a child in a lab: "fatal", "health" or "other"; nothing when it could be done, else why not.
    std::optional<Failure> befall(QRX_U16 id, std::string_view what);

    [[nodiscard]] QRX_U32 operation() const;
    [[nodiscard]] _MSFT_MFND_CAPABILITIES capabilities() const;
    [[nodiscard]] _MSFT_CHILD_CTRL_PROPERTIES properties() const;
    [[nodiscard]] _MSFT_CHILD_CTRL_PERMISSION_LIST permission_list() const;
    // The whole log, newest event first, and the answer of a child identify, whole.
    [[nodiscard]] std::vector<QRX_U8> event_log() const;
    [[nodiscard]] std::vector<QRX_U8> list(QRX_U16 id) const;

    // Whether `of` can be had together: success, or why not.
    [[nodiscard]] QRX_U32 check(const std::vector<ChildController>& of) const;

private:
    // The children that `id` names, of `of`.
    static std::vector<ChildController*> named(std::vector<ChildController>& of, QRX_U16 id);
    // Puts `next` in the place of the children if it can be had.
    QRX_U32 take(std::vector<ChildController> next);
    void add_event(QRX_U16 child, QRX_U32 flags);
};

}  // namespace qrx::sim
