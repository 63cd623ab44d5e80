// Requests about virtual disks.
#pragma once

#include "api/src/interface/wire/types.h"
#include "api/src/interface/wire/vd.h"

// Reads VD `id` of the current controller. Returns 0, 1 on a bad signature, or the firmware's cmd_status; `record`
// is filled only on 0. `adapter_id` is not used.
QRX_U32 QRX_Adapter_GetSimpleVDInfo(QRX_U8 adapter_id, QRX_U16 id, PNVME_VD_Info record);
