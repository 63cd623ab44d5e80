// `list_pd_allocated_ns`: the namespaces that are allocated on a drive behind the controller.
#pragma once

#include "cli/Public/common.h"

extern const char list_pd_allocated_ns_sh[];
extern const char list_pd_allocated_ns_help[];

int dolist_pd_allocated_ns(int argc, char** argv, PCommand_Info pCmdInfo);
