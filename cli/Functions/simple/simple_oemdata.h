// `oemdata` and `getoemdata`.
#pragma once

#include "cli/Public/common.h"

extern const char simple_oemdata_help[];
extern const char simple_getoemdata_help[];

// Rewrites the record of customer identity; what is not asked for stays as it is.
int doSOEMdata(int argc, char** argv, PCommand_Info pCmdInfo);
// Shows, under the debug switch, the read that it would send. It sends nothing.
int doSGetOEMdata(int argc, char** argv, PCommand_Info pCmdInfo);
