// `--debug` (hidden): debug lines on or off for the rest of the run.
#pragma once

#include "cli/Public/common.h"

inline constexpr char debug_help[] = "";
inline constexpr char debug_sh[] = "";

int doDebug(int argc, char** argv, PCommand_Info pCmdInfo);
