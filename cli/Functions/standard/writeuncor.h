// `writeuncor`: makes blocks of a namespace unreadable.
#pragma once

#include "cli/Public/common.h"

extern const char writeuncor_sh[];
extern const char writeuncor_help[];

int doWriteuncor(int argc, char** argv, PCommand_Info pCmdInfo);
