#include "tools/pages/commands.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <span>
#include <stdexcept>

#include "api/src/interface/globals.h"
#include "cli/Public/common.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/qxsetup/command_table.h"
#include "tools/pages/scanner.h"

namespace qrx::pages {
namespace {

constexpr int kSilent = kOutputRow.val;

Note ask(Command_Info& row, int letter)
{
    expect(letter);
    std::string word = row.cmd;
    std::string option = "-";  // a bare word would be answered with the help
    std::array<char*, 3> argv{word.data(), option.data(), nullptr};
    (void)row.cmdHandler(2, argv.data(), &row);
    return noted();
}

Option& optionOf(Command& command, int value)
{
    const auto found = std::find_if(command.options.begin(), command.options.end(),
                                    [value](const Option& option) { return option.value == value; });
    if (found != command.options.end()) {
        return *found;
    }
    command.options.push_back({});
    command.options.back().value = value;
    return command.options.back();
}

Option::Argument argumentOf(int has_arg)
{
    constexpr std::array kKinds{Option::Argument::none, Option::Argument::needed, Option::Argument::allowed};
    return kKinds.at(static_cast<std::size_t>(has_arg));
}

void readLetters(Command& command)
{
    const std::string& letters = command.letters;
    for (std::size_t i = 0; i < letters.size(); ++i) {
        int colons = 0;
        const char letter = letters[i];
        while (i + 1 < letters.size() && letters[i + 1] == ':') {
            ++colons;
            ++i;
        }
        if (letter != kSilent) {
            Option& option = optionOf(command, static_cast<unsigned char>(letter));
            option.letter = letter;
            option.shortArgument = argumentOf(colons);
        }
    }
}

Command read(Command_Info& row, bool listed)
{
    Command command;
    command.word = row.cmd;
    command.brief = row.cmdShortHelp;
    command.help = row.cmdHelp;
    command.listed = listed;
    const Note note = ask(row, 0);
    if (note.letters == nullptr) {
        throw std::runtime_error(command.word + ": its handler asked no scanner for its options");
    }
    command.letters = note.letters;
    readLetters(command);
    for (const option* entry = note.rows; entry->name != nullptr; ++entry) {
        command.rows.push_back(*entry);
        if (entry->val != kSilent) {
            Option& option = optionOf(command, entry->val);
            option.names.emplace_back(entry->name);
            option.longArgument = argumentOf(entry->has_arg);
        }
    }
    for (Option& option : command.options) {
        if (option.takesArgument()) {
            option.words = ask(row, option.value).words;
        }
    }
    return command;
}

// Whether the help has the spelling as a word of its own.
bool names(const std::string& help, const std::string& spelling)
{
    const auto partOfWord = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-'; };
    for (std::size_t at = help.find(spelling); at != std::string::npos; at = help.find(spelling, at + 1)) {
        const std::size_t end = at + spelling.size();
        if ((at == 0 || !partOfWord(help[at - 1])) && (end == help.size() || !partOfWord(help[end]))) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::vector<std::string> Option::spellings() const
{
    std::vector<std::string> all;
    if (letter != '\0') {
        all.push_back(std::string("-") + letter);
    }
    for (const std::string& name : names) {
        all.push_back("--" + name);
    }
    return all;
}

bool Option::takesArgument(std::string_view spelling) const
{
    return (spelling.starts_with("--") ? longArgument : shortArgument) == Argument::needed;
}

bool Option::takesArgument() const
{
    return (letter != '\0' && shortArgument == Argument::needed) ||
           (!names.empty() && longArgument == Argument::needed);
}

std::vector<Command> commands()
{
    stream = std::fopen("/dev/null", "w");
    if (stream == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr) {
        throw std::runtime_error("cannot open /dev/null");
    }
    pCmdTable = generalCmdTableV1;
    cmdTableSize = static_cast<QRX_U16>(generalCmdTableV1Size());
    std::vector<Command> all;
    all.reserve(generalCmdTableV1Size() + hiddenCmdTableV1Size());
    for (Command_Info& row : std::span(generalCmdTableV1, generalCmdTableV1Size())) {
        all.push_back(read(row, true));
    }
    for (Command_Info& row : std::span(hiddenCmdTableV1, hiddenCmdTableV1Size())) {
        all.push_back(read(row, false));
    }
    std::fclose(stream);
    stream = stdout;
    return all;
}

std::vector<Option> usefulOptions(const Command& command)
{
    std::vector<Option> useful;
    for (Option option : command.options) {
        if (!names(command.help, std::string("-") + option.letter)) {
            option.letter = '\0';
        }
        if (option.letter != '\0' || !option.names.empty()) {
            useful.push_back(std::move(option));
        }
    }
    return useful;
}

bool takesFile(const Option& option)
{
    return std::any_of(option.names.begin(), option.names.end(),
                       [](const std::string& name) { return name.find("file") != std::string::npos; });
}

}  // namespace qrx::pages
