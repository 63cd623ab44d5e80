// `mi_admin_receive`: the answer to the admin command that was sent last in a message.
#pragma once

#include "cli/Public/common.h"

extern const char mi_admin_receive_sh[];
extern const char mi_admin_receive_help[];

int doMIAdminReceive(int argc, char** argv, PCommand_Info pCmdInfo);
