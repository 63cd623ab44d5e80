// The earlier `init`, `mp` and `rebuild`: they read the state of the virtual disk before they act.
#pragma once

#include "cli/Public/common.h"

extern const char init_help[];
extern const char init_sh[];
extern const char mp_help[];
extern const char mp_sh[];
extern const char rebuild_help[];
extern const char rebuild_sh[];

int doInit(int argc, char** argv, PCommand_Info pCmdInfo);
int doMP(int argc, char** argv, PCommand_Info pCmdInfo);
int doRebuild(int argc, char** argv, PCommand_Info pCmdInfo);
