// Requests about one controller.
#pragma once

#include "api/src/interface/wire/adapter.h"
#include "api/src/interface/wire/pd.h"
#include "api/src/interface/wire/types.h"

// Sets the controller's clock, in silence. Returns the device's status.
QRX_U32 QRX_Adapter_SetTime(QRX_U16 adapter_id, PNVME_Adapter_Time adapter_time);

// Reads identity and capabilities, in silence, with defaults for a MaxPD or MaxFlashSize of 0. Returns the call's
// status; a refusal in cmd_status is 0 with `record` unchanged.
QRX_U32 QRX_Adapter_GetSimpleInfo(QRX_U8 adapter_id, PNVME_Adapter_Info record);

// The calls below travel the pair command road; pair_request.h tells what all such calls return.

// Reads identity and capabilities, with the same defaults.
QRX_U32 QRX_Adapter_GetInfo(QRX_U16 adapter_id, PNVME_Adapter_Info adapter_info);
// Read and set the configuration.
QRX_U32 QRX_Adapter_GetConfig(QRX_U16 adapter_id, PNVME_Adapter_Config adapter_config);
QRX_U32 QRX_Adapter_SetConfig(QRX_U16 adapter_id, PNVME_Adapter_Config adapter_config);
// Sets the LED of an end point.
QRX_U32 QRX_Adapter_LED(QRX_U8 adapter_id, PNVME_LED led);

// Has no request of its own: prints "not support now" to standard output, looks at neither argument and returns 0.
QRX_U32 QRX_Adapter_OEM(QRX_U8 adapter_id, PQRXItem_OEM_Data adapter_oem);
