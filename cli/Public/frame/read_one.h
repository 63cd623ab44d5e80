// One record of a list that the typed interface reads.
#pragma once

#include "api/src/interface/globals.h"
#include "api/src/interface/wire/envelope.h"
#include "api/src/interface/wire/types.h"

namespace qrx {

// Has `ask` read the record of the disk `id` into `request`. Returns the call's status; the record is only there on 0.
template <class Request>
QRX_U32 readOne(QRX_U32 (*ask)(QRX_U8, Request*), QRX_U16 id, Request& request, QRX_U8 adapter = gCurrentAdapter)
{
    request = {};
    request.header = oneOf(id);
    return ask(adapter, &request);
}

}  // namespace qrx
