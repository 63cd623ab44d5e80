#include "cli/Public/frame/question.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "api/src/interface/globals.h"
#include "cli/Public/frame/report.h"

namespace qrx {

namespace {

// One byte of standard input; EOF at its end.
int readKey()
{
    unsigned char key = 0;
    ssize_t got = 0;
    do {
        got = ::read(STDIN_FILENO, &key, 1);
    } while (got < 0 && errno == EINTR);
    return got == 1 ? key : EOF;
}

}  // namespace

std::optional<std::string> readLine(std::size_t most)
{
    (void)std::fflush(stream);
    int key = readKey();
    if (key == EOF) {
        return std::nullopt;
    }
    std::string line;
    for (; key != '\n' && key != EOF; key = readKey()) {
        if (line.size() <= most) {
            line.push_back(static_cast<char>(key));
        }
    }
    return line;
}

std::optional<bool> readYesOrNo()
{
    while (const std::optional<std::string> line = readLine(1)) {
        switch (line->empty() ? '\0' : line->front()) {
        case 'y':
        case 'Y':
            return true;
        case 'n':
        case 'N':
            return false;
        default:
            print("Please input y or n.\n");
        }
    }
    return std::nullopt;
}

}  // namespace qrx
