#include "api/src/interface/bga.h"

#include "api/src/interface/pair_request.h"
#include "api/src/interface/wire/pd.h"

using qrx::PairCode;

QRX_U32 QRX_PD_GetBGAStatus(QRX_U8 adapter_id, PNVME_BGA_REQUEST bga_status)
{
    return qrx::pairList(adapter_id, {PairCode::kPdGetBgaStatus}, bga_status);
}

QRX_U32 QRX_VD_GetBGAStatus(QRX_U8 adapter_id, PNVME_BGA_REQUEST bga_status)
{
    return qrx::pairList(adapter_id, {PairCode::kVdGetBgaStatus}, bga_status);
}

QRX_U32 QRX_PD_BGAControl(QRX_U8 adapter_id, QRX_U16 pd_id, QRX_U16 actions)
{
    return qrx::pairSend(adapter_id, {PairCode::kPdBgaControl, actions}, qrx::oneOf(pd_id));
}

QRX_U32 QRX_VD_BGAControl(QRX_U8 adapter_id, QRX_U16 vd_id, QRX_U16 actions)
{
    return qrx::pairSend(adapter_id, {PairCode::kVdBgaControl, actions}, qrx::oneOf(vd_id));
}

QRX_U32 QRX_PD_MP(QRX_U8 adapter_id, QRX_U16 pd_id)
{
    return qrx::pairSend(adapter_id, {PairCode::kPdMediaPatrol}, NVME_PD_MP{pd_id, {}});
}

QRX_U32 QRX_VD_MP(QRX_U8 adapter_id, QRX_U16 vd_id)
{
    return qrx::pairSend(adapter_id, {PairCode::kVdMediaPatrol}, NVME_VD_MP{vd_id, {}});
}

QRX_U32 QRX_VD_Init(QRX_U8 adapter_id, QRX_U16 vd_id, QRX_U8 init_type)
{
    return qrx::pairSend(adapter_id, {PairCode::kVdInit}, NVME_VD_Init{vd_id, init_type, {}});
}

QRX_U32 QRX_VD_Rebuild(QRX_U8 adapter_id, PNVME_Rebuild pvd_rebuild)
{
    return qrx::pairSend(adapter_id, {PairCode::kVdRebuild}, *pvd_rebuild);
}

QRX_U32 QRX_VD_Sync(QRX_U8 adapter_id, QRX_U16 vd_id)
{
    return qrx::pairSend(adapter_id, {PairCode::kVdSync}, NVME_VD_Sync{vd_id, {}});
}

QRX_U32 QRX_VD_Migrate(QRX_U8 adapter_id, PNVME_Migrate vd_migrate)
{
    return qrx::pairSend(adapter_id, {PairCode::kVdMigrate}, *vd_migrate);
}
