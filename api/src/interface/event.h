// Requests about the binary ring of events. They travel the pair command road; pair_request.h tells what all such
// calls return.
#pragma once

#include "api/src/interface/wire/event.h"
#include "api/src/interface/wire/types.h"

// Reads the geometry of the ring and where it is being written.
QRX_U32 QRX_Event_Status(QRX_U8 adapter_id, PNVME_Event_Status eventStatus);

// Reads the page event->Page of the ring over *event. Of the record's 4096 bytes a frame sends the first 4080 and
// brings the first 4088, in which all of its events lie. Always returns 0: whether a page came shows in `event`, which
// keeps what the caller put there when none did.
QRX_U32 QRX_Page_Event(QRX_U8 adapter_id, PNVME_Page_EventRequest event);
