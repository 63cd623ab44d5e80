// What is known of the controllers since start.
#pragma once

#include "api/src/interface/wire/adapter.h"
#include "api/src/interface/wire/types.h"

namespace qrx {

// The controller's record as read at start; zeros where there is none.
const NVME_Adapter_Info& recordOf(QRX_U8 adapter);

inline bool isJbof(const NVME_Adapter_Info& record)
{
    return (record.Features & kFeatureRaid) == 0;
}

}  // namespace qrx
