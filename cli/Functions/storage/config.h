// The earlier `get` and `set`: settings of controllers, and the names of virtual disks.
#pragma once

#include "api/src/interface/wire/types.h"
#include "api/src/interface/wire/vd.h"
#include "cli/Public/common.h"

extern const char get_help[];
extern const char get_sh[];
extern const char set_help[];
extern const char set_sh[];

int doGet(int argc, char** argv, PCommand_Info pCmdInfo);
int doSet(int argc, char** argv, PCommand_Info pCmdInfo);

// Reads and prints the settings of one VD. Returns 0, or the status of the read, after which nothing is printed.
QRX_U32 getOneVDConfig(QRX_U16 vdId);
void ldGet_printf(const NVME_VD_Config& config);
