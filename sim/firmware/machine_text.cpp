// The text form of a machine: how it is read, and how it is written.
#include "sim/firmware/describe.h"
#include "sim/firmware/factory.h"

namespace qrx::sim {

namespace {

template <class Io>
void describe(Io& io, Ssd& ssd, const Machine::Parts& machine)
{
    describe_place(io, ssd, machine);
    io.number("vendor_id", ssd.vendor_id, 0, kAny16);
    io.number("device_id", ssd.device_id, 0, kAny16);
    io.number("subsystem_vendor_id", ssd.subsystem_vendor_id, 0, kAny16);
    describe_identity(io, ssd);
    io.list("namespaces", ssd.namespaces, 1, [&](auto& inner, Namespace& ns) {
        if (Io::kReads) {
            ns.parent_kind = kNsParentPd;
            ns.sectors = 1000215216;
        }
        describe_nsid(inner, ns, ssd, 1);
        describe_extent(inner, ns);
    });
}

// A system on a disk that is no NVMe device.
constexpr const char* kMounts =
    "proc /proc proc rw,nosuid,nodev,noexec,relatime 0 0\n"
    "/dev/sda2 / ext4 rw,relatime 0 0\n"
    "/dev/sda1 /boot vfat rw,relatime 0 0\n";

template <class Io>
void describe(Io& io, Machine::Parts& machine)
{
    if (Io::kReads) {
        machine.mount_table = kMounts;
    }
    io.lines("mount_table", machine.mount_table);
    io.list("controllers", machine.controllers, kMaxDevices,
            [&](auto& inner, Controller& controller) { describe(inner, controller, machine); });
    io.list("ssds", machine.ssds, kMaxDevices, [&](auto& inner, Ssd& ssd) { describe(inner, ssd, machine); });
}

}  // namespace

Result<std::unique_ptr<Machine>> load_machine(std::string_view text, std::string_view file)
{
    const Result<JsonTree> tree = parse_json(text, file);
    if (!tree) {
        return Failure{tree.error()};
    }
    if (tree->kind != JsonTree::Kind::kObject) {
        return failure_at(file, tree->line, std::string("a machine must be an object, not ") + tree->kind_name());
    }
    Failure failure;
    Machine::Parts parts;
    JsonReader reader(*tree, file, failure);
    describe(reader, parts);
    reader.finish();
    if (reader.failed()) {
        return failure;
    }
    return std::make_unique<Machine>(std::move(parts));
}

std::string save_machine(const Machine& machine)
{
    JsonTree tree;
    JsonWriter writer(tree);
    Machine::Parts parts = machine.parts();  // a description takes what it describes by reference
    describe(writer, parts);
    return print_json(tree);
}

}  // namespace qrx::sim
