// An NVMe SSD of another maker, beside the controller: it knows no vendor command.
#pragma once

#include "sim/firmware/nvme_function.h"

namespace qrx::sim {

class Ssd : public NvmeFunction {
public:
    Ssd()
    {
        vendor_id = 0xFADE;
        device_id = 0x0042;
        subsystem_vendor_id = 0xFADE;
        model = "Other Maker SSD 512GB";
        slots.contents[0].revision = "OM12.3";
    }

    friend bool operator==(const Ssd&, const Ssd&) = default;
};

}  // namespace qrx::sim
