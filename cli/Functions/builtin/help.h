// `help` and `?`: the list of commands, or the help pages of those named.
#pragma once

#include "cli/Public/common.h"

extern const char help_help[];

int doHelp(int argc, char** argv, PCommand_Info pCmdInfo);
