// `mi_receive`: the answer to the Management Interface command that was sent last.
#pragma once

#include "cli/Public/common.h"

extern const char mi_receive_sh[];
extern const char mi_receive_help[];

int doMIReceive(int argc, char** argv, PCommand_Info pCmdInfo);
