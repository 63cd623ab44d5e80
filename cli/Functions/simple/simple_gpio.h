// `gpio`: writes the GPIO settings that the controller keeps in its HBA info.
#pragma once

#include "cli/Public/common.h"

extern const char simple_gpio_help[];

int doSGPIO(int argc, char** argv, PCommand_Info pCmdInfo);
