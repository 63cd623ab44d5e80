// Requests about namespaces.
#pragma once

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/envelope.h"
#include "api/src/interface/wire/ns.h"
#include "api/src/interface/wire/types.h"

// Records that one list response can hold, whatever MaxNS a controller reports.
inline constexpr QRX_U8 kNsListMax = (qrx::wire::kPageSize - kReceiveDataOffset) / sizeof(NVME_NS_Info);

// Reads the list of namespaces and prints the status text of a failed call. `ns_info` gets the first `maxNS` records,
// at most kNsListMax. Returns the call's status, 1 on a bad signature, or the firmware's cmd_status; `ns_info` is
// filled only on 0.
QRX_U32 QRX_NS_GetInfo(QRX_U8 adapter_id, PNVME_NS_Info ns_info, QRX_U8 maxNS);

// Reads the namespaces of VD `vd_id` over the pair command road; pair_request.h tells what is returned. `ns_info` gets
// the first `numOfNS` records, at most kNsListMax; slots without a namespace have Status 0.
QRX_U32 QRX_NS_GetInfo_VD(QRX_U8 adapter_id, PNVME_NS_Info ns_info, QRX_U16 vd_id, QRX_U8 numOfNS);
