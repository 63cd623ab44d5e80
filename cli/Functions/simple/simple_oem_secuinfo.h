// `secuinfo`: reads the security info block, and sets the secure mode, whether help is complete, and to which drives it
// was provided.
#pragma once

#include "cli/Public/common.h"

extern const char simple_secuinfo_help[];
extern const char simple_secuinfo_sh[];

int doSecuInfo(int argc, char** argv, PCommand_Info pCmdInfo);
