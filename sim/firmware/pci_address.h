// Where a controller sits on the PCI bus.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

struct PciAddress {
    QRX_U16 domain = 0;
    QRX_U8 bus = 0;
    QRX_U8 device = 0;    // 0 to 31
    QRX_U8 function = 0;  // 0 to 7

    friend bool operator==(const PciAddress&, const PciAddress&) = default;

    // "0000:03:00.0"
    [[nodiscard]] std::string text() const;
    // The address that text() gives as `text`; empty when `text` has another form.
    [[nodiscard]] static std::optional<PciAddress> parse(std::string_view text);
};

}  // namespace qrx::sim
