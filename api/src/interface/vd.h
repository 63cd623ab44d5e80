// Requests about virtual disks.
#pragma once

#include "api/src/interface/wire/types.h"
#include "api/src/interface/wire/vd.h"

// Reads VD `id` of the current controller. Returns 0, 1 on a bad signature, or the firmware's cmd_status; `record`
// is filled only on 0. `adapter_id` is not used.
QRX_U32 QRX_Adapter_GetSimpleVDInfo(QRX_U8 adapter_id, QRX_U16 id, PNVME_VD_Info record);

// Results of QRX_VD_Has_OS.
inline constexpr QRX_U32 kVdHasNoOs = 0;
inline constexpr QRX_U32 kVdUnknownOs = 1;  // what is needed to tell could not be read
inline constexpr QRX_U32 kVdHasOs = 256;

// Whether a namespace of VD `vdId` carries a disk of the running system, among the first `maxNS` of the controller's
// namespaces. A read that fails prints its status text.
QRX_U32 QRX_VD_Has_OS(QRX_U8 adapter_id, QRX_U16 vdId, QRX_U8 maxNS);

// The calls below travel the pair command road; pair_request.h tells what all such calls return.

// Read the VDs that the header asks for (requestType, start, numRequested), header and records into the same place,
// which must hold numRequested records. At most 22 and 169 of them come with one answer.
QRX_U32 QRX_VD_GetInfo(QRX_U8 adapter_id, PNVME_VD_Info_Request vd_info);
QRX_U32 QRX_VD_GetConfig(QRX_U8 adapter_id, PNVME_VD_Config_Request vd_config);
// Sets the configuration of the numRequested VDs behind the header. More than 169 fit no frame: kPairFailed, and
// nothing is sent.
QRX_U32 QRX_VD_SetConfig(QRX_U8 adapter_id, PNVME_VD_Config_Request vd_config);

// Makes a VD, and then attaches its namespaces to the host: a VD that was made and whose namespaces could not be
// looked up returns the result of that, 1. Clears create_para->QueryLDSize.
QRX_U32 QRX_VD_Create(QRX_U8 adapter_id, PNVME_Create_VD create_para);
// Asks how large the VD would be, and makes none. Sets create_para->QueryLDSize.
QRX_U32 QRX_VD_QuerySize(QRX_U8 adapter_id, PNVME_Create_VD create_para, PNVME_PreCreate_VD pre_create_para);
// Detaches the namespaces of a VD from the host, whatever comes of that, and deletes it.
QRX_U32 QRX_VD_Delete(QRX_U8 adapter_id, QRX_U16 vd_id);
// Takes over a VD whose members come from another controller. start is the VD.
QRX_U32 QRX_VD_Import(QRX_U8 adapter_id, PRequestHeader pRequestHeader);
