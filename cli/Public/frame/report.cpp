// What every handler says in the same words.
#include "cli/Public/frame/report.h"

#include <cstdarg>
#include <cstdio>

#include "api/src/interface/globals.h"
#include "cli/Public/messages.h"

namespace qrx {

void print(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    (void)std::vfprintf(stream, format, arguments);
    va_end(arguments);
}

int showHelp(PCommand_Info row, int result)
{
    std::fputs("Description", stream);
    std::fputs(row->cmdShortHelp, stream);
    std::fputs(row->cmdHelp, stream);
    return result;
}

int refuse(int result, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    (void)std::vfprintf(stream, format, arguments);
    va_end(arguments);
    return result;
}

bool complain(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    (void)std::vfprintf(stream, format, arguments);
    va_end(arguments);
    return false;
}

int duplicateOption(int result)
{
    std::fputs(ErrorDuplicate, stream);
    return result;
}

int optionRequired(PCommand_Info row, char letter, int result)
{
    std::fprintf(stream, OptionRequired, row->cmd, letter);
    return result;
}

int optionValNotRequired(PCommand_Info row, char letter, int result)
{
    std::fprintf(stream, OptionValNotRequired, row->cmd, letter);
    return result;
}

int report(int status, const char* failure, const char* success)
{
    std::fputs(status != 0 ? failure : success, stream);
    return status;
}

int reportCode(int status, const char* what)
{
    status == 0 ? print("%s success.\n", what)
                : print("%s failed.(error code: 0x%02x)\n", what, static_cast<unsigned>(status));
    return status;
}

}  // namespace qrx
