// Earlier commands that delete a virtual disk. `delete` asks first, spares one that is busy or carries the running
// system, and detaches its namespaces. `sdelete` is one vendor command, and nothing guards it.
#pragma once

#include "cli/Public/common.h"

extern const char delete_help[];
extern const char simple_delete_help[];

int doDelete(int argc, char** argv, PCommand_Info pCmdInfo);
int doSDelete(int argc, char** argv, PCommand_Info pCmdInfo);
