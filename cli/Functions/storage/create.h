// Earlier commands that make virtual disks. `create` looks at what it is asked for and at the disks before it sends
// anything, asks for the sizes of the namespaces, and attaches them. `screate` is one vendor command, whose judge is
// the firmware.
#pragma once

#include "cli/Public/common.h"

extern const char create_help[];
extern const char simple_create_help[];

int doCreate(int argc, char** argv, PCommand_Info pCmdInfo);
int doSCreate(int argc, char** argv, PCommand_Info pCmdInfo);
