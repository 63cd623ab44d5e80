// Requests about one controller.
#pragma once

#include "api/src/interface/wire/adapter.h"
#include "api/src/interface/wire/types.h"

// Sets the controller's clock, in silence. Returns the device's status.
QRX_U32 QRX_Adapter_SetTime(QRX_U16 adapter_id, PNVME_Adapter_Time adapter_time);

// Reads identity and capabilities over the pair command road, with the same defaults. Returns 0, the firmware's
// cmd_status, or 1; `adapter_info` is filled only on 0.
QRX_U32 QRX_Adapter_GetInfo(QRX_U16 adapter_id, PNVME_Adapter_Info adapter_info);

// Reads identity and capabilities, in silence, with defaults for a MaxPD or MaxFlashSize of 0. Returns the call's
// status; a refusal in cmd_status is 0 with `record` unchanged.
QRX_U32 QRX_Adapter_GetSimpleInfo(QRX_U8 adapter_id, PNVME_Adapter_Info record);
