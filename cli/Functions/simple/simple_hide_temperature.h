// `hidetemp`: sets whether the controller hides temperatures from its hosts.
#pragma once

#include "cli/Public/common.h"

extern const char simple_hide_temperature_help[];
extern const char simple_hide_temperature_sh[];

int doSHideTemperature(int argc, char** argv, PCommand_Info pCmdInfo);
