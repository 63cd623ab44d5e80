// What has been written to a namespace: the sectors that are not all zeros.
#pragma once

#include <map>
#include <span>
#include <vector>

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

struct SparseStore {
    std::map<QRX_U64, std::vector<QRX_U8>> sectors;  // by LBA, each of one sector

    friend bool operator==(const SparseStore&, const SparseStore&) = default;

    // `data` is a whole number of sectors of `sector_size` bytes from `lba` on.
    void read(QRX_U64 lba, QRX_U32 sector_size, std::span<QRX_U8> data) const;
    void write(QRX_U64 lba, QRX_U32 sector_size, std::span<const QRX_U8> data);
    [[nodiscard]] bool equals(QRX_U64 lba, QRX_U32 sector_size, std::span<const QRX_U8> data) const;
    void erase(QRX_U64 lba, QRX_U64 count);
};

}  // namespace qrx::sim
