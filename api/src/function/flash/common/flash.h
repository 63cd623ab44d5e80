// The update of a controller's own firmware, step by step: what the worker thread works with.
//
// An image that is once refused, a segment that fails, or a file that changes under the tool, ends the update: nothing
// is sent after it, and above all no commit.
#pragma once

#include "api/src/device/common/Device.h"
#include "api/src/function/file/linux/FileBuffer.h"
#include "api/src/function/progressbar/common/ProgressBar.h"
#include "api/src/interface/wire/types.h"

// What the worker is told.
struct _QRXFlashData {
    QRX_U8 adapter;
    QRX_U16 device_id;  // not set
    QRX_U8 fs;
    QRX_U8 ca;
    QRX_U8 type;
    char* file_name;  // the caller's text, which lives until the update has a result
};
using QRXFlashData = _QRXFlashData;

struct _QRXFlash;
using QRXFlash = _QRXFlash;
using PQRXFlash = _QRXFlash*;

struct _QRXFlash {
    PQRXFileBuffer m_file;         // owned
    PQRXProgressBar m_progress;    // shared with the poller; not owned
    QRX_U8 m_slot;                 // firmware slot of the commit
    QRX_U8 m_ca;                   // commit action
    QRX_U8 m_type;                 // 1: a raw image
    QRX_U16 m_segment_size;        // 4096
    PDevice m_d;                   // the controller's NVMe device; not owned
    QRX_U32 m_total_size;          // bytes of the file
    QRX_U8 m_has_read_flash_info;  // QRXFlash_query has read the slots
    QRX_U16 m_device_id;           // not used

    // Sends the file in segments; the result is that of the last one.
    void (*download)(PQRXFlash _this);
    // Commits; the result is the status of the commit.
    void (*active)(PQRXFlash _this);
    // The vendor step between a raw image and its commit; the result is its status.
    void (*sp_active)(PQRXFlash _this);
    // Checks the image and finds the device. Returns 0 for go on.
    QRX_U32 (*init)(PQRXFlash _this, char* name, QRX_U8 adapter);
    void (*destructor)(PQRXFlash _this);

    QRX_U32 m_checked_crc;  // register over the file as it was checked: what is sent must give the same
};

// Null when memory is short.
PQRXFlash CreateQRXFlashAdapterInstance(QRX_U8 fs, QRX_U8 ca, QRX_U8 type);

// Takes m_slot from the slot that runs, as the controller's log tells it. Returns the status. Not part of an update.
QRX_U32 QRXFlash_query(PQRXFlash _this);
