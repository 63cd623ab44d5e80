// `vpdread`: the controller's Vital Product Data, shown or saved.
#pragma once

#include "cli/Public/common.h"

extern const char vpdread_help[];

int doVPDRead(int argc, char** argv, PCommand_Info pCmdInfo);

namespace qrx::mi {

// Such a command, whole. `headInWords`: the request's head goes along with the Receive, and no Send goes before it.
int readVpd(int argc, char** argv, PCommand_Info row, bool headInWords);

}  // namespace qrx::mi
