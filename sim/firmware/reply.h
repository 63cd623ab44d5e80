// The answer of a vendor command: an envelope and behind it a record, in a page whose rest is zeros.
#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/envelope.h"
#include "sim/firmware/status.h"

namespace qrx::sim {

// Puts an envelope with `verdict`, and zeros behind it, into the first page of `data`, or into as much as the host
// gave. Returns the space for the payload, which is empty when there is none.
inline std::span<QRX_U8> open_reply(std::span<QRX_U8> data, Verdict verdict)
{
    const auto page = data.first(std::min(data.size(), wire::kPageSize));
    std::fill(page.begin(), page.end(), QRX_U8{0});
    NVMEReceiveData envelope{};
    std::memcpy(envelope.sign, kFrameSign, sizeof(kFrameSign));
    envelope.cmd_status = static_cast<QRX_U8>(verdict);
    std::array<QRX_U8, sizeof(envelope)> bytes{};
    std::memcpy(bytes.data(), &envelope, sizeof(envelope));
    std::copy_n(bytes.begin(), std::min(page.size(), bytes.size()), page.begin());
    return page.size() > kReceiveDataOffset ? page.subspan(kReceiveDataOffset) : std::span<QRX_U8>();
}

// Puts as much of `record` as fits to `offset` of `space`.
template <class Record>
void put(std::span<QRX_U8> space, std::size_t offset, const Record& record)
{
    static_assert(std::is_trivially_copyable_v<Record>);
    if (offset < space.size()) {
        std::memcpy(space.data() + offset, &record, std::min(sizeof(record), space.size() - offset));
    }
}

inline Completion reply(std::span<QRX_U8> data, Verdict verdict)
{
    open_reply(data, verdict);
    return complete(status::kSuccess);
}

template <class Record>
Completion reply_with(std::span<QRX_U8> data, const Record& record)
{
    put(open_reply(data, Verdict::kGood), 0, record);
    return complete(status::kSuccess);
}

// An answer without an envelope: the record alone.
template <class Record>
Completion answer_with(std::span<QRX_U8> data, const Record& record)
{
    const auto page = data.first(std::min(data.size(), wire::kPageSize));
    std::fill(page.begin(), page.end(), QRX_U8{0});
    put(page, 0, record);
    return complete(status::kSuccess);
}

}  // namespace qrx::sim
