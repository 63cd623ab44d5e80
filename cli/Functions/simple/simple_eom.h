// `eom`: draws the eye of a PCIe interface.
#pragma once

#include "cli/Public/common.h"

extern const char simple_eom_help[];

int doSeom(int argc, char** argv, PCommand_Info pCmdInfo);
