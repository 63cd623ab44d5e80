// `new_mi_send`: a Management Interface command with its head in the command words, made of options.
#pragma once

#include "cli/Public/common.h"

extern const char new_mi_send_sh[];
extern const char new_mi_send_help[];

int doNewMISend(int argc, char** argv, PCommand_Info pCmdInfo);
