// `vpdwrite`: bytes of a file go into the controller's Vital Product Data.
#pragma once

#include "cli/Public/common.h"

extern const char vpdwrite_help[];

int doVPDWrite(int argc, char** argv, PCommand_Info pCmdInfo);

namespace qrx::mi {

// In what the commands that write VPD differ.
struct WriteStyle {
    bool helpsWhenBare = true;   // the bare command word shows the help
    bool showsFile = true;       // what was read from the file is shown first
    bool shortestBytes = false;  // bytes below 16 have one digit
    bool headInWords = false;    // only data is sent, and nothing is said of the range
};

// Such a command, whole.
int writeVpd(int argc, char** argv, PCommand_Info pCmdInfo, const WriteStyle& style);

}  // namespace qrx::mi
