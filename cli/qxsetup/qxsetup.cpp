// The process: main on the real access layer and the terminal.
#include <editline/readline.h>
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <clocale>
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

// Fills the places of standard streams that are closed, so that no device and no file of ours is opened there, and
// takes what is meant for the screen. They stay as closed as they were: their use is an error. False when that failed.
bool fillClosedStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        const int unusable = stream == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        if (fcntl(stream, F_GETFD) == -1 && open("/dev/null", unusable) != stream) {
            return false;
        }
    }
    return true;
}

}  // namespace

int main(int argc, char** argv)
{
    if (!fillClosedStreams()) {
        return 1;
    }
    // The line editor drops what its locale cannot read. A line in UTF-8 comes through whole, whatever the environment
    // says; nothing else in the program asks the locale.
    (void)std::setlocale(LC_CTYPE, "C.UTF-8");
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
