#include "api/src/interface/event.h"

#include "api/src/interface/pair_request.h"

using qrx::PairCode;

QRX_U32 QRX_Event_Status(QRX_U8 adapter_id, PNVME_Event_Status eventStatus)
{
    return qrx::pairReceive(adapter_id, {PairCode::kEventStatus}, eventStatus);
}

QRX_U32 QRX_Page_Event(QRX_U8 adapter_id, PNVME_Page_EventRequest event)
{
    static_assert(offsetof(NVME_Page_EventRequest, Reserved2) <= qrx::kPairRequestMax);
    qrx::pairRequest(adapter_id, {PairCode::kPageEvent}, qrx::bytesFrom(event, qrx::kPairRequestMax),
                     qrx::bytesFrom(event, qrx::kPairAnswerMax));
    return 0;
}
