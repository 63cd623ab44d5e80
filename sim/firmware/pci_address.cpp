#include "sim/firmware/pci_address.h"

#include <array>
#include <cstdio>

#include "sim/firmware/text.h"

namespace qrx::sim {

std::string PciAddress::text() const
{
    std::array<char, 24> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%04x:%02x:%02x.%x", unsigned{domain}, unsigned{bus}, unsigned{device},
                  unsigned{function});
    return buffer.data();
}

std::optional<PciAddress> PciAddress::parse(std::string_view text)
{
    std::array<QRX_U8, 2> domain{};
    std::array<QRX_U8, 1> bus{};
    std::array<QRX_U8, 1> device{};
    if (text.size() != 12 || text[4] != ':' || text[7] != ':' || text[10] != '.') {
        return std::nullopt;
    }
    if (!from_hex(text.substr(0, 4), domain) || !from_hex(text.substr(5, 2), bus) ||
        !from_hex(text.substr(8, 2), device) || device[0] > 31 || text[11] < '0' || text[11] > '7') {
        return std::nullopt;
    }
    return PciAddress{static_cast<QRX_U16>(domain[0] << 8 | domain[1]), bus[0], device[0],
                      static_cast<QRX_U8>(text[11] - '0')};
}

}  // namespace qrx::sim
