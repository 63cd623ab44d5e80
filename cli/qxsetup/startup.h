// All that main does, in functions that a test can call: the scan of the process arguments, start-up, and the two
// modes.
#pragma once

#include "api/src/interface/wire/types.h"

// 1 when the scan was refused the right to open a device; set only when no controller was found.
extern QRX_U8 gSysDenied;

namespace qrx {

// What the process stands on.
struct Host {
    void (*init)();                         // QRX_Init
    void (*final)();                        // QRX_Final
    char* (*readLine)(const char* prompt);  // readline: a line to be freed, or null at the end of input
    int (*addHistory)(const char* line);    // add_history
    void (*pause)();                        // a moment's rest before an ended input is asked again
};

// What the process arguments say before any command is looked at.
struct Arguments {
    int argc = 0;  // behind the adapter id, if there was one
    char** argv = nullptr;
    bool outPut = false;  // -output was there; `stream` is its file
    bool failed = false;  // its file could not be opened; the reason was said on standard error
    int adapterId = 0;    // as typed
    QRX_U16 vid = 0;      // of the last --vid=0x word
};

// Sets stream, g_oneBaseMode, gCurrentAdapter, gSpecificAdapterFlag and the vendor id of discovery. The word -output
// becomes the silent option of every handler.
Arguments scanArguments(int argc, char** argv);

// True for the interactive shell, false for one command.
bool wantsShell(const Arguments& arguments);

// The whole of main. Returns the exit value.
int run(int argc, char** argv, const Host& host);

}  // namespace qrx
