// `passthru_sata`: an ATA command to a SATA drive behind the controller.
#pragma once

#include "cli/Public/common.h"

extern const char passthru_sata_sh[];
extern const char passthru_sata_help[];

int doPassthru_sata(int argc, char** argv, PCommand_Info pCmdInfo);
