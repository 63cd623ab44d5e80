// What the program itself says of its commands: the rows of both tables, and the options of each as its handler hands
// them to the option scanner. Nothing here is written a second time: whatever has a row is known.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/Public/getopt.h"

namespace qrx::pages {

// One option, with all of its names.
struct Option {
    enum class Argument { none, needed, allowed };

    int value = 0;                   // what the scanner gives for it
    char letter = '\0';              // of the short form; '\0': there is none
    Argument shortArgument{};        // of the short form
    std::vector<std::string> names;  // of the long forms, without dashes
    Argument longArgument{};         // of the long forms
    std::vector<std::string> words;  // the words that it takes, where the handler has a list of them

    // "-o" and "--object": every way to write it.
    [[nodiscard]] std::vector<std::string> spellings() const;
    // Whether the spelling takes an argument, from the next word if need be.
    [[nodiscard]] bool takesArgument(std::string_view spelling) const;
    [[nodiscard]] bool takesArgument() const;
};

struct Command {
    std::string word;
    std::string brief;            // as the table has it, with its leading ":"
    std::string help;             // as the table has it
    bool listed = true;           // by `help`
    std::vector<Option> options;  // without the silent one
    std::string letters;          // the option string
    std::vector<option> rows;     // the long table, without its end
};

// All commands, in the order of the tables: the general one, then the hidden one. Runs each handler, which learns from
// a scanner of ours that there is nothing to do. What handlers say meanwhile is lost, and standard output with it.
std::vector<Command> commands();

// The options that a user is told of: the long forms, and the short ones that the help names.
std::vector<Option> usefulOptions(const Command& command);

// Whether the option's argument is a file, by its name.
bool takesFile(const Option& option);

}  // namespace qrx::pages
