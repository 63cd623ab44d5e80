// Bytes for tests: records as bytes, and the answers of a controller.
#pragma once

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <vector>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/envelope.h"
#include "api/src/interface/wire/types.h"

namespace qrx::test {

using Bytes = std::vector<QRX_U8>;

// The bytes of a record.
template <class Record>
Bytes bytesOf(const Record& record)
{
    static_assert(std::is_trivially_copyable_v<Record>);
    Bytes bytes(sizeof(Record));
    std::memcpy(bytes.data(), &record, sizeof(Record));
    return bytes;
}

// `bytes` filled up with `filler` to `length`.
inline Bytes padded(Bytes bytes, std::size_t length, QRX_U8 filler = 0)
{
    bytes.resize(length, filler);
    return bytes;
}

// `length` bytes, none of them zero, of which no two neighbours and no two pages are alike.
inline Bytes pattern(std::size_t length, QRX_U8 seed = 1)
{
    Bytes bytes(length);
    for (std::size_t i = 0; i < length; ++i) {
        bytes[i] = static_cast<QRX_U8>(1 + (i + i / 255 + seed) % 255);
    }
    return bytes;
}

// A vendor answer: envelope and payload, without the rest of the page.
inline Bytes envelope(const Bytes& data, QRX_U8 cmd_status = 0)
{
    const NVMEReceiveData head{.sign = {'Q', 'R', 'X', 0}, .cmd_status = cmd_status, .reserved = {}};
    Bytes bytes = bytesOf(head);
    bytes.resize(bytes.size() + data.size());
    std::copy(data.begin(), data.end(), bytes.begin() + sizeof(head));
    return bytes;
}

// The same with a record as payload.
template <class Record>
requires std::is_trivially_copyable_v<Record> Bytes envelope(const Record& record, QRX_U8 cmd_status = 0)
{
    return envelope(bytesOf(record), cmd_status);
}

}  // namespace qrx::test
