// From a line to a handler: the splitter of shell lines, the command tables and the dispatcher; and the small
// converters that handlers share.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "api/src/interface/wire/types.h"

struct _cmd_struct;
using Command_Info = _cmd_struct;
using PCommand_Info = _cmd_struct*;

// argv[0] is the command word. The result is the exit value of the process in one-command mode; -1 ends the shell.
using CommandHandler = int (*)(int argc, char** argv, PCommand_Info pCmdInfo);

// One row of a command table.
struct _cmd_struct {
    const char* cmd;  // command word, lower case
    int cmdLen;       // length of cmd with its terminator
    CommandHandler cmdHandler;
    const char* cmdHelp;       // long help; begins with a line break
    const char* cmdShortHelp;  // brief help; begins with ":"
    int is_support;            // 1
};

// The general table is listed by `help` and reached through pCmdTable; the hidden one works, but is never shown.
extern Command_Info* pCmdTable;
extern QRX_U16 cmdTableSize;
extern Command_Info generalCmdTableV1[];
extern Command_Info hiddenCmdTableV1[];
unsigned generalCmdTableV1Size();
unsigned hiddenCmdTableV1Size();

// Words that one shell line may hold.
inline constexpr int kMaxWords = 64;

// Splits `command` in place. Stores at most kMaxWords word pointers in `argv` and their count in *num. Double quotes
// keep blanks together, and stay in the word. Returns 1, 0 on an unclosed quote, or -1 on more than kMaxWords words.
int parse(int* num, char** argv, char* command);

// Copies `source` without enclosing double quotes. `maxLen` is strlen(source); `desc` holds maxLen + 1 zeroed bytes.
// Returns 0, or 1 with a complaint on standard output when `source` begins with a single quote.
int noQuoteStrncpy(char* desc, char* source, int maxLen);

// Finds argv[0], which is lower-cased in place, in the two tables and calls its handler. Returns the handler's
// result, -1 for `exit` and `quit`, 1 for an ambiguous or unknown word, 0 for a word that holds "--vid=0x".
int cmdDispatcher(int argc, char** argv);

// The hook that would hide commands; 1 for every input.
int cmdSupportCheck(const char* cmd, int length);

// Writes a hex dump with decimal row labels to `stream`.
void dumpContent(QRX_U8* data, int len);

// True when every character is a digit; also for an empty text.
bool isNumber(const char* digitStr);

// Lowers every upper-case letter in place and returns `a`.
char* strlwr(char* a);

// The RAID mode code of a word of the command line, compared exactly; 255 for any other word.
QRX_U8 chooseRaidMode(const char* mode);
// The text of a RAID mode code; "unknown" for any other.
const char* RaidModeStr(QRX_U8 RaidMode);

// 0 for "start", 3 for "stop", 255 for any other word.
QRX_U8 chooseBGAAction(const char* str);

namespace qrx {

// A row of a command table. `cmd` is lower case; all texts must outlive the table.
constexpr Command_Info commandRow(const char* cmd, CommandHandler handler, const char* help, const char* shortHelp)
{
    return {cmd, static_cast<int>(std::char_traits<char>::length(cmd)) + 1, handler, help, shortHelp, 1};
}

// cmdDispatcher over tables given by the caller.
int dispatch(int argc, char** argv, std::span<Command_Info> general, std::span<Command_Info> hidden);

// noQuoteStrncpy into a buffer that may be too short for `word`: copies what fits. `desc` must be zeroed.
int noQuoteCopy(std::span<char> desc, const char* word);

}  // namespace qrx
