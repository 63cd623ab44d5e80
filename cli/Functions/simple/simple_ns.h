// `ns`: divides disks into namespaces, shares, attaches, detaches and lists them.
#pragma once

#include "cli/Public/common.h"

extern const char simple_ns_help[];

int doSNS(int argc, char** argv, PCommand_Info pCmdInfo);
