// The process: main on the real access layer and the terminal.
#include <editline/readline.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <thread>

#include "api/src/interface/api.h"
#include "cli/qxsetup/startup.h"

namespace {

void pauseShortly()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
}

}  // namespace

int main(int argc, char** argv)
{
    // Standard output, standard error and the file of -output may be one and the same place: lines come out in the
    // order in which they are printed.
    (void)std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    // A file that may not grow any more is an error of the write, not the end of the process.
    (void)std::signal(SIGXFSZ, SIG_IGN);
    try {
        return qrx::run(argc, argv, {QRX_Init, QRX_Final, readline, add_history, pauseShortly});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "qrx_cli: %s\n", error.what());
        return 1;
    }
}
