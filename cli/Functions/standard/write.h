// `write`: writes a file's data to a namespace.
#pragma once

#include "cli/Public/common.h"

extern const char write_sh[];
extern const char write_help[];

int doWrite(int argc, char** argv, PCommand_Info pCmdInfo);
