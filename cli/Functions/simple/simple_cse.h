// `cse`: opens and closes opcodes for hosts, and lists those that the controller supports.
#pragma once

#include "cli/Public/common.h"

extern const char simple_cse_help[];
extern const char simple_cse_sh[];

int doScse(int argc, char** argv, PCommand_Info pCmdInfo);

// Prints the admin and the I/O opcodes of the current controller. Returns the device's status.
int ShowSupportOpcode();
