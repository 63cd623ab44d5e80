// The update of a controller's own firmware, as the front end sees it. One update at a time in a process.
#pragma once

#include "api/src/interface/wire/types.h"

struct _NVME_Flash_Result {
    QRX_U32 status;     // 1 while the worker runs, 0 when it has finished
    QRX_U32 result;     // 0, or the failure or NVMe status of the last step; final once `status` is 0
    QRX_U8 percentage;  // 0 to 100
};
using NVME_Flash_Result = _NVME_Flash_Result;
using PNVME_Flash_Result = _NVME_Flash_Result*;

// Starts the update in a thread of its own. `path` is kept, and its single quotes are taken off in place: it must live
// and be left alone until the update has a result. `type` is 1 for a raw image, else 0. Always 0.
QRX_U32 QRX_Adapter_Flash(QRX_U8 adapter_id, char* path, QRX_U8 fs, QRX_U8 ca, QRX_U8 type);

// How far it is. Returns 1, and leaves the record, when that is null or the update found no memory
// for a record of its progress, and so was not begun.
QRX_U32 QRX_Adapter_Flash_Result(QRX_U8 adapter_id, PNVME_Flash_Result p_result);
