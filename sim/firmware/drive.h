// A physical disk behind the controller.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "api/src/interface/wire/pd.h"
#include "sim/firmware/background.h"

namespace qrx::sim {

// A namespace of a table that another controller left on a drive.
struct ForeignNamespace {
    QRX_U8 table = 0;
    QRX_U64 sectors = 1;
    std::array<QRX_U8, 16> nguid{};
    std::array<QRX_U8, 8> eui64{};

    friend bool operator==(const ForeignNamespace&, const ForeignNamespace&) = default;
};

struct Drive {
    QRX_U16 id = 0;
    std::string model = "QRX Lab SSD 960GB";  // at most 40 letters
    std::string serial;                       // at most 20 letters
    std::string firmware = "LAB1.0.4";        // at most 8 letters
    QRX_U32 sector_size = 512;                // bytes
    QRX_U64 sectors = 1875385008;
    QRX_U16 slot = 0;             // back-end root complex
    QRX_U16 nsid = 1;             // namespace on the drive itself
    QRX_U16 temperature = 308;    // Kelvin
    QRX_U8 critical_warning = 0;  // as its SMART log says
    bool failed = false;
    bool importable = false;
    std::vector<ForeignNamespace> foreign_namespaces;
    std::optional<BackgroundActivity> activity;

    friend bool operator==(const Drive&, const Drive&) = default;

    [[nodiscard]] QRX_U64 bytes() const { return sectors * sector_size; }
    // `assigned`: a virtual disk uses it; `patrolled`: a media patrol of that virtual disk runs over it.
    [[nodiscard]] NVME_PD_Info record(bool assigned, bool patrolled) const;
    void advance(Clock::Duration passed);
};

}  // namespace qrx::sim
