// The controller's Vital Product Data: an IPMI FRU image in each of its two stores.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

struct Vpd {
    static constexpr std::size_t kEepromSize = 256;
    static constexpr std::size_t kSpiSize = 1024;
    static constexpr QRX_U8 kErased = 0xFF;

    std::vector<QRX_U8> eeprom;  // kEepromSize bytes
    std::vector<QRX_U8> spi;     // kSpiSize bytes

    friend bool operator==(const Vpd&, const Vpd&) = default;
};

// What an image tells of its controller.
struct VpdFacts {
    std::string model;
    std::string serial;
    QRX_U64 capacity = 0;    // bytes
    QRX_U8 link_speeds = 0;  // bit 0: 2.5 GT/s, bit 1: 5, bit 2: 8
    QRX_U8 link_width = 0;   // lanes
};

// Both stores as the controller leaves the factory with them: images that differ in the product's version, which is
// 01 in the EEPROM and 02 in the SPI flash, and erased bytes behind them.
[[nodiscard]] Vpd factory_vpd(const VpdFacts& facts);

}  // namespace qrx::sim
