#include "sim/transport/machine_view.h"

#include <array>
#include <cstdio>
#include <string_view>
#include <utility>

#include "sim/transport/smbios.h"

namespace qrx::sim {
namespace {

constexpr unsigned kCharacterMajor = 240;
constexpr unsigned kBlockMajor = 259;
constexpr unsigned kMinorsOfController = 64;

using Attributes = std::vector<std::pair<std::string_view, std::string>>;

std::string name_of(const Node& node)
{
    return device_path(node).substr(std::string_view("/dev/").size());
}

std::string number_text(const Node& node)
{
    const DeviceNumber number = device_number(node);
    return std::to_string(number.major) + ":" + std::to_string(number.minor);
}

std::string hex4(unsigned value)
{
    std::array<char, 8> text{};
    (void)std::snprintf(text.data(), text.size(), "0x%04x", value & 0xffff);
    return text.data();
}

// Two ids as the kernel writes them for udev.
std::string pair_of_ids(unsigned vendor, unsigned device)
{
    std::array<char, 12> text{};
    (void)std::snprintf(text.data(), text.size(), "%04X:%04X", vendor & 0xffff, device & 0xffff);
    return text.data();
}

// Attribute files: one line each.
void add_attributes(Overlay& overlay, const std::string& directory, const Attributes& attributes)
{
    for (const auto& [name, value] : attributes) {
        overlay.add_file(directory + "/" + std::string(name), value + "\n");
    }
}

// "0123...": 32 hexadecimal digits with the dashes of a UUID.
std::string dashed(const std::string& digits)
{
    if (digits.size() != 32) {
        return digits;
    }
    return digits.substr(0, 8) + "-" + digits.substr(8, 4) + "-" + digits.substr(12, 4) + "-" + digits.substr(16, 4) +
           "-" + digits.substr(20);
}

// A namespace's directory under its controller, with its links from the block classes.
void add_namespace(Overlay& overlay, const ControllerNode& controller, const std::string& controller_directory,
                   const NamespaceNode& space)
{
    const Node node{controller.number, space.nsid};
    const std::string name = name_of(node);
    const std::string directory = controller_directory + "/" + name;
    const std::string from_sys = directory.substr(std::string_view("/sys/").size());
    overlay.add_device(device_path(node), node);
    overlay.add_directory(directory);
    overlay.add_directory(directory + "/queue");
    const bool short_id = space.uuid.size() == 16;
    add_attributes(
        overlay, directory,
        {{"dev", number_text(node)},
         {"nsid", std::to_string(space.nsid)},
         {"size", std::to_string(space.sectors * space.sector_size / 512)},
         {"ro", "0"},
         {"removable", "0"},
         {"hidden", "0"},
         {"range", "0"},
         {"ext_range", "256"},
         {"uevent", "MAJOR=" + std::to_string(device_number(node).major) + "\nMINOR=" +
                        std::to_string(device_number(node).minor) + "\nDEVNAME=" + name + "\nDEVTYPE=disk"},
         {"wwid", space.uuid.empty() ? "nvme." + controller.serial
                                     : (short_id ? "eui." : "uuid.") + (short_id ? space.uuid : dashed(space.uuid))}});
    if (short_id) {
        add_attributes(overlay, directory, {{"eui", space.uuid}});
    } else if (!space.uuid.empty()) {
        add_attributes(overlay, directory, {{"nguid", dashed(space.uuid)}, {"uuid", dashed(space.uuid)}});
    }
    const std::string sector = std::to_string(space.sector_size);
    add_attributes(overlay, directory + "/queue",
                   {{"logical_block_size", sector},
                    {"physical_block_size", sector},
                    {"hw_sector_size", sector},
                    {"minimum_io_size", sector},
                    {"optimal_io_size", "0"},
                    {"rotational", "0"},
                    {"max_hw_sectors_kb", "128"},
                    {"max_sectors_kb", "128"},
                    {"scheduler", "[none]"}});
    overlay.add_link(directory + "/device", "../../" + name_of({controller.number, 0}));
    overlay.add_link(directory + "/subsystem", "../../../../../../class/block");
    overlay.add_link("/sys/block/" + name, "../" + from_sys);
    overlay.add_link("/sys/class/block/" + name, "../../" + from_sys);
    overlay.add_link("/sys/dev/block/" + number_text(node), "../../" + from_sys);
}

// A controller: its PCI function on a root bus of its own, its NVMe device, its subsystem.
void add_controller(Overlay& overlay, const ControllerNode& controller)
{
    const Node node{controller.number, 0};
    const std::string name = name_of(node);
    const std::string bus_text = controller.address.substr(0, controller.address.rfind(':'));
    const std::string root = "/sys/devices/pci" + bus_text;
    const std::string function = root + "/" + controller.address;
    const std::string directory = function + "/nvme/" + name;
    const std::string from_sys = directory.substr(std::string_view("/sys/").size());

    overlay.add_device(device_path(node), node);
    for (const std::string& path : {root, function, function + "/nvme", directory}) {
        overlay.add_directory(path);
    }
    add_attributes(
        overlay, function,
        {{"vendor", hex4(controller.vendor_id)},
         {"device", hex4(controller.device_id)},
         {"subsystem_vendor", hex4(controller.subsystem_vendor_id)},
         {"subsystem_device", hex4(controller.subsystem_device_id)},
         {"class", "0x010802"},
         {"revision", "0x01"},
         {"numa_node", "-1"},
         {"current_link_speed", "8.0 GT/s PCIe"},
         {"current_link_width", "8"},
         {"max_link_speed", "8.0 GT/s PCIe"},
         {"max_link_width", "8"},
         {"uevent",
          "DRIVER=nvme\nPCI_CLASS=10802\nPCI_ID=" + pair_of_ids(controller.vendor_id, controller.device_id) +
              "\nPCI_SUBSYS_ID=" + pair_of_ids(controller.subsystem_vendor_id, controller.subsystem_device_id) +
              "\nPCI_SLOT_NAME=" + controller.address}});
    overlay.add_link(function + "/subsystem", "../../../bus/pci");
    overlay.add_link("/sys/bus/pci/devices/" + controller.address,
                     "../../../" + function.substr(std::string_view("/sys/").size()));

    const Attributes identity = {{"model", controller.model},
                                 {"serial", controller.serial},
                                 {"firmware_rev", controller.firmware},
                                 {"subsysnqn", controller.subnqn}};
    add_attributes(overlay, directory, identity);
    add_attributes(overlay, directory,
                   {{"address", controller.address},
                    {"cntlid", std::to_string(controller.controller_id)},
                    {"cntrltype", "io"},
                    {"dctype", "none"},
                    {"dev", number_text(node)},
                    {"kato", "0"},
                    {"numa_node", "-1"},
                    {"queue_count", "3"},
                    {"sqsize", "1023"},
                    {"state", "live"},
                    {"transport", "pcie"},
                    {"uevent", "MAJOR=" + std::to_string(device_number(node).major) +
                                   "\nMINOR=" + std::to_string(device_number(node).minor) + "\nDEVNAME=" + name +
                                   "\nNVME_TRTYPE=pcie"}});
    overlay.add_link(directory + "/device", "../../../" + controller.address);
    overlay.add_link(directory + "/subsystem", "../../../../../class/nvme");
    overlay.add_link("/sys/class/nvme/" + name, "../../" + from_sys);
    overlay.add_link("/sys/dev/char/" + number_text(node), "../../" + from_sys);

    const std::string subsystem = "nvme-subsys" + std::to_string(controller.number);
    const std::string subsystem_directory = "/sys/devices/virtual/nvme-subsystem/" + subsystem;
    overlay.add_directory(subsystem_directory);
    add_attributes(overlay, subsystem_directory, identity);
    add_attributes(overlay, subsystem_directory, {{"subsystype", "nvm"}, {"iopolicy", "numa"}});
    overlay.add_link(subsystem_directory + "/" + name,
                     "../../../" + from_sys.substr(std::string_view("devices/").size()));
    overlay.add_link("/sys/class/nvme-subsystem/" + subsystem, "../../devices/virtual/nvme-subsystem/" + subsystem);

    for (const NamespaceNode& space : controller.namespaces) {
        add_namespace(overlay, controller, directory, space);
    }
}

}  // namespace

MachineView view_of(const Host& host)
{
    return {host.controllers(), host.mount_table()};
}

Overlay make_overlay(const MachineView& view)
{
    Overlay overlay;
    for (const char* path : {"/dev", "/sys/devices", "/sys/devices/virtual", "/sys/devices/virtual/nvme-subsystem",
                             "/sys/class", "/sys/class/nvme", "/sys/class/nvme-subsystem", "/sys/class/block",
                             "/sys/block", "/sys/dev", "/sys/dev/block", "/sys/dev/char", "/sys/bus/pci/devices",
                             "/sys/firmware", "/sys/firmware/dmi", "/sys/firmware/dmi/tables"}) {
        overlay.add_directory(path);
    }
    for (const ControllerNode& controller : view.controllers) {
        add_controller(overlay, controller);
    }
    SmbiosTables tables = make_smbios(view.controllers);
    overlay.add_file("/sys/firmware/dmi/tables/smbios_entry_point", std::move(tables.entry_point));
    overlay.add_file("/sys/firmware/dmi/tables/DMI", std::move(tables.table));
    if (!view.mount_table.empty()) {
        overlay.add_file("/etc/mtab", view.mount_table);
    }
    return overlay;
}

std::string device_path(const Node& node)
{
    std::string path = "/dev/nvme" + std::to_string(node.controller);
    if (node.nsid != 0) {
        path += "n" + std::to_string(node.nsid);
    }
    return path;
}

DeviceNumber device_number(const Node& node)
{
    if (node.nsid == 0) {
        return {kCharacterMajor, node.controller};
    }
    return {kBlockMajor, node.controller * kMinorsOfController + node.nsid - 1};
}

}  // namespace qrx::sim
