// The interactive shell, and the end that both modes share.
#pragma once

#include "cli/qxsetup/startup.h"

namespace qrx {

// Welcomes, and runs commands until one of them returns -1. Returns the exit value.
int runShell(const Host& host);

// cmdDispatcher; a command that runs out of memory says so on standard error and gives 1.
int runWords(int argc, char** argv);
// Frees g_pAdInfos.
void freeControllers();
// Closes the file of -output; a loss is told on standard error.
void closeStream();

}  // namespace qrx
