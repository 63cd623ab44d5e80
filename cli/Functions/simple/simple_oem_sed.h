// `sec_provide`: tells the controller which drives have had help provided.
#pragma once

#include "cli/Public/common.h"

extern const char simple_sed_help[];
extern const char simple_sed_sh[];

int doSED(int argc, char** argv, PCommand_Info pCmdInfo);
