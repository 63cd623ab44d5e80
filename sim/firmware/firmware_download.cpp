#include "sim/firmware/firmware_download.h"

#include <iterator>

namespace qrx::sim {

bool FirmwareDownload::add(QRX_U32 offset, std::span<const QRX_U8> piece)
{
    const QRX_U64 end = QRX_U64{offset} + piece.size();
    const auto next = pieces.lower_bound(offset);
    const bool into_next = next != pieces.end() && next->first < end;
    const auto before = next != pieces.begin() ? std::prev(next) : pieces.end();
    const QRX_U64 before_end = before != pieces.end() ? QRX_U64{before->first} + before->second.size() : 0;
    if (into_next || (before != pieces.end() && before_end > offset)) {
        return false;
    }
    auto place = before;
    if (before != pieces.end() && before_end == offset) {
        before->second.insert(before->second.end(), piece.begin(), piece.end());
    } else {
        place = pieces.emplace(offset, std::vector<QRX_U8>(piece.begin(), piece.end())).first;
    }
    if (next != pieces.end() && next->first == end) {
        place->second.insert(place->second.end(), next->second.begin(), next->second.end());
        pieces.erase(next);
    }
    return true;
}

std::optional<std::span<const QRX_U8>> FirmwareDownload::whole() const
{
    if (pieces.size() != 1 || pieces.begin()->first != 0) {
        return std::nullopt;
    }
    return pieces.begin()->second;
}

std::size_t FirmwareDownload::size() const
{
    std::size_t sum = 0;
    for (const auto& [offset, bytes] : pieces) {
        sum += bytes.size();
    }
    return sum;
}

}  // namespace qrx::sim
