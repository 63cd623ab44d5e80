// `log`: the debug console that the controller's firmware writes to its SPI flash. `log_vdm`: the same for its log of
// vendor-defined messages.
#pragma once

#include "cli/Public/common.h"

extern const char simple_log_help[];
extern const char simple_log_vdm_help[];

int doSLog(int argc, char** argv, PCommand_Info pCmdInfo);
int doSLogVDM(int argc, char** argv, PCommand_Info pCmdInfo);

// 0 when the log of the current controller is off, or the answer is none; else that it is on, or after a message the
// status of a command that failed.
int getStatus();
