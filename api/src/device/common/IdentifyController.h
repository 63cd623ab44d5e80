// Identify Controller of any NVMe device, for those below the table of controllers.
#pragma once

#include <optional>

#include "api/src/device/common/Device.h"
#include "api/src/interface/wire/nvme.h"

namespace qrx {

// Nothing where the device does not answer.
inline std::optional<nvme_id_ctrl> identifyController(PDevice device)
{
    QRX_U32 cns = kIdentifyController;
    nvme_id_ctrl ctrl{};
    if (device->sendCommand(device, kIdentify, 0, &cns, 1, nullptr, 0, &ctrl, sizeof(ctrl)) != 0) {
        return std::nullopt;
    }
    return ctrl;
}

}  // namespace qrx
