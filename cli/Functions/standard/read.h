// `read`: reads a namespace, to show the data or save it.
#pragma once

#include "cli/Public/common.h"

extern const char read_sh[];
extern const char read_help[];

int doRead(int argc, char** argv, PCommand_Info pCmdInfo);
