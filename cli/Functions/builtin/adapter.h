// `adapter`: shows or changes the controller that commands address.
#pragma once

#include "cli/Public/common.h"

extern const char adapter_help[];

int doAdapter(int argc, char** argv, PCommand_Info pCmdInfo);
