// The header of a firmware component in a raw image, where the components stand, and how images are committed.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

struct _image_hdr_t {
    QRX_U8 signature[8];  // "HALIIMGF"; decides nothing
    QRX_U32 version;
    QRX_U32 select_bit;
    QRX_U32 auth;
    QRX_U32 encrypt;
    QRX_U32 num_of_section;
    QRX_U32 section_hdr_size;
    QRX_U32 section_table_offset;
    QRX_U32 flash_addr;
    QRX_U32 crc;         // crcMake over the body
    QRX_U32 image_size;  // bytes of the body
    QRX_U8 image_type;
    QRX_U8 reserve[11];
    QRX_U32 crc_h;
};
using image_hdr_t = _image_hdr_t;
static_assert(sizeof(_image_hdr_t) == 64);
static_assert(offsetof(_image_hdr_t, crc) == 40);
static_assert(offsetof(_image_hdr_t, image_size) == 44);
static_assert(offsetof(_image_hdr_t, crc_h) == 60);

// File offsets of the headers of the three components.
inline constexpr QRX_U32 kImageCcp = 0x40000;
inline constexpr QRX_U32 kImageDqp = 0x60000;
inline constexpr QRX_U32 kImageMep = 0x80000;

// From a header to its body, in the two layouts of a raw image.
inline constexpr QRX_U32 kBodyNoDigit = 0x40;
inline constexpr QRX_U32 kBodyDigit = 0x80;

// The commit actions that need no image.
inline constexpr QRX_U8 kCommitActivateAtReset = 2;
inline constexpr QRX_U8 kCommitActivateNow = 3;  // with an image it is sent first
