// `mi_passthruwrite`: writes VPD as `vpdwrite` does, and shows less of it.
#pragma once

#include "cli/Public/common.h"

extern const char mi_passthruwrite_help[];

int doMIPassthruWrite(int argc, char** argv, PCommand_Info pCmdInfo);
