// `assign`: takes the id of a disk, and does nothing with it.
#pragma once

#include "cli/Public/common.h"

extern const char assign_help[];

int doAssign(int argc, char** argv, PCommand_Info pCmdInfo);
