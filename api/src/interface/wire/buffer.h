// The one way to take a record out of, or put one into, a buffer of bytes: bounds first, then a copy.
#pragma once

#include <cstddef>
#include <cstring>
#include <optional>
#include <span>
#include <type_traits>

#include "api/src/interface/wire/types.h"

namespace qrx::wire {

// Bytes of the data buffer of a vendor command, and of one page of the host.
inline constexpr std::size_t kPageSize = 4096;

// Copies the record at `offset` out of `buffer`. Empty when the buffer is too short to hold it there.
template <class Record>
[[nodiscard]] std::optional<Record> read(std::span<const QRX_U8> buffer, std::size_t offset = 0)
{
    static_assert(std::is_trivially_copyable_v<Record>);
    if (offset > buffer.size() || buffer.size() - offset < sizeof(Record)) {
        return std::nullopt;
    }
    Record record;
    std::memcpy(&record, buffer.data() + offset, sizeof(Record));
    return record;
}

// Copies `record` to `offset` of `buffer`. False, and nothing written, when it does not fit there.
template <class Record>
[[nodiscard]] bool write(std::span<QRX_U8> buffer, std::size_t offset, const Record& record)
{
    static_assert(std::is_trivially_copyable_v<Record>);
    if (offset > buffer.size() || buffer.size() - offset < sizeof(Record)) {
        return false;
    }
    std::memcpy(buffer.data() + offset, &record, sizeof(Record));
    return true;
}

}  // namespace qrx::wire
