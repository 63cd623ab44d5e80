// The commands that read and write a namespace: one handler, and a row for each of them.
//
//     int doRead(int argc, char** argv, PCommand_Info pCmdInfo) { return qrx::io::carryOut(argc, argv, pCmdInfo,
//     kRead); }
//
// They go to controllers without RAID alone; a RAID controller's drives are not the host's to write to.
#pragma once

#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"

namespace qrx::io {

// Which of the command's fields and options there are: the table in ns_io.cpp has a row for each.
enum Kind : QRX_U8 { kRead = 1, kWrite = 2, kCompare = 4, kWriteZero = 8, kWriteUncor = 16 };

struct IoCommand {
    Kind kind;
    QRX_U8 opcode;         // of the NVM command set
    const char* name;      // at the beginning of the line about the outcome
    bool tellsResult;      // a failure is told by its "result", not by its "error"
    const char* fileName;  // long name of -f; null: no data
    bool expects;          // its tags are what the data is expected to have, and are named so
    bool oneDash;          // complaints name the long options with one dash
};

// Such a command, whole.
int carryOut(int argc, char** argv, PCommand_Info row, const IoCommand& command);

}  // namespace qrx::io
