#include "sim/transport/smbios.h"

#include <array>
#include <cstddef>
#include <initializer_list>
#include <numeric>
#include <string_view>

#include "sim/firmware/pci_address.h"

namespace qrx::sim {
namespace {

enum Type : QRX_U8 { kBios = 0, kSystem = 1, kSystemSlot = 9, kEndOfTable = 127 };

// One structure: header, fixed fields, strings.
class Structure {
public:
    Structure(Type type, QRX_U16 handle)
    {
        byte(type);
        byte(0);  // length, set by finish()
        word(handle);
    }
    Structure& byte(unsigned value)
    {
        bytes_.push_back(static_cast<char>(value));
        return *this;
    }
    Structure& word(unsigned value) { return byte(value & 0xff).byte(value >> 8 & 0xff); }
    Structure& zeros(std::size_t count)
    {
        bytes_.append(count, '\0');
        return *this;
    }
    [[nodiscard]] std::string finish(std::initializer_list<std::string_view> strings)
    {
        bytes_[1] = static_cast<char>(bytes_.size());
        for (const std::string_view text : strings) {
            bytes_.append(text).push_back('\0');
        }
        bytes_.append(strings.size() == 0 ? 2 : 1, '\0');
        return bytes_;
    }

private:
    std::string bytes_;
};

std::string make_bios()
{
    return Structure(kBios, 0x0000)
        .byte(1)       // vendor, string 1
        .byte(2)       // version, string 2
        .word(0xe800)  // start segment
        .byte(3)       // release date, string 3
        .byte(0)       // ROM size: 64 KiB
        .word(0x0080)  // characteristics: PCI is supported
        .zeros(6)      //
        .word(0x0000)  // characteristics extension
        .byte(1)       // BIOS release 1.0
        .byte(0)       //
        .byte(0xff)    // no embedded controller
        .byte(0xff)    //
        .finish({"qrx_sim", "1.0", "01/01/2024"});
}

std::string make_system()
{
    Structure system(kSystem, 0x0100);
    system.byte(1).byte(2).byte(3).byte(4);  // manufacturer, product, version, serial number: strings 1 to 4
    for (unsigned value = 1; value <= 16; ++value) {
        system.byte(value);  // UUID
    }
    return system
        .byte(6)  // woken by the power switch
        .byte(0)  // no SKU
        .byte(0)  // no family
        .finish({"qrx_sim", "Simulated machine", "1", "SIM0001"});
}

std::string make_slot(const ControllerNode& controller, unsigned index)
{
    const PciAddress address = PciAddress::parse(controller.address).value_or(PciAddress{});
    const std::string designation = "PCIe Slot " + std::to_string(controller.slot_id);
    return Structure(kSystemSlot, static_cast<QRX_U16>(0x0900 + index))
        .byte(1)                   // designation, string 1
        .byte(0xb6)                // PCI Express Gen 3
        .byte(10)                  // x8
        .byte(4)                   // in use
        .byte(4)                   // long
        .word(controller.slot_id)  //
        .byte(0x0c)                // characteristics 1: 3.3 V, shared opening
        .byte(0x01)                // characteristics 2: PME
        .word(address.domain)      //
        .byte(address.bus)         //
        .byte(static_cast<unsigned>(address.device << 3 | address.function))  //
        .finish({designation});
}

}  // namespace

SmbiosTables make_smbios(std::span<const ControllerNode> controllers)
{
    SmbiosTables tables;
    tables.table = make_bios() + make_system();
    unsigned index = 0;
    for (const ControllerNode& controller : controllers) {
        tables.table += make_slot(controller, index++);
    }
    tables.table += Structure(kEndOfTable, 0xfeff).finish({});

    std::string& entry = tables.entry_point;
    entry = "_SM3_";
    entry.push_back('\0');                              // checksum
    entry.append({24, 3, 2, 0, 1, 0});                  // length, version 3.2.0, entry point revision, reserved
    for (unsigned shift = 0; shift < 32; shift += 8) {  // table maximum size
        entry.push_back(static_cast<char>(tables.table.size() >> shift & 0xff));
    }
    entry.append({0, 0, 0x0e, 0, 0, 0, 0, 0});  // table address
    const unsigned sum = std::accumulate(entry.begin(), entry.end(), 0U,
                                         [](unsigned total, char c) { return total + static_cast<unsigned char>(c); });
    entry[5] = static_cast<char>(0x100 - (sum & 0xff));
    return tables;
}

}  // namespace qrx::sim
