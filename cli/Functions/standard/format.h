// `format`: Format NVM of a namespace.
#pragma once

#include "cli/Public/common.h"

extern const char format_sh[];
extern const char format_help[];

int doFormat(int argc, char** argv, PCommand_Info pCmdInfo);
