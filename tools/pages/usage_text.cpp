#include "tools/pages/usage_text.h"

#include "tools/pages/text.h"

namespace qrx::pages {
namespace {

constexpr std::string_view kUsage = "Usage: ";
constexpr std::size_t kEntryIndent = 2;

// "term   meaning": two blanks at least stand between them.
UsageText::Entry split(const std::string& text)
{
    const std::size_t end = text.find("  ");
    if (end == std::string::npos) {
        return {text, {}};
    }
    return {text.substr(0, end), text.substr(text.find_first_not_of(' ', end))};
}

}  // namespace

UsageText readUsage(std::string_view text)
{
    UsageText usage;
    bool joins = false;                             // the next plain line goes on with the last paragraph
    std::vector<UsageText::Entry>* last = nullptr;  // where a line far in goes on
    for (const Line& line : lines(text)) {
        if (line.text.starts_with(kUsage)) {
            usage.forms.push_back(line.text.substr(kUsage.size()));
        } else if (line.blank()) {
            joins = false;
        } else if (line.indent == kUsage.size() && last == nullptr && usage.paragraphs.empty()) {
            usage.forms.push_back(line.text);
        } else if (line.indent == kEntryIndent) {
            last = line.text.starts_with("qrx_sim ") ? &usage.examples : &usage.entries;
            last->push_back(split(line.text));
        } else if (line.indent > kEntryIndent && last != nullptr) {
            last->back().meaning += " " + line.text;
        } else if (joins) {
            usage.paragraphs.back() += "\n" + line.text;
        } else {
            usage.paragraphs.push_back(line.text);
            joins = true;
        }
    }
    return usage;
}

}  // namespace qrx::pages
