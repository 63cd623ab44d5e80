// `err_status`, `crash`, `delay`, `offline`, `chkalive` and `sf`: one command each to the controller's firmware. And
// `sbsms`, which does nothing.
#pragma once

#include "cli/Public/common.h"

extern const char simple_err_status_help[];
extern const char simple_crash_help[];
extern const char simple_delay_help[];
extern const char simple_offline_help[];
extern const char simple_chkalive_help[];
extern const char simple_sf_help[];
extern const char simple_sbsms_help[];

// Reads the controller's error status, or clears it.
int doSErrStatus(int argc, char** argv, PCommand_Info pCmdInfo);
// Makes the firmware crash on purpose.
int doSCrash(int argc, char** argv, PCommand_Info pCmdInfo);
// Makes it stall for some seconds.
int doSDelay(int argc, char** argv, PCommand_Info pCmdInfo);
// Takes a disk offline.
int doSoffline(int argc, char** argv, PCommand_Info pCmdInfo);
// Asks whether the controller answers.
int doChkAlive(int argc, char** argv, PCommand_Info pCmdInfo);
// Switches between a single port and two.
int doSSwitchFeature(int argc, char** argv, PCommand_Info pCmdInfo);
// Returns 0.
int doSBSMS(int argc, char** argv, PCommand_Info pCmdInfo);
