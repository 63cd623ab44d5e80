// Requests about physical disks. They travel the pair command road; pair_request.h tells what all such calls return.
#pragma once

#include "api/src/interface/wire/pd.h"
#include "api/src/interface/wire/types.h"

// Reads the disks that pd_info->header asks for (requestType, start, numRequested), header and records into the same
// place, which must hold numRequested records. At most 39 come with one answer.
QRX_U32 QRX_PD_GetInfo(QRX_U8 adapter_id, PNVME_PD_Info_Request pd_info);

// Exchanges an item of OEM data: vd_oem->cbSize bytes behind the head are sent with it, and the answer's head and as
// many bytes take their place. More than 4063 bytes fit no frame: kPairFailed, and nothing is sent.
QRX_U32 QRX_PD_OEM(QRX_U8 adapter_id, PQRXItem_OEM_Data vd_oem);

// Takes over the namespace tables of a disk that comes from another controller. start is the disk.
QRX_U32 QRX_PD_Import(QRX_U8 adapter_id, PRequestHeader pRequestHeader);
