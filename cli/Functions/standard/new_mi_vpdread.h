// `new_vpdread`: the controller's Vital Product Data, with the head of the request in the command words.
#pragma once

#include "cli/Public/common.h"

extern const char new_vpdread_sh[];
extern const char new_vpdread_help[];

int doNewVPDRead(int argc, char** argv, PCommand_Info pCmdInfo);
