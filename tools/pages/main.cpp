// qrx_pages: writes the pages that are derived from the command tables, the help texts and the simulator's usage.
//
//     qrx_pages man/qrx_cli.8 man/qrx_sim.1 ...       each file is known by its name
#include <array>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "tools/pages/pages.h"

namespace {

using namespace qrx::pages;

struct Page {
    const char* file;
    std::string (*make)(const std::vector<Command>&);
};

constexpr std::array kPages{
    Page{"qrx_cli.8", manualOfTheTool},
    Page{"qrx_sim.1", [](const std::vector<Command>&) { return manualOfTheSimulator(); }},
    Page{"qrx_cli.bash", bashCompletion},
    Page{"_qrx_cli", zshCompletion},
    Page{"commands.md", commandReference},
    Page{"command_words.txt", commandWords},
    Page{"option_tables.h", optionTables},
};

// False when there is no page of that name, or it could not be written.
bool write(const std::filesystem::path& path, const std::vector<Command>& all)
{
    for (const Page& page : kPages) {
        if (path.filename() == page.file) {
            std::ofstream file(path, std::ios::binary);
            file << page.make(all);
            file.close();
            if (!file) {
                std::fprintf(stderr, "qrx_pages: cannot write '%s'\n", path.c_str());
            }
            return !file.fail();
        }
    }
    std::fprintf(stderr, "qrx_pages: no page is called '%s'\n", path.filename().c_str());
    return false;
}

}  // namespace

int main(int argc, char** argv)
try {
    const std::vector<Command> all = commands();
    bool good = argc > 1;
    for (const char* path : std::span(argv, static_cast<std::size_t>(argc)).subspan(1)) {
        good = write(path, all) && good;
    }
    return good ? 0 : 1;
} catch (const std::exception& error) {
    std::fprintf(stderr, "qrx_pages: %s\n", error.what());
    return 1;
}
