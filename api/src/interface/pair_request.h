// One request of the typed interface on the pair command road, in the shapes that its calls share.
//
// All of them print nothing and return 0, the firmware's cmd_status, or kPairFailed: the device failed, its answer
// bore a wrong signature, or the request or its answer does not fit a frame. The answer is stored only on 0.
#pragma once

#include <algorithm>
#include <optional>
#include <span>

#include "api/src/interface/wire/envelope.h"
#include "api/src/interface/wire/pair.h"
#include "api/src/interface/wire/types.h"

namespace qrx {

inline constexpr QRX_U32 kPairFailed = 1;

// The words of a request's frame.
struct PairWords {
    PairCode code;
    std::optional<QRX_U16> argument = std::nullopt;
};

template <class Record>
std::span<const QRX_U8> recordBytes(const Record& record)
{
    return {reinterpret_cast<const QRX_U8*>(&record), sizeof(record)};
}

// The first `length` bytes from the start of `record` on, behind which the caller has more than the record itself.
template <class Record>
std::span<QRX_U8> bytesFrom(Record* record, std::size_t length = sizeof(Record))
{
    return {reinterpret_cast<QRX_U8*>(record), length};
}

// Sends `request` and stores answer.size() bytes of the answer at `answer`, which may be where the request lies.
QRX_U32 pairRequest(QRX_U16 adapter_id, PairWords words, std::span<const QRX_U8> request, std::span<QRX_U8> answer);

// A request that tells something, one that asks for a record, and one that only names what it wants done.
template <class Record>
QRX_U32 pairSend(QRX_U16 adapter_id, PairWords words, const Record& record)
{
    return pairRequest(adapter_id, words, recordBytes(record), {});
}

template <class Record>
QRX_U32 pairReceive(QRX_U16 adapter_id, PairWords words, Record* record)
{
    return pairRequest(adapter_id, words, {}, bytesFrom(record));
}

// A list: sends list->header (requestType, start, numRequested) and stores the answer, header and records, over
// *list, which must hold numRequested records. Of more records than one answer has room for only as many as fit are
// stored, each whole; the header of the answer says how many the controller delivered and where to go on.
template <class List>
QRX_U32 pairList(QRX_U16 adapter_id, PairWords words, List* list)
{
    constexpr std::size_t record = sizeof(List) - sizeof(RequestHeader);
    constexpr std::size_t most = (kPairAnswerMax - sizeof(RequestHeader)) / record;
    const std::size_t count = std::min<std::size_t>(list->header.numRequested, most);
    return pairRequest(adapter_id, words, recordBytes(list->header),
                       bytesFrom(list, sizeof(RequestHeader) + count * record));
}

}  // namespace qrx
