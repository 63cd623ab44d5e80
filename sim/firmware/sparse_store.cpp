#include "sim/firmware/sparse_store.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace qrx::sim {

namespace {

bool all_zero(std::span<const QRX_U8> data)
{
    return std::all_of(data.begin(), data.end(), [](QRX_U8 byte) { return byte == 0; });
}

}  // namespace

void SparseStore::read(QRX_U64 lba, QRX_U32 sector_size, std::span<QRX_U8> data) const
{
    if (data.empty()) {
        return;
    }
    std::fill(data.begin(), data.end(), QRX_U8{0});
    const QRX_U64 count = data.size() / sector_size;
    for (auto sector = sectors.lower_bound(lba); sector != sectors.end() && sector->first - lba < count; ++sector) {
        std::memcpy(data.data() + (sector->first - lba) * sector_size, sector->second.data(), sector_size);
    }
}

void SparseStore::write(QRX_U64 lba, QRX_U32 sector_size, std::span<const QRX_U8> data)
{
    mend(lba, data.size() / sector_size);
    for (; !data.empty(); ++lba, data = data.subspan(sector_size)) {
        const auto sector = data.first(sector_size);
        if (all_zero(sector)) {
            sectors.erase(lba);
        } else {
            sectors[lba].assign(sector.begin(), sector.end());
        }
    }
}

bool SparseStore::equals(QRX_U64 lba, QRX_U32 sector_size, std::span<const QRX_U8> data) const
{
    std::vector<QRX_U8> stored(data.size());
    read(lba, sector_size, stored);
    return std::equal(data.begin(), data.end(), stored.begin());
}

void SparseStore::erase(QRX_U64 lba, QRX_U64 count)
{
    sectors.erase(sectors.lower_bound(lba), sectors.lower_bound(lba + count));
    mend(lba, count);
}

void SparseStore::spoil(QRX_U64 lba, QRX_U64 count)
{
    if (count == 0) {
        return;
    }
    erase(lba, count);
    QRX_U64 end = lba + count;
    const auto behind = uncorrectable.find(end);
    if (behind != uncorrectable.end()) {
        end = behind->second;
        uncorrectable.erase(behind);
    }
    const auto next = uncorrectable.lower_bound(lba);
    if (next != uncorrectable.begin() && std::prev(next)->second == lba) {
        std::prev(next)->second = end;
    } else {
        uncorrectable[lba] = end;
    }
}

bool SparseStore::readable(QRX_U64 lba, QRX_U64 count) const
{
    const auto next = uncorrectable.lower_bound(lba);
    const bool meets_next = next != uncorrectable.end() && next->first < lba + count;
    const bool meets_previous = next != uncorrectable.begin() && std::prev(next)->second > lba;
    return count == 0 || (!meets_next && !meets_previous);
}

void SparseStore::mend(QRX_U64 lba, QRX_U64 count)
{
    const QRX_U64 end = lba + count;
    auto range = uncorrectable.lower_bound(lba);
    if (range != uncorrectable.begin() && std::prev(range)->second > lba) {
        --range;
    }
    while (range != uncorrectable.end() && range->first < end) {
        const auto [first, last] = *range;
        range = uncorrectable.erase(range);
        if (first < lba) {
            uncorrectable[first] = lba;
        }
        if (last > end) {
            uncorrectable[end] = last;
        }
    }
}

}  // namespace qrx::sim
