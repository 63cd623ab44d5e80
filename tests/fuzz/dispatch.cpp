// Fuzzes the way of a line to its handler: the words that the splitter finds reach the row that the rule names, or
// none, and a handler gets them all.
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "api/src/interface/globals.h"
#include "cli/Public/common.h"
#include "cli/qxsetup/command_table.h"

namespace {

struct Call {
    std::string word;  // of the row; empty: no handler was called
    int argc = 0;
};
Call called;

int note(int argc, char** /*argv*/, PCommand_Info row)
{
    called = {row->cmd, argc};
    return 77;
}

// A table with the names of the real one, whose handlers note that they were called.
std::vector<Command_Info> noting(std::span<const Command_Info> rows)
{
    std::vector<Command_Info> table(rows.begin(), rows.end());
    for (Command_Info& row : table) {
        row.cmdHandler = note;
    }
    return table;
}

// The rule, said another way: the exact name, or the only one that begins with the word.
std::string expected(std::string_view word, std::span<const Command_Info> general, std::span<const Command_Info> hidden,
                     int& result)
{
    std::string found;
    int count = 0;
    for (const std::span<const Command_Info> table : {general, hidden}) {
        for (const Command_Info& row : table) {
            if (word == row.cmd) {
                result = 77;
                return row.cmd;
            }
            if (std::string_view(row.cmd).starts_with(word)) {
                found = row.cmd;
                ++count;
            }
        }
    }
    if (word == "exit" || word == "quit") {
        result = -1;
        return {};
    }
    result = count == 1 ? 77 : count == 0 && word.find("--vid=0x") != std::string_view::npos ? 0 : 1;
    return count == 1 ? found : "";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static std::vector<Command_Info> general = noting({generalCmdTableV1, generalCmdTableV1Size()});
    static std::vector<Command_Info> hidden = noting({hiddenCmdTableV1, hiddenCmdTableV1Size()});
    static FILE* const nowhere = std::fopen("/dev/null", "w");
    stream = nowhere;

    std::string line(reinterpret_cast<const char*>(data), size);
    line.resize(std::strlen(line.c_str()));
    std::array<char*, kMaxWords> words{};
    int count = 0;
    if (parse(&count, words.data(), line.data()) != 1 || count == 0) {
        return 0;
    }
    std::string word = words[0];
    strlwr(word.data());
    int wanted = 0;
    const std::string row = expected(word, general, hidden, wanted);

    called = {};
    const int result = qrx::dispatch(count, words.data(), general, hidden);
    assert(result == wanted);
    assert(called.word == row);
    assert(called.argc == (row.empty() ? 0 : count));
    return 0;
}
