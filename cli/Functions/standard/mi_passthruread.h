// `mi_passthruread`: Identify to a drive behind the controller, in a message of the NVMe Management Interface.
#pragma once

#include "cli/Public/common.h"

extern const char mi_passthruread_help[];

int doMIPassthruRead(int argc, char** argv, PCommand_Info pCmdInfo);
