// `eeprom`: switches the EEPROM of the controller on or off.
#pragma once

#include "cli/Public/common.h"

extern const char simple_eeprom_help[];
extern const char simple_eeprom_sh[];

int doSEEPROM(int argc, char** argv, PCommand_Info pCmdInfo);
