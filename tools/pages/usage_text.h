// A usage page of the simulator, taken apart.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qrx::pages {

struct UsageText {
    struct Entry {
        std::string term;
        std::string meaning;
    };

    std::vector<std::string> forms;  // behind "Usage:"
    std::vector<std::string> paragraphs;
    std::vector<Entry> entries;   // options and commands
    std::vector<Entry> examples;  // command lines, and what they do
};

UsageText readUsage(std::string_view text);

}  // namespace qrx::pages
