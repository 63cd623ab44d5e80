// `gen`: writes the data block of a namespace command to a file, for `passthru` to send.
#pragma once

#include "cli/Public/common.h"

extern const char gen_help[];

int doGen(int argc, char** argv, PCommand_Info pCmdInfo);
