// What every handler says in the same words. All of it goes to `stream`; the result is what the handler returns.
#pragma once

#include "cli/Public/common.h"

namespace qrx {

void print(const char* format, ...) __attribute__((format(printf, 1, 2)));

// The help block: "Description", the brief text, the long text.
int showHelp(PCommand_Info row, int result);

// A complaint about an argument: prints, and gives `result` back. The word goes through OptionScan::word().
int refuse(int result, const char* format, ...) __attribute__((format(printf, 2, 3)));
// The same, as a condition: false.
bool complain(const char* format, ...) __attribute__((format(printf, 1, 2)));

int duplicateOption(int result = 1);
int optionRequired(PCommand_Info row, char letter, int result = 0);
int optionValNotRequired(PCommand_Info row, char letter, int result = 0);

// The line of a command that was sent: `failure` unless `status` is 0.
int report(int status, const char* failure, const char* success);
// The same as "<what> success.", and "<what> failed." with the status behind it.
int reportCode(int status, const char* what);

}  // namespace qrx
