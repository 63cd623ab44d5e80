// What has been written to a namespace: the sectors that are not all zeros, and those that cannot be read any more.
#pragma once

#include <map>
#include <span>
#include <vector>

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

struct SparseStore {
    std::map<QRX_U64, std::vector<QRX_U8>> sectors;  // by LBA, each of one sector
    // The ranges that were made uncorrectable, by their first LBA; the value is the LBA behind the last. They neither
    // meet nor touch.
    std::map<QRX_U64, QRX_U64> uncorrectable;

    friend bool operator==(const SparseStore&, const SparseStore&) = default;

    // `data` is a whole number of sectors of `sector_size` bytes from `lba` on.
    void read(QRX_U64 lba, QRX_U32 sector_size, std::span<QRX_U8> data) const;
    // What is written can be read again.
    void write(QRX_U64 lba, QRX_U32 sector_size, std::span<const QRX_U8> data);
    [[nodiscard]] bool equals(QRX_U64 lba, QRX_U32 sector_size, std::span<const QRX_U8> data) const;
    void erase(QRX_U64 lba, QRX_U64 count);
    // Makes sectors uncorrectable; what they held is lost.
    void spoil(QRX_U64 lba, QRX_U64 count);
    // Whether all of the sectors can be read.
    [[nodiscard]] bool readable(QRX_U64 lba, QRX_U64 count) const;

private:
    // Takes the sectors out of the uncorrectable ones.
    void mend(QRX_U64 lba, QRX_U64 count);
};

}  // namespace qrx::sim
