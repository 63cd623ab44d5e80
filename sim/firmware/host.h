// What a simulated machine shows its host: its NVMe device nodes, and one call that carries out a command.
//
// Nothing behind this interface touches a file, a socket or a clock of the real host.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "api/src/interface/wire/nvme_ioctl.h"
#include "api/src/interface/wire/types.h"

namespace qrx::sim {

// A device node: /dev/nvme<controller>, or with a namespace /dev/nvme<controller>n<nsid>.
struct Node {
    unsigned controller = 0;
    QRX_U32 nsid = 0;  // 0: the controller's character device

    friend bool operator==(const Node&, const Node&) = default;
    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the generated comparison with 0 for a pointer's
    friend auto operator<=>(const Node&, const Node&) = default;
};

// How a command ended, as the driver reports it.
struct Completion {
    QRX_U32 status = 0;  // NVMe status: bits 7 to 0 code, bits 10 to 8 type; 0 success. Meaningless with an error.
    QRX_U32 result = 0;  // Completion Dword 0
    int error = 0;       // errno with which the ioctl fails (-1), or 0
};

// A namespace that the host sees as a block device.
struct NamespaceNode {
    QRX_U32 nsid = 0;
    QRX_U64 sectors = 0;
    QRX_U32 sector_size = 512;  // bytes
    std::string uuid;           // nguid or eui64 in lower-case hexadecimal, or empty

    friend bool operator==(const NamespaceNode&, const NamespaceNode&) = default;
};

// A controller that the host sees, with what its driver shows under sysfs.
struct ControllerNode {
    unsigned number = 0;  // the N of /dev/nvme<N>
    std::string address;  // PCI address with domain, "0000:03:00.0"
    QRX_U16 vendor_id = 0;
    QRX_U16 device_id = 0;
    QRX_U16 subsystem_vendor_id = 0;
    QRX_U16 subsystem_device_id = 0;
    QRX_U16 controller_id = 0;
    unsigned slot_id = 0;  // System Slot in which it sits
    std::string model;     // without padding
    std::string serial;
    std::string firmware;
    std::string subnqn;
    std::vector<NamespaceNode> namespaces;

    friend bool operator==(const ControllerNode&, const ControllerNode&) = default;
};

// A simulated machine, or a decorator around one (trace, faults).
class Host {
public:
    Host() = default;
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    virtual ~Host() = default;

    // The controllers in order of number. May change with any command.
    [[nodiscard]] virtual std::vector<ControllerNode> controllers() const = 0;
    // The mount table that the machine's programs read, or empty for the real one's.
    [[nodiscard]] virtual std::string mount_table() const = 0;
    // Carries out an admin command. `data` is the caller's buffer of data_len bytes: what it holds goes to the
    // device for an opcode that writes, and what the device answers is put into it for one that reads.
    virtual Completion admin(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data) = 0;
    // Carries out an I/O command in the same way.
    virtual Completion io(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data) = 0;
};

}  // namespace qrx::sim
