// Fuzzes the whole program, but for the discovery: start-up, the shell or one command, on a controller that answers
// whatever it likes.
//
// The input: a byte of choices, lines up to a zero byte, then the controller's speech.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "api/src/interface/globals.h"
#include "cli/qxsetup/startup.h"
#include "tests/fuzz/controller.h"

namespace {

constexpr std::uint8_t kOneCommand = 1;
constexpr std::uint8_t kDebug = 2;

std::istringstream lines;

char* readLine(const char* /*prompt*/)
{
    std::string line;
    if (!std::getline(lines, line)) {
        line = "exit";
    }
    return ::strdup(line.c_str());
}

// The first line as the words of a process.
std::vector<std::string> arguments()
{
    std::vector<std::string> words = {"qrx_cli"};
    std::string line;
    std::getline(lines, line);
    std::istringstream text(line);
    for (std::string word; text >> word;) {
        words.push_back(word);
    }
    return words;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace qrx::fuzz;
    if (size < 2) {
        return 0;
    }
    const std::uint8_t choice = data[0];
    const std::uint8_t* const end = std::find(data + 1, data + size, std::uint8_t{0});
    lines =
        std::istringstream(std::string(reinterpret_cast<const char*>(data) + 1, reinterpret_cast<const char*>(end)));
    const std::span<const std::uint8_t> rest(end, data + size);
    Speech speech(rest.empty() ? rest : rest.subspan(1));

    const World world(spoken(speech), rest);
    dbg_enable = (choice & kDebug) != 0;
    std::vector<std::string> words = (choice & kOneCommand) != 0 ? arguments() : std::vector<std::string>{"qrx_cli"};
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    const qrx::Host host{plugIn, [] {}, readLine, [](const char*) { return 0; }, [] {}};
    (void)qrx::run(static_cast<int>(words.size()), argv.data(), host);
    if (stream != stdout) {  // left open where the controller that was asked for does not exist
        std::fclose(stream);
        stream = stdout;
    }
    return 0;
}
