// `vpd`: switches the store of the controller's VPD between EEPROM and SPI flash.
#pragma once

#include "cli/Public/common.h"

extern const char simple_vpd_help[];

int doSVPD(int argc, char** argv, PCommand_Info pCmdInfo);
