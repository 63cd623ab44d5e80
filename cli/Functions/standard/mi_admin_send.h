// `mi_admin_send`: an admin command in a message of the management interface, made of options.
#pragma once

#include "cli/Public/common.h"

extern const char mi_admin_send_sh[];
extern const char mi_admin_send_help[];

int doMIAdminSend(int argc, char** argv, PCommand_Info pCmdInfo);
