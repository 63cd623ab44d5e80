#include "api/src/interface/pd.h"

#include "api/src/interface/pair_request.h"

using qrx::PairCode;

QRX_U32 QRX_PD_GetInfo(QRX_U8 adapter_id, PNVME_PD_Info_Request pd_info)
{
    return qrx::pairList(adapter_id, {PairCode::kPdGetInfo}, pd_info);
}

QRX_U32 QRX_PD_OEM(QRX_U8 adapter_id, PQRXItem_OEM_Data vd_oem)
{
    const std::span item = qrx::bytesFrom(vd_oem, sizeof(*vd_oem) + vd_oem->cbSize);
    return qrx::pairRequest(adapter_id, {PairCode::kPdOem}, item, item);
}

QRX_U32 QRX_PD_Import(QRX_U8 adapter_id, PRequestHeader pRequestHeader)
{
    return qrx::pairSend(adapter_id, {PairCode::kPdImport}, *pRequestHeader);
}
