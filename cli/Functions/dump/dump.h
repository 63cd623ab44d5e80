// `dump`: the debug console in its older form, over the pair command road.
#pragma once

#include "cli/Public/common.h"

namespace qrx {
class OutputFile;
}

extern const char dump_help[];

int doDump(int argc, char** argv, PCommand_Info pCmdInfo);

// The three actions, on the current controller. Return 0, or after a complaint what the controller said, or 1.
int dumpConsole(PCommand_Info row, qrx::OutputFile& output);
int getDumpCfg();
int setDumpCfg(bool on);
