// `vpd` in its earlier form: the controller's Vital Product Data through a log page and a vendor command.
#pragma once

#include "cli/Public/common.h"

extern const char old_vpd_sh[];
extern const char old_vpd_help[];

int doVPD(int argc, char** argv, PCommand_Info pCmdInfo);
