// Arithmetic, the file of a handler's --outputfile, --inputfile and -f options, and the plain hex dump.
#pragma once

#include <cstdio>
#include <optional>
#include <string>

#include "api/src/interface/wire/types.h"

// `base` to the power of `power`, as a floating-point number cut to an integer, of which the low 32 bits.
QRX_U32 pow_nvme(QRX_U8 base, QRX_U8 power);

// CRC-32 of IEEE 802.3, reflected, without the final inversion; 0xFFFFFFFF for no bytes.
QRX_U32 calCRC32(QRX_U8* byte, QRX_U16 length);

// The one file a handler has open, or null.
extern FILE* file;

namespace qrx {

// The name that an option gives: where it begins with a double quote, what stands up to the next one or the end.
// Nothing with errno set: too long, or in single quotes.
std::optional<std::string> nameOfFile(const char* filename);

}  // namespace qrx

// Opens nameOfFile(filename) as `file`. A file left open by an earlier command is closed first. Returns 0, or 1 with
// errno set.
int open_file(const char* filename, const char* mode);
// Bytes in `file`; its position stays. 0 when there is no open file.
long get_file_length();
// `size` bytes from, or to, `file`; short transfers pass in silence, and so does a missing file.
void read_file(void* buffer, int size);
void write_file(const void* buffer, int size);
void close_file();

// Writes the bytes as "0x%02x " in rows of 16 to `stream`.
void _showRAWData(const QRX_U8* p_data_buff, int data_len);
