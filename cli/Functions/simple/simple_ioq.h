// `ioq`: how many I/O queues each host has.
#pragma once

#include "api/src/interface/wire/io_queues.h"
#include "cli/Public/common.h"

extern const char simple_ioq_help[];

int doIOQ(int argc, char** argv, PCommand_Info pCmdInfo);

// Shows a line for each host, and their number. Of more than an answer has room for only those are shown, and that
// it is so.
void ioqdata_printf(const IOQNData& data);
