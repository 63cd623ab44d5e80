// The earlier `info`: controllers as they were read at start; disks and namespaces over the typed interface.
#pragma once

#include "api/src/interface/wire/bga.h"
#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"

extern const char info_help[];
extern const char info_sh[];

int doInfo(int argc, char** argv, PCommand_Info pCmdInfo);

// Print one or, with kAllInstances, all controllers, PDs or VDs, the last two of the current controller.
void getAdapterInfo(QRX_U16 adapterID, bool all);
void getHDInfo(QRX_U16 HDID);
void getLDInfo(QRX_U16 LDID);
// Return 0 when the record was printed (and, for a VD, its background activity was read).
QRX_U32 getOneHDInfo(QRX_U16 HDID, bool isJBOF);
QRX_U32 getOneLDInfo(QRX_U16 LDID);
// Prints the namespace with this NSID, or kAllInstances.
void getNSInfo(QRX_U16 nsId);
// The same among the valid ones of one VD, or of kAllInstances.
void getNSInfoOfVD(QRX_U16 nsId, QRX_U16 vdId);

// The media patrol of a PD; nothing when none runs or pauses.
void HD_PrintBGAStatus(const NVME_BGA_STATUS& bga);
