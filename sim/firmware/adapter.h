// What a controller says of itself: identity, limits, capabilities, and its two settings.
#pragma once

#include <string>
#include <vector>

#include "api/src/interface/wire/adapter.h"
#include "sim/firmware/pci_address.h"
#include "sim/firmware/status.h"

namespace qrx::sim {

struct Version {
    QRX_U16 major = 1;
    QRX_U16 minor = 0;
    QRX_U16 oem = 0;
    QRX_U16 build = 0;

    friend bool operator==(const Version&, const Version&) = default;
};

struct PciePort {
    QRX_U8 type = kPcieRootComplex;
    QRX_U8 id = 0;
    QRX_U8 speed = 3;
    QRX_U8 width = 4;

    friend bool operator==(const PciePort&, const PciePort&) = default;
};

struct Adapter {
    Version uefi{1, 2, 0, 7};
    Version firmware{2, 4, 1, 1063};
    QRX_U16 subsystem_vendor_id = kControllerVendorId;
    QRX_U16 subsystem_device_id = 0x1001;
    QRX_U8 revision = 0x10;  // bit 4 stepping A, bit 5 stepping B, bits 3 to 0 number
    QRX_U8 ports = 4;
    QRX_U8 max_pd_per_vd = 4;
    QRX_U8 max_vd = 4;
    QRX_U8 max_pd = 1;  // for each port
    QRX_U8 max_ns_per_vd = 8;
    QRX_U8 max_ns = 32;
    QRX_U8 visible_vf_host0 = 0;
    QRX_U8 visible_vf_host1 = 0;
    QRX_U32 flash_size = 0x800000;
    QRX_U16 buffer_size = 4096;
    QRX_U16 raid_modes = 0x0F;
    QRX_U8 cache = 0;
    QRX_U8 background = 0x1F;
    QRX_U8 stripes = 0x07;
    QRX_U8 sku = 0;
    QRX_U32 features = kFeatureImport | kFeatureRaid | kFeatureNamespace | kFeatureDump | kFeatureNmic;
    QRX_U32 oem_features = 0;
    std::string build_date = "Mar 14 2026";
    bool routing_number = false;  // the PCI function is told as device << 3 | function
    std::vector<PciePort> pcie{{kPcieEndPoint, 0, 3, 8},
                               {kPcieRootComplex, 0, 3, 4},
                               {kPcieRootComplex, 1, 3, 4},
                               {kPcieRootComplex, 2, 3, 4},
                               {kPcieRootComplex, 3, 3, 4}};  // at most 16

    friend bool operator==(const Adapter&, const Adapter&) = default;

    [[nodiscard]] bool raid() const { return (features & kFeatureRaid) != 0; }
    // How many ids drives can have: 0 to one less.
    [[nodiscard]] unsigned drive_ids() const { return unsigned{ports} * (max_pd != 0 ? max_pd : ports); }
    // The record of the "read adapter info" command.
    [[nodiscard]] NVME_Adapter_Info record(const PciAddress& address) const;
};

struct AdapterConfig {
    QRX_U8 auto_rebuild = 1;
    QRX_U8 rate = 2;  // 0 high, 2 medium, 32 low

    friend bool operator==(const AdapterConfig&, const AdapterConfig&) = default;

    [[nodiscard]] NVME_Adapter_Config record() const;
    // Takes over both settings, or refuses: auto rebuild is 0 or 1, and a rate that is not high, medium or low is
    // taken only when it is the present one.
    [[nodiscard]] Verdict set(QRX_U8 new_auto_rebuild, QRX_U8 new_rate);
};

}  // namespace qrx::sim
