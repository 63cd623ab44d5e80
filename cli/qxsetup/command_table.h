// The two command tables, and where a new command is added: its row here, in the order of the `help` page.
#pragma once

#include "cli/Public/common.h"

// Names that a build could hide through cmdSupportCheck; nothing reads them.
extern const char HIDDEN_CMDS[23][20];
