#include "tools/pages/text.h"

namespace qrx::pages {
namespace {

constexpr std::size_t kTab = 4;

Line read(std::string_view text)
{
    Line line;
    std::size_t at = 0;
    for (; at < text.size() && (text[at] == ' ' || text[at] == '\t'); ++at) {
        line.indent += text[at] == '\t' ? kTab : 1;
    }
    line.text = text.substr(at);
    line.text.erase(line.text.find_last_not_of(" \t") + 1);
    return line;
}

}  // namespace

std::vector<Line> lines(std::string_view text)
{
    std::vector<Line> all;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        Line line = read(text.substr(0, end));
        if (!line.blank() || !all.empty()) {
            all.push_back(std::move(line));
        }
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    while (!all.empty() && all.back().blank()) {
        all.pop_back();
    }
    return all;
}

std::string sentence(std::string_view brief)
{
    const std::vector<Line> all = lines(brief);
    if (all.empty()) {
        return {};
    }
    std::string text = all.front().text;
    text.erase(0, text.starts_with(":") ? 1 : 0);
    return text;
}

std::string joined(const std::vector<std::string>& parts, std::string_view between)
{
    std::string text;
    for (const std::string& part : parts) {
        text += (text.empty() ? "" : std::string(between)) + part;
    }
    return text;
}

std::string quoted(std::string_view word)
{
    std::string text = "'";
    for (const char c : word) {
        text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return text + "'";
}

}  // namespace qrx::pages
