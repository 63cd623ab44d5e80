// The interactive shell.
#include "cli/qxsetup/shell.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "api/src/interface/globals.h"
#include "cli/Public/common.h"
#include "cli/Public/frame/report.h"
#include "cli/Public/messages.h"

namespace qrx {

namespace {

constexpr std::size_t kLineSize = 2048;  // bytes of a line with its terminator

struct Free {
    void operator()(char* line) const { std::free(line); }
};
using Line = std::unique_ptr<char, Free>;

// A line to be run, or null at the end of input. What was printed so far is on its way before the prompt comes.
Line nextLine(const Host& host)
{
    (void)std::fflush(stream);
    (void)std::fflush(stdout);
    Line line(host.readLine("> "));
    if (line) {
        host.addHistory(line.get());
    }
    return line;
}

// Runs one line. Returns -1 when it ends the shell.
int runLine(char* command)
{
    std::array<char*, kMaxWords> param{};
    int num = 0;
    const int parsed = parse(&num, param.data(), command);
    if (parsed == 0) {
        print("Invalid quoted string.\n");
        return 0;
    }
    if (parsed < 0) {
        print("Too many words (at most %d).\n", kMaxWords);
        return 0;
    }
    if (num == 0) {
        print("Type 'exit' to exit CLI.\n");
        return 0;
    }
    return runWords(num, param.data());
}

// The exit value of the shell.
int loop(const Host& host)
{
    for (;;) {
        const Line line = nextLine(host);
        if (!line) {  // the end of input does not end the shell
            host.pause();
            continue;
        }
        if (std::strlen(line.get()) >= kLineSize) {
            std::fprintf(stderr, "qrx_cli: the line is too long (at most %zu bytes).\n", kLineSize - 1);
            return 1;
        }
        if (runLine(line.get()) == -1) {
            return 0;
        }
    }
}

}  // namespace

int runShell(const Host& host)
{
    print("CLI Version: %s\n", CLI_VERSION);
    print("Welcome to NVMe Command Line Interface.\n\n");
    if (gNumAdaptersFound == 0) {
        return 0;
    }
    const int result = loop(host);
    host.final();
    closeStream();
    freeControllers();
    return result;
}

}  // namespace qrx
