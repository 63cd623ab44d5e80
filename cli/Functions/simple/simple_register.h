// `reg`: reads or writes one 32-bit register of the controller's PCIe interfaces.
#pragma once

#include "cli/Public/common.h"

extern const char simple_reg_help[];

int doSReg(int argc, char** argv, PCommand_Info pCmdInfo);
