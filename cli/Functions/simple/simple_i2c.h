// `i2c`: tests whether the device on an I2C channel answers.
#pragma once

#include "cli/Public/common.h"

extern const char simple_i2c_help[];

// Returns 0 whatever the test found.
int doSi2c(int argc, char** argv, PCommand_Info pCmdInfo);
