// `aer`: the Advanced Error Reporting registers of a disk, as the controller's root complex sees them.
#pragma once

#include "cli/Public/common.h"

extern const char simple_aer_help[];
extern const char simple_aer_sh[];

int doSaer(int argc, char** argv, PCommand_Info pCmdInfo);

// Prints the registers of PD `pd_id` of the current controller. Returns the device's status, 1 on a bad signature, or
// the firmware's cmd_status.
int get_pd_aer(QRX_U32 pd_id);
