// The arithmetic checks of a firmware image.
#pragma once

#include "api/src/interface/wire/types.h"

// crc32 of `fw_size` bytes from 0xFFFFFFFF, not inverted, its four bytes reversed: as the headers of an image have it.
QRX_U32 crcMake(const QRX_U8* fw_buf, QRX_U32 fw_size);

// The 32-bit sum of all little-endian words, 0 for a good image; 1 for a size that is no multiple of 4096.
QRX_U32 checksumResult(const QRX_U8* fw_buf, QRX_U32 fw_size);

// 0 when the body at `img_offset` has the CRC that the header at `h_offset` tells, otherwise 1; 1 also where header or
// body do not lie within the `fw_size` bytes of the image. The signature of the header decides nothing.
QRX_U8 fwImgCheck(const QRX_U8* fw_buf, QRX_U32 fw_size, QRX_U32 h_offset, QRX_U32 img_offset);

namespace qrx {

// True when one of the two layouts fits all three components. Layouts do not mix.
bool componentsFit(const QRX_U8* fw_buf, QRX_U32 fw_size);

}  // namespace qrx
