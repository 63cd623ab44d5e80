// Requests about background activities. They travel the pair command road; pair_request.h tells what all such calls
// return.
#pragma once

#include "api/src/interface/wire/bga.h"
#include "api/src/interface/wire/types.h"

// Read the activities of the disks that bga_status->header asks for (requestType, start, numRequested), header and
// records into the same place, which must hold numRequested records. Any number fits one answer.
QRX_U32 QRX_PD_GetBGAStatus(QRX_U8 adapter_id, PNVME_BGA_REQUEST bga_status);
QRX_U32 QRX_VD_GetBGAStatus(QRX_U8 adapter_id, PNVME_BGA_REQUEST bga_status);

// Pause, resume or abort what runs on a disk; `actions` is a QRX_BGA_OPERATION.
QRX_U32 QRX_PD_BGAControl(QRX_U8 adapter_id, QRX_U16 pd_id, QRX_U16 actions);
QRX_U32 QRX_VD_BGAControl(QRX_U8 adapter_id, QRX_U16 vd_id, QRX_U16 actions);

// Start a media patrol.
QRX_U32 QRX_PD_MP(QRX_U8 adapter_id, QRX_U16 pd_id);
QRX_U32 QRX_VD_MP(QRX_U8 adapter_id, QRX_U16 vd_id);

// Starts an initialization; `init_type` is QRX_NVME_BGA_TYPE_VD_INIT_QUICK or ..._BACKGROUND.
QRX_U32 QRX_VD_Init(QRX_U8 adapter_id, QRX_U16 vd_id, QRX_U8 init_type);
// Starts the rebuild of VDID onto the disk PDID.
QRX_U32 QRX_VD_Rebuild(QRX_U8 adapter_id, PNVME_Rebuild pvd_rebuild);
// Starts a synchronization of a VD's members.
QRX_U32 QRX_VD_Sync(QRX_U8 adapter_id, QRX_U16 vd_id);
// Starts the migration of a VD to another RAID mode or other members.
QRX_U32 QRX_VD_Migrate(QRX_U8 adapter_id, PNVME_Migrate vd_migrate);
