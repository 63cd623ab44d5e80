#include "api/src/function/flash/common/image.h"

#include <algorithm>
#include <cstring>

#include "api/src/function/file/common/crc32.h"
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/image.h"

QRX_U32 crcMake(const QRX_U8* fw_buf, QRX_U32 fw_size)
{
    const QRX_U32 crc = crc32(qrx::kCrcStart, fw_buf, fw_size);
    return crc << 24U | (crc & 0xFF00U) << 8U | (crc >> 8U & 0xFF00U) | crc >> 24U;
}

QRX_U32 checksumResult(const QRX_U8* fw_buf, QRX_U32 fw_size)
{
    if (fw_size % qrx::wire::kPageSize != 0) {
        return 1;
    }
    QRX_U32 sum = 0;
    for (std::size_t offset = 0; offset < fw_size; offset += sizeof(QRX_U32)) {
        QRX_U32 word = 0;
        std::memcpy(&word, fw_buf + offset, sizeof(word));
        sum += word;
    }
    return sum;
}

QRX_U8 fwImgCheck(const QRX_U8* fw_buf, QRX_U32 fw_size, QRX_U32 h_offset, QRX_U32 img_offset)
{
    const auto header = qrx::wire::read<_image_hdr_t>({fw_buf, fw_size}, h_offset);
    if (!header || img_offset > fw_size || header->image_size > fw_size - img_offset) {
        return 1;
    }
    return crcMake(fw_buf + img_offset, header->image_size) == header->crc ? 0 : 1;
}

bool qrx::componentsFit(const QRX_U8* fw_buf, QRX_U32 fw_size)
{
    const auto fits = [=](QRX_U32 body) {
        constexpr QRX_U32 kHeaders[] = {kImageCcp, kImageDqp, kImageMep};
        return std::all_of(std::begin(kHeaders), std::end(kHeaders),
                           [=](QRX_U32 header) { return fwImgCheck(fw_buf, fw_size, header, header + body) == 0; });
    };
    return fits(kBodyNoDigit) || fits(kBodyDigit);
}
