// `writezero`: makes zeros of blocks of a namespace.
#pragma once

#include "cli/Public/common.h"

extern const char writezero_sh[];
extern const char writezero_help[];

int doWritezero(int argc, char** argv, PCommand_Info pCmdInfo);
