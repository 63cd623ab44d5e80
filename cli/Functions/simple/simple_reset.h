// `reset`: resets a drive behind the controller, or switches its power or its PERST# line.
#pragma once

#include "cli/Public/common.h"

extern const char simple_reset_help[];
extern const char simple_reset_short_help[];

int doSReset(int argc, char** argv, PCommand_Info pCmdInfo);
