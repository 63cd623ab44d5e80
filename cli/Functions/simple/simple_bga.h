// `init`, `mp` and `rebuild`: start and stop the background activities of a virtual disk.
#pragma once

#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"

extern const char simple_init_help[];
extern const char simple_mp_help[];
extern const char simple_rebuild_help[];

int doSINIT(int argc, char** argv, PCommand_Info pCmdInfo);
int doSMP(int argc, char** argv, PCommand_Info pCmdInfo);
int doSRebuild(int argc, char** argv, PCommand_Info pCmdInfo);

// Whether the activity that runs on a VD is of the kind that the command stops. Tells when another kind runs; says
// nothing when none does, or the state cannot be read.
bool isValidInitBGAStatus(QRX_U16 vdId);
bool isValidMPBGAStatus(QRX_U16 vdId);
bool isValidRebuildBGAStatus(QRX_U16 vdId);
