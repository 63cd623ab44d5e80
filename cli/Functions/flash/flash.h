// `flash`: updates the firmware of a controller or of a disk behind it, and shows their firmware slots.
#pragma once

#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"

extern const char flash_help[];

int doFlash(int argc, char** argv, PCommand_Info pCmdInfo);

// The update of a controller, with its progress on `stream`. Returns 0, 1 for an image that is refused, or the failure
// of the update. `filename` may be changed.
QRX_U32 updateAdapterFlash(QRX_U8 adapterID, char* filename, QRX_U8 fs, QRX_U8 ca, QRX_U8 type);

// 0 for a file that opens and is no longer than the controller takes, otherwise 1.
QRX_U32 checkFileSize(QRX_U8 adapterID, const char* filename);

// The update of a disk behind the controller; with an empty name, or an action that needs none, the commit alone. CDW10
// is that of the commit. Returns 0, 1 for a file that is refused, the bytes sent when a segment failed (that segment
// counted), or the status of the commit.
QRX_U32 updateHdFlash(QRX_U8 adapterID, const char* filename, QRX_U32 pd_id, QRX_U32 CDW10, QRX_U8 ca);

// Prints the firmware slots of the current controller (`type` 0) or of a disk behind it (1) on standard output.
void showSlotInfo(QRX_U8 adapterID, QRX_U8 type, QRX_U32 pd_id);

namespace qrx {

// What the poll of a controller's update does between two looks: sleeps a second.
extern void (*flashPause)();

}  // namespace qrx
