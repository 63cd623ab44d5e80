// Requests about virtual disks.
#pragma once

#include "api/src/interface/wire/types.h"
#include "api/src/interface/wire/vd.h"

// Reads VD `id` of the current controller. Returns 0, 1 on a bad signature, or the firmware's cmd_status; `record`
// is filled only on 0. `adapter_id` is not used.
QRX_U32 QRX_Adapter_GetSimpleVDInfo(QRX_U8 adapter_id, QRX_U16 id, PNVME_VD_Info record);

// Reads the VDs that vd_info->header asks for (start, numRequested) over the pair command road, header and records
// into the same place, which must hold numRequested records. At most 22 fit one answer. Returns 0, the firmware's
// cmd_status, or 1; *vd_info is changed only on 0.
QRX_U32 QRX_VD_GetInfo(QRX_U8 adapter_id, PNVME_VD_Info_Request vd_info);

// Results of QRX_VD_Has_OS.
inline constexpr QRX_U32 kVdHasNoOs = 0;
inline constexpr QRX_U32 kVdUnknownOs = 1;  // what is needed to tell could not be read
inline constexpr QRX_U32 kVdHasOs = 256;

// Whether a namespace of VD `vdId` carries a disk of the running system, among the first `maxNS` of the controller's
// namespaces. A read that fails prints its status text.
QRX_U32 QRX_VD_Has_OS(QRX_U8 adapter_id, QRX_U16 vdId, QRX_U8 maxNS);
