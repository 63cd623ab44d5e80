// The earlier `ns`: attaches and detaches namespaces, and tells the primary controller.
#pragma once

#include "cli/Public/common.h"

extern const char ns_help[];
extern const char ns_sh[];

int doNS(int argc, char** argv, PCommand_Info pCmdInfo);

// How many VDs, or PDs, of the current controller answer.
int getVDCount();
int getPDCount();
