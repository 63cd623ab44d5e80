// `compare`: compares a namespace's data with a file's.
#pragma once

#include "cli/Public/common.h"

extern const char compare_sh[];
extern const char compare_help[];

int doCompare(int argc, char** argv, PCommand_Info pCmdInfo);
