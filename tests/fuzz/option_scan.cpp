// Fuzzes the option scanner over the words of a line, with the tables of every command and with some of its own: it
// comes to an end, answers with what its tables hold, and loses no word of those it reorders.
#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include <option_tables.h>  // made by the build
#include "cli/Public/common.h"
#include "cli/Public/getopt.h"

namespace {

constexpr option kLong[] = {
    {"object", required_argument, nullptr, 'o'}, {"output", required_argument, nullptr, 1},
    {"list", no_argument, nullptr, 'l'},         {"level", optional_argument, nullptr, 'v'},
    {"help", no_argument, nullptr, 'h'},         {nullptr, 0, nullptr, 0},
};

// The scanner's prefixes change what it does with words that are no options.
constexpr const char* kShort[] = {"o:l:v::\x01:h", ":o:l:v::\x01:h", "-o:l:v::\x01:h", "+o:l:v::\x01:h"};

bool isValueOf(const option* rows, int value)
{
    for (; rows->name != nullptr; ++rows) {
        if (rows->val == value) {
            return true;
        }
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1) {
        return 0;
    }
    // The first byte chooses the tables: of a command with the highest bit set, else our own.
    const OptionTable& of_command = kOptionTables[(data[0] & 0x7F) % std::size(kOptionTables)];
    const bool ours = (data[0] & 0x80) == 0;
    const char* letters = ours ? kShort[data[0] & 3] : of_command.letters;
    const option* rows = ours ? kLong : of_command.rows;
    const bool single_dash = ours && (data[0] & 4) != 0;
    std::string line(reinterpret_cast<const char*>(data + 1), size - 1);

    // Words end at zero bytes, so that a word may hold anything a process argument may.
    std::vector<std::string> words = {"command"};
    for (std::size_t at = 0; at < line.size() && words.size() < kMaxWords;) {
        words.emplace_back(line.c_str() + at);
        at += words.back().size() + 1;
    }
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    std::vector<char*> before = argv;
    argv.push_back(nullptr);
    const int argc = static_cast<int>(words.size());

    opterr = 0;
    optind = !ours || (data[0] & 8) != 0 ? 0 : 1;  // 0: no ordering is left of another input
    // A flag letter with more behind it is answered again and again: every handler stops there, and so does this.
    for (int calls = 0; calls <= argc; ++calls) {
        int row = 0;
        const int answer = single_dash ? getopt_long_only(argc, argv.data(), letters, rows, &row)
                                       : getopt_long(argc, argv.data(), letters, rows, &row);
        assert(optind >= 1 && optind <= argc);
        if (answer == -1) {
            break;
        }
        assert(answer == '?' || answer == ':' || answer == 1 || std::strchr(letters, answer) != nullptr ||
               isValueOf(rows, answer));
        assert(optarg == nullptr || std::strlen(optarg) <= size);
    }
    argv.pop_back();
    std::sort(before.begin(), before.end());
    std::sort(argv.begin(), argv.end());
    assert(argv == before);
    return 0;
}
