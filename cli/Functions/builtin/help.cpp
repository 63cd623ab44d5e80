// `help` and `?`.
#include "cli/Functions/builtin/help.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "api/src/interface/globals.h"
#include "cli/Public/frame/lines.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/report.h"

const char help_help[] =
    "\n"
    "help [<command list>]\n"
    "\n"
    "Options:\n"
    "    <command list>display specified commands' help page \n"
    "    If no option specified, brief description on each command is displayed.\n"
    "\n";

namespace {

constexpr char short_help[] =
    "\n"
    "Legend: \n"
    "  [options] - the options within [] are optional. \n"
    "  <x|y|z>   - choose one of the x, y or z. \n"
    "  [<x|y|z>] - choose none or one of the x, y or z. \n"
    "\n"
    "Abbreviation: \n"
    "    VD  - Virtual Disk\n"
    "    PD  - Physical Disk\n"
    "    NS  - Namespace\n"
    "    BGA - BackGround Activity\n"
    "\n"
    "Type '-output [filename]' to output to a file. \n"
    "Type 'help' to display this page. \n"
    "Type 'help command' to display the help page of 'command'. \n"
    "Type 'command -h' to display help for 'command'. \n"
    "\n"
    "Command name is not case sensitive and may be abbreviated if the  \n"
    "abbreviation is unique. Most commands support both short (-) and   \n"
    "long (--) options.Long option names may be abbreviated if the abbreviation  \n"
    "is unique. A long option may take a parameter of the form '--arg=param'  \n"
    "or '--arg param'. Option name is case sensitive, option parameter is not.  \n"
    "\n"
    "COMMAND   BRIEF DESCRIPTION \n"
    "-----------------------------------------------------------------\n";

constexpr char non_shell_help[] =
    "\n"
    "Non-shell mode \n"
    "  qrx_cli [<Adapter ID>] <COMMAND> <OPTIONS>\n"
    "  Default Adapter ID is 0.\n"
    "E.g.\n"
    "  qrx_cli info -o pd\n"
    "  Show all PD information of adapter ID 0.\n"
    "\n"
    "  qrx_cli 1 info -o pd\n"
    "  Show all PD information of adapter ID 1.\n";

constexpr option kLong[] = {qrx::kOutputRow, qrx::kEndRow};
constexpr int kNameWidth = 18;

// Prints one of our own texts as a format, so that "%%" in it is a percent sign.
void printAsFormat(const char* format, ...)
{
    va_list none;
    va_start(none, format);
    (void)std::vfprintf(stream, format, none);
    va_end(none);
}

int listCommands()
{
    std::fputs(short_help, stream);
    const qrx::Lines lines(kNameWidth);
    for (const Command_Info& row : std::span(pCmdTable, cmdTableSize)) {
        if (cmdSupportCheck(row.cmd, row.cmdLen) == 1) {
            lines.text(row.cmd, row.cmdShortHelp);
        }
    }
    std::fputs(non_shell_help, stream);
    std::fputs("\n", stream);
    return 0;
}

bool showPage(const char* word)
{
    for (const Command_Info& row : std::span(pCmdTable, cmdTableSize)) {
        if (std::strcmp(row.cmd, word) == 0 && cmdSupportCheck(row.cmd, row.cmdLen) != 0) {
            std::fputs("Description", stream);
            printAsFormat(row.cmdShortHelp);
            printAsFormat(row.cmdHelp);
            return true;
        }
    }
    return false;
}

}  // namespace

int doHelp(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, "\x01:", kLong);
    if (scan.next() != qrx::OptionScan::kEnd) {
        return qrx::showHelp(pCmdInfo, 0);
    }
    if (optind >= argc) {
        return listCommands();
    }
    bool cmdFound = false;  // once a page was shown, unknown words pass in silence
    for (int i = optind; i < argc; ++i) {
        if (showPage(argv[i])) {
            cmdFound = true;
        } else if (!cmdFound) {
            qrx::print("No help available for '%s'\n", argv[i]);
        }
    }
    return 0;
}
