// `iomon`: what the controller counts of the I/O of its namespaces, and how busy they were in the last ten seconds.
#pragma once

#include "cli/Public/common.h"

extern const char simple_iomon_help[];
extern const char simple_iomon_sh[];

int doSIOmon(int argc, char** argv, PCommand_Info pCmdInfo);
