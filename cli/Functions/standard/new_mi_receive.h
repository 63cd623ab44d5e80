// `new_mi_receive`: the data of a Management Interface command whose head is made of options.
#pragma once

#include "cli/Public/common.h"

extern const char new_mi_receive_sh[];
extern const char new_mi_receive_help[];

int doNewMIReceive(int argc, char** argv, PCommand_Info pCmdInfo);
