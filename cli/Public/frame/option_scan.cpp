// The option loop of a handler.
#include "cli/Public/frame/option_scan.h"

#include <strings.h>

#include <algorithm>

namespace qrx {

OptionScan::OptionScan(int argc, char** argv, const char* letters, const option* rows)
    : argc_(argc), argv_(argv), letters_(letters), rows_(rows)
{
    optind = 1;
}

int OptionScan::next()
{
    constexpr int kSilent = 1;
    for (;;) {
        int option_index = 0;
        const int before = optind;
        const int letter = getopt_long(argc_, argv_, letters_, rows_, &option_index);
        if (letter == kSilent) {
            continue;
        }
        if (letter != kEnd && letter != kError) {
            // A flag letter with text behind it ("-fx") never lets go of its word: say it once, then stop.
            if (optind == before && stuckAt_ == before) {
                return kError;
            }
            stuckAt_ = optind == before ? before : 0;
            ++counts_[index(letter)];
        }
        return letter;
    }
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
    if (text == nullptr) {
        return std::nullopt;
    }
    const auto row = std::find_if(words.begin(), words.end(),
                                  [text](const Keyword& candidate) { return strcasecmp(text, candidate.word) == 0; });
    return row == words.end() ? std::nullopt : std::optional<int>(row->value);
}

}  // namespace qrx
