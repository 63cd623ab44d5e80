// A file that is read in steps of one size.
#pragma once

#include "api/src/interface/wire/types.h"

struct _QRXFileBuffer;
using QRXFileBuffer = _QRXFileBuffer;
using PQRXFileBuffer = _QRXFileBuffer*;

struct _QRXFileBuffer {
    QRX_U8* m_data;          // owned; m_step_length bytes, zeroed when the file was opened; null for a step of 0
    QRX_U32 m_step_length;   // bytes of one read
    QRX_U32 m_offset;        // bytes consumed
    QRX_U32 m_crc;           // crcMake of the whole file
    QRX_U32 m_checksum_ret;  // checksumResult of the whole file
    int m_file;              // owned; -1: closed

    // Opens the regular file `name`, whose leading and one trailing single quote are taken off in place, and closes
    // the one before. Returns 0, or 1 with no file open: there is none of this name, it cannot be read, it is no
    // regular file, or memory is short.
    QRX_U32 (*open_for_read)(PQRXFileBuffer _this, char* name, QRX_U32 step);
    // Fills m_data with the next step and returns it; null when nothing is open or the step is 0. m_offset grows by
    // the whole step unless the read fails; what lies behind the last byte that was read stays as it was.
    QRX_U8* (*read)(PQRXFileBuffer _this);
    QRX_U32 (*get_offset)(PQRXFileBuffer _this);       // m_offset; 0 for null
    QRX_U64 (*get_file_length)(PQRXFileBuffer _this);  // bytes; 0 when closed
    void (*close)(PQRXFileBuffer _this);               // closes the file and frees the buffer and the object
    void (*seek)(PQRXFileBuffer _this);                // null

    QRX_U32 m_got;  // bytes that the last read brought: fewer than a step at the end of the file, 0 when it failed
};

// Nothing open. Null when memory is short.
PQRXFileBuffer CreateQRXFileBufferInstance();
