#include "sim/firmware/oem_store.h"

#include <algorithm>
#include <cstring>

#include "api/src/interface/wire/buffer.h"
#include "sim/firmware/text.h"

namespace qrx::sim {

namespace {

constexpr QRX_U8 kErased = 0xFF;

QRX_U32 sum_of_words(std::span<const QRX_U8> bytes)
{
    QRX_U32 sum = 0;
    for (; bytes.size() >= sizeof(sum); bytes = bytes.subspan(sizeof(sum))) {
        sum += *wire::read<QRX_U32>(bytes);
    }
    return sum;
}

// Puts the record at the head of the page, with the checksum that it then needs.
void seal(std::span<QRX_U8> page, NVMEOEMData record)
{
    record.zerochksum = 0;
    (void)wire::write(page, 0, record);
    record.zerochksum = 0U - sum_of_words(page.first(record.data_length));
    (void)wire::write(page, 0, record);
}

bool valid(const NVMEOEMData& record, std::span<const QRX_U8> page)
{
    return std::memcmp(record.sign, kOemSign, sizeof(record.sign)) == 0 && record.data_length >= 1 &&
           record.data_length <= page.size() && sum_of_words(page.first(record.data_length)) == 0;
}

std::string text_of(std::span<const QRX_U8> field)
{
    std::string text(field.begin(), field.end());
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

}  // namespace

std::vector<QRX_U8> OemStore::whole() const
{
    std::vector<QRX_U8> page = bytes;
    page.resize(kSize, kErased);
    return page;
}

void OemStore::keep(std::vector<QRX_U8> page)
{
    while (!page.empty() && page.back() == kErased) {
        page.pop_back();
    }
    bytes = std::move(page);
}

void OemStore::read(std::span<QRX_U8> data) const
{
    const std::vector<QRX_U8> page = whole();
    std::copy_n(page.begin(), std::min(data.size(), page.size()), data.begin());
}

Verdict OemStore::write(std::span<const QRX_U8> page)
{
    const auto record = wire::read<NVMEOEMData>(page);
    if (!record || page.size() != kSize || !valid(*record, page) || record->data_length < kOemDataLength ||
        record->data_offset != kOemDataOffset) {
        return Verdict::kInvalidParameter;
    }
    keep({page.begin(), page.end()});
    return Verdict::kGood;
}

void OemStore::make(const OemIdentity& identity)
{
    NVMEOEMData record{};
    std::copy_n(kOemSign, sizeof(record.sign), record.sign);
    record.data_length = kOemDataLength;
    record.data_offset = kOemDataOffset;
    record.subsystemVID = identity.subsystem_vendor_id;
    record.subDevID = identity.subsystem_device_id;
    pad_with_blanks(record.SN, identity.serial);
    pad_with_blanks(record.model, identity.model);
    std::vector<QRX_U8> page(sizeof(record));
    seal(page, record);
    keep(std::move(page));
}

std::optional<OemIdentity> OemStore::identity() const
{
    const std::vector<QRX_U8> page = whole();
    const auto record = *wire::read<NVMEOEMData>(page);
    if (!valid(record, page)) {
        return std::nullopt;
    }
    return OemIdentity{record.subsystemVID, record.subDevID, text_of(record.SN), text_of(record.model)};
}

std::optional<Failure> OemStore::spoil(std::string_view how)
{
    if (how == "erased") {
        bytes.clear();
        return std::nullopt;
    }
    if (how != "bad-signature" && how != "bad-checksum" && how != "bad-length") {
        return Failure{"'" + std::string(how) +
                       "' is none of factory, erased, bad-signature, bad-checksum, bad-length"};
    }
    if (!identity()) {
        return Failure{"there is no valid record to spoil"};
    }
    std::vector<QRX_U8> page = whole();
    auto record = *wire::read<NVMEOEMData>(page);
    if (how == "bad-signature") {
        record.sign[3] = 0;
        seal(page, record);
    } else {
        record.zerochksum += how == "bad-checksum" ? 1 : 0;
        record.data_length = how == "bad-length" ? QRX_U16{0} : record.data_length;
        (void)wire::write(page, 0, record);
    }
    keep(std::move(page));
    return std::nullopt;
}

}  // namespace qrx::sim
