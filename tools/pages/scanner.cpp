// Takes the place of cli/Public/frame/option_scan.cpp: this program is linked without that one.
#include "tools/pages/scanner.h"

#include <algorithm>

#include "cli/Public/frame/option_scan.h"

namespace {

// No number and no keyword; and a handler that opens it as a file does no harm.
char argument[] = "/dev/null";

int wanted = 0;
qrx::pages::Note note;

}  // namespace

namespace qrx::pages {

void expect(int letter)
{
    wanted = letter;
    note = {};
}

Note noted()
{
    return note;
}

}  // namespace qrx::pages

namespace qrx {

OptionScan::OptionScan(int argc, char** argv, const char* letters, const option* rows)
    : argc_(argc), argv_(argv), letters_(letters), rows_(rows)
{
    optind = 1;
    note.letters = letters;
    note.rows = rows;
}

int OptionScan::next()
{
    optarg = nullptr;
    if (wanted == 0) {
        return kError;
    }
    const int letter = wanted;
    wanted = 0;
    optarg = argument;
    ++counts_[index(letter)];
    return letter;
}

bool OptionScan::repeated(std::string_view letters) const
{
    return std::any_of(letters.begin(), letters.end(), [this](char letter) { return count(letter) > 1; });
}

char* OptionScan::word()
{
    return optarg != nullptr ? optarg : none_;
}

std::optional<int> keyword(const char* text, std::span<const Keyword> words)
{
    if (text == argument) {
        for (const Keyword& row : words) {
            note.words.emplace_back(row.word);
        }
    }
    return std::nullopt;
}

}  // namespace qrx
