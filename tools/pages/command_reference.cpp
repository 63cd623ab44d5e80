// docs/commands.md, and the plain lists for tests.
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "cli/Public/frame/option_scan.h"
#include "tools/pages/pages.h"
#include "tools/pages/text.h"

namespace qrx::pages {
namespace {

constexpr char kSilent =
    kOutputRow.val;  // the option that every option string has, and that cannot be written as it is

std::string code(const std::string& text)
{
    return "`" + text + "`";
}

std::string argumentCell(const Option& option)
{
    if (!option.words.empty()) {
        std::vector<std::string> words;
        for (const std::string& word : option.words) {
            words.push_back(code(word));
        }
        return joined(words, ", ");
    }
    constexpr auto kWord = [](Option::Argument argument) -> std::string {
        return argument == Option::Argument::none     ? "none"
               : argument == Option::Argument::needed ? "needed"
                                                      : "attached, or none";
    };
    const bool both = option.letter != '\0' && !option.names.empty();
    if (both && option.shortArgument != option.longArgument) {
        return "short: " + kWord(option.shortArgument) + "; long: " + kWord(option.longArgument);
    }
    const Option::Argument argument = option.letter != '\0' ? option.shortArgument : option.longArgument;
    if (argument == Option::Argument::needed && takesFile(option)) {
        return "a file";
    }
    return argument == Option::Argument::none ? "" : kWord(argument);
}

std::string optionTable(const Command& command)
{
    std::string text = "| option | argument |\n|---|---|\n";
    for (const Option& option : command.options) {
        std::vector<std::string> spellings;
        for (const std::string& spelling : option.spellings()) {
            spellings.push_back(code(spelling));
        }
        if (!spellings.empty()) {
            const std::string argument = argumentCell(option);
            text += "| " + joined(spellings, ", ") + " |" + (argument.empty() ? "" : " " + argument) + " |\n";
        }
    }
    return command.options.empty() ? "" : text + "\n";
}

std::string helpBlock(const std::string& text)
{
    std::string block;
    for (const Line& line : lines(text)) {
        block += (line.blank() ? "" : std::string(line.indent, ' ') + line.text) + "\n";
    }
    return block.empty() ? "" : "```text\n" + block + "```\n\n";
}

std::string section(const Command& command)
{
    std::string text = "### " + code(command.word) + "\n\n";
    if (const std::string brief = sentence(command.brief); !brief.empty()) {
        text += brief + "\n\n";
    }
    const std::size_t more = command.brief.find('\n');
    return text + optionTable(command) + helpBlock(more == std::string::npos ? "" : command.brief.substr(more)) +
           helpBlock(command.help);
}

// The commands that do not pass over --output.
std::string withAnOutputOfTheirOwn(const std::vector<Command>& commands)
{
    std::vector<std::string> words;
    for (const Command& command : commands) {
        const bool passes = std::any_of(command.rows.begin(), command.rows.end(), [](const option& row) {
            return row.name == std::string_view(kOutputRow.name) && row.val == kOutputRow.val;
        });
        if (!passes) {
            words.push_back(code(command.word));
        }
    }
    return joined(words, ", ");
}

}  // namespace

std::string commandReference(const std::vector<Command>& commands)
{
    const std::string others = withAnOutputOfTheirOwn(commands);
    std::string text =
        "# Commands\n\n"
        "All commands of `qrx_cli`, in the order of its tables: the options as the scanner takes them, and the help "
        "as\n"
        "the program prints it. Where the two differ, the table of options is what holds. Exit values are in\n"
        "[exit-codes.md](exit-codes.md).\n\n"
        "Every command" +
        (others.empty() ? "" : " but " + others) +
        " also takes and ignores `--output <x>`. It has nothing to do with `-output <file>`, which the\n"
        "program takes behind any command, and then opens the file for all that is printed.\n\n"
        "This page is made from the program by the target `pages`; a test compares the two.\n\n"
        "## Listed by `help`\n\n";
    bool listed = true;
    for (const Command& command : commands) {
        if (listed && !command.listed) {
            text += "## Hidden\n\nThese work like the others, and are not listed.\n\n";
        }
        listed = command.listed;
        text += section(command);
    }
    text.pop_back();
    return text;
}

std::string commandWords(const std::vector<Command>& commands)
{
    std::string text;
    for (const Command& command : commands) {
        text += command.word + "\n";
    }
    return text;
}

std::string optionTables(const std::vector<Command>& commands)
{
    std::string text =
        "// What each handler gives the option scanner. Made by qrx_pages.\n"
        "#pragma once\n\n#include \"cli/Public/getopt.h\"\n\n"
        "struct OptionTable {\n    const char* word;\n    const char* letters;\n    const option* rows;\n};\n\n";
    std::string tables = "inline constexpr OptionTable kOptionTables[] = {\n";
    int number = 0;
    for (const Command& command : commands) {
        const std::string name = "kRowsOf" + std::to_string(number++);
        text.append("inline constexpr option ").append(name).append("[] = {");
        for (const option& row : command.rows) {
            text.append("{\"").append(row.name).append("\", ").append(std::to_string(row.has_arg));
            text.append(", nullptr, ").append(std::to_string(row.val)).append("}, ");
        }
        text += "{nullptr, 0, nullptr, 0}};\n";
        std::string letters = command.letters;
        // Octal: three digits at most, whatever stands behind.
        letters.replace(letters.find(kSilent), 1, "\\001");
        tables.append("    {\"").append(command.word).append("\", \"").append(letters);
        tables.append("\", ").append(name).append("},\n");
    }
    return text + tables + "};\n";
}

}  // namespace qrx::pages
