// One request of the typed interface on the pair command road.
#pragma once

#include <initializer_list>
#include <span>

#include "api/src/interface/wire/types.h"

namespace qrx {

template <class Record>
std::span<const QRX_U8> recordBytes(const Record& record)
{
    return {reinterpret_cast<const QRX_U8*>(&record), sizeof(record)};
}

// Sends `words` (group, sub-opcode, arguments) with the record `request`, and stores `length` bytes of the answer at
// `answer`, which may be where the request lies. Prints nothing. Returns 0, the firmware's cmd_status, or 1 when the
// request failed or does not fit a frame; `answer` is changed only on 0.
QRX_U32 pairRequest(QRX_U16 adapter_id, std::initializer_list<QRX_U32> words, std::span<const QRX_U8> request,
                    void* answer, QRX_U16 length);

}  // namespace qrx
