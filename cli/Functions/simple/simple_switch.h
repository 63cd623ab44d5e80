// `qxf`, `protect` and `sriov`: switch a feature of the controller on or off, from its next boot on.
#pragma once

#include "cli/Public/common.h"

extern const char simple_qxf_help[];
extern const char simple_protect_help[];
extern const char simple_sriov_help[];

int doSQXF(int argc, char** argv, PCommand_Info pCmdInfo);
int doSProtect(int argc, char** argv, PCommand_Info pCmdInfo);
int doSSRIOV(int argc, char** argv, PCommand_Info pCmdInfo);
