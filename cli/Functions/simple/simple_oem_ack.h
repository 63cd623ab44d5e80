// `ack`: acknowledges a reset of the controller, or slot attention and a firmware update of a drive.
#pragma once

#include "cli/Public/common.h"

extern const char simple_ack_help[];
extern const char simple_ack_sh[];

int doAck(int argc, char** argv, PCommand_Info pCmdInfo);
