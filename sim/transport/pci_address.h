// A PCI address as text and as numbers.
#pragma once

#include <cstdio>
#include <string>

namespace qrx::sim {

struct PciAddress {
    unsigned segment = 0;
    unsigned bus = 0;
    unsigned device = 0;
    unsigned function = 0;
};

// Reads "0000:03:00.0"; what is missing or no number stays 0.
[[nodiscard]] inline PciAddress parse_pci_address(const std::string& text)
{
    PciAddress address;
    // A broken text leaves zeros, which is what is promised.
    (void)std::sscanf(text.c_str(), "%4x:%2x:%2x.%1x", &address.segment, &address.bus, &address.device,
                      &address.function);
    return address;
}

}  // namespace qrx::sim
