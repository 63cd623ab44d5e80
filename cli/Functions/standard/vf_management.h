// `vf-manage`: the resources of the controller's host functions.
#pragma once

#include "cli/Public/common.h"

extern const char vf_management_sh[];
extern const char vf_management_help[];

int doVFManage(int argc, char** argv, PCommand_Info pCmdInfo);
