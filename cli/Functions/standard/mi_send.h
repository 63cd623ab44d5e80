// `mi_send`: a Management Interface command to the controller, made of options.
#pragma once

#include "cli/Public/common.h"

extern const char mi_send_sh[];
extern const char mi_send_help[];

int doMISend(int argc, char** argv, PCommand_Info pCmdInfo);
