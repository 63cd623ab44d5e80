// `vd`: creates and deletes virtual disks.
#pragma once

#include "cli/Public/common.h"

extern const char simple_vd_help[];

int doSVD(int argc, char** argv, PCommand_Info pCmdInfo);
