// `version`: the version of the tool and of the firmware that it supports.
#pragma once

#include "cli/Public/common.h"

extern const char version_help[];

int doVersion(int argc, char** argv, PCommand_Info pCmdInfo);
