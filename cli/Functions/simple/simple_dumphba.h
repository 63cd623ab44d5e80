// `dumphba`: the settings that the controller keeps in its flash, as bytes, in a file, or some of them in words.
#pragma once

#include "api/src/interface/wire/hba_info.h"
#include "cli/Public/common.h"

extern const char simple_dumphba_help[];

int doSDUMPHBA(int argc, char** argv, PCommand_Info pCmdInfo);

// The readable lines of `dumphba -a show`.
void _showSpecificData(const _hba_info& info);
