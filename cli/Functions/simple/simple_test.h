// `test`: the info queries, again and again.
#pragma once

#include "cli/Public/common.h"

extern const char simple_test_help[];

int doSTest(int argc, char** argv, PCommand_Info pCmdInfo);
