// `locate` and the earlier `reset`: front ends that check what they are asked for, and send nothing.
#pragma once

#include "cli/Public/common.h"

extern const char locate_help[];
extern const char locate_sh[];
extern const char reset_help[];
extern const char reset_sh[];

int doLocate(int argc, char** argv, PCommand_Info pCmdInfo);
int doReset(int argc, char** argv, PCommand_Info pCmdInfo);
