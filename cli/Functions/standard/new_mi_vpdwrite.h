// `new_vpdwrite`: bytes of a file go into the controller's VPD, with the head of the request in the command words.
#pragma once

#include "cli/Public/common.h"

extern const char new_vpdwrite_sh[];
extern const char new_vpdwrite_help[];

int doNewVPDWrite(int argc, char** argv, PCommand_Info pCmdInfo);
