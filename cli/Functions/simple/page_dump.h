// A page that the controller keeps, as bytes, in a file, or in words: what `dumphba` and `linfo` have in common.
#pragma once

#include <span>

#include "api/src/interface/wire/buffer.h"
#include "cli/Public/common.h"
#include "cli/Public/frame/admin_command.h"

namespace qrx {

struct PageDump {
    AdminCommand command;                                         // reads it
    void (*show)(std::span<const QRX_U8, wire::kPageSize> page);  // in words, for `-a show`
    int missingFile;                                              // what ends a command whose file cannot be opened
};

// The command, whole: its options `--outputfile` and `-a show`, the page, and where it goes.
int dumpPage(int argc, char** argv, PCommand_Info row, const PageDump& dump);

}  // namespace qrx
