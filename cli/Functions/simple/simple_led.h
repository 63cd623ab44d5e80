// `led`: drives the LED of an end point or a root complex.
#pragma once

#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"

extern const char simple_led_help[];

int doSLed(int argc, char** argv, PCommand_Info pCmdInfo);

// The LED of a drive's bay on a board where the middle two are crossed; 255 for anything but 0 to 3.
QRX_U8 getLEDTargetID(int id);
