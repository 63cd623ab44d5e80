// `vpdread`: the controller's Vital Product Data, shown or saved.
#pragma once

#include "cli/Public/common.h"

extern const char vpdread_help[];

int doVPDRead(int argc, char** argv, PCommand_Info pCmdInfo);
