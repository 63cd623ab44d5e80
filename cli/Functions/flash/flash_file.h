// The image file on the way to a disk, and of the size check.
#pragma once

#include <span>

#include "api/src/interface/wire/types.h"

// Opens `filename`, without its double quotes, as the handlers' one `file`. Non-zero when that failed: also for what is
// no regular file.
int open_file_for_flash(const char* filename);
// Up to 4096 bytes; returns how many there were.
QRX_U32 read_file_for_flash(std::span<QRX_U8> data_buffer);
// Bytes; the position stays.
QRX_U64 get_file_length_for_flash();
void close_file_for_flash();
