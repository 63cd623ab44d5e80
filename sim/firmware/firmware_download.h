// The image that a host is sending, put together from its pieces by their place in it.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <vector>

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

struct FirmwareDownload {
    std::map<QRX_U32, std::vector<QRX_U8>> pieces;  // by offset in bytes; no two touch or overlap

    friend bool operator==(const FirmwareDownload&, const FirmwareDownload&) = default;

    [[nodiscard]] bool empty() const { return pieces.empty(); }
    void clear() { pieces.clear(); }
    // Takes a piece, which must not be empty; false, and nothing is changed, when it overlaps another.
    bool add(QRX_U32 offset, std::span<const QRX_U8> piece);
    // The image, or nothing while it has a gap or no begin.
    [[nodiscard]] std::optional<std::span<const QRX_U8>> whole() const;
    // Bytes that are there.
    [[nodiscard]] std::size_t size() const;
};

}  // namespace qrx::sim
