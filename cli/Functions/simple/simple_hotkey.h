// `hotkey`: whole operations behind short code words.
//
// None of them is guarded: virtual disks with a system on them are deleted like any other.
#pragma once

#include <array>

#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"
#include "cli/Public/frame/admin_command.h"

extern const char simple_hotkey_help[];

int doHotkey(int argc, char** argv, PCommand_Info pCmdInfo);

// Carries out the operation of a code word; false for a word that is none. `length` is not read.
bool parseHotkey(const char* word, int length, bool waiveconfirmation);

// Each prints how it went, and returns 0, 1, or the device's status; hotkey itself makes nothing of it.

// A VD of this RAID level and stripe code over the first `freeDrive` free disks.
int hotkey_createVD(QRX_U8 raidMode, QRX_U8 freeDrive, QRX_U8 sbs);
int hotkey_deleteVD();
int hotkey_erasePD(QRX_U16 pdID, bool waiveconfirmation);
int hotkey_read_RC_EP();

// Entry n stands for PD n: 0 where it is not free, otherwise its id, that of PD 0 being written 255.
using FreePDs = std::array<QRX_U8, 32>;
// Fills the table; returns how many are free.
QRX_U8 getFreePDs(FreePDs& PDIDs);
namespace qrx {
// A bitmap of members with one entry of the table more. The bits of the earlier ones are shifted in with it, and an
// empty entry counts as PD 0.
QRX_U32 withMember(QRX_U32 bitmap, QRX_U8 entry);
}  // namespace qrx
// 1 when PD `HDID` answers and is free.
QRX_U8 _getPDInfo(QRX_U16 HDID);
// The id of the VD at an index, or -1.
int getVDID(QRX_U16 index);
// Deletes a VD and tells how it went; returns the device's status.
int do_sdeleteVDID(QRX_U16 id);
// Reads the record of a controller; complains, and returns 1, where there is none to have.
int _getAdapterInfo(QRX_U8 adapter, qrx::Response& buffer);
// Prints the link status register of one port; returns the device's status.
int showRCEP(QRX_U8 id, QRX_U32 address);
