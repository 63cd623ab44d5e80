// The option scanner that the handlers of this program meet: it notes what it is given, and has nothing to say.
#pragma once

#include <string>
#include <vector>

#include "cli/Public/getopt.h"

namespace qrx::pages {

// What a handler gave its scanner.
struct Note {
    const char* letters = nullptr;  // null: the handler asked no scanner
    const option* rows = nullptr;
    std::vector<std::string> words;  // of the keyword list that the argument was looked up in
};

// Notes what the next handler does. Its scanner finds the option `letter`, with an argument that is no keyword, and
// then something wrong; with `letter` 0 something is wrong from the start.
void expect(int letter);
Note noted();

}  // namespace qrx::pages
