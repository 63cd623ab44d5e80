#include "tools/pages/roff.h"

#include <algorithm>

namespace qrx::pages {

namespace {

constexpr std::size_t kLongest = 78;  // letters of a line of the file

std::string escaped(char c)
{
    switch (c) {
    case '\\':
        return "\\e";
    case '-':
        return "\\-";
    case '\'':
        return "\\(aq";
    case '"':
        return "\\(dq";
    case '`':
        return "\\(ga";
    case '^':
        return "\\(ha";
    case '~':
        return "\\(ti";
    default:
        return std::string(1, c);
    }
}

std::string escaped(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        out += escaped(c);
    }
    return out;
}

// A full stop that begins a line would make it a macro.
std::string protectedStart(const std::string& text)
{
    return text.starts_with('.') ? "\\&" + text : text;
}

}  // namespace

std::string roff(std::string_view text)
{
    return protectedStart(escaped(text));
}

std::string roffWithBoldOptions(std::string_view text)
{
    constexpr std::string_view kEnds = " ,=[]|<>();:";
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] != '-' || (at != 0 && kEnds.find(text[at - 1]) == std::string_view::npos)) {
            out += escaped(text[at++]);
            continue;
        }
        std::size_t end = std::min(text.find_first_of(kEnds, at), text.size());
        while (end > at && text[end - 1] == '.') {
            --end;
        }
        const std::string word = escaped(text.substr(at, end - at));
        out += end - at > 1 ? "\\fB" + word + "\\fR" : word;
        at = end;
    }
    return protectedStart(out);
}

ManualPage::ManualPage(std::string_view name, int section, std::string_view title)
{
    std::string upper;
    for (const char c : name) {
        upper += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    raw(".\\\" Made by qrx_pages from what the program says of itself. Do not edit.");
    raw(".TH " + upper + " " + std::to_string(section) + " " QRX_DATE " \"qrx_cli " QRX_VERSION "\" \"" +
        std::string(title) + "\"");
    raw(".nh");
    raw(".ad l");
}

void ManualPage::raw(std::string_view text)
{
    text_ += text;
    text_ += '\n';
}

void ManualPage::flow(const std::string& text)
{
    std::string_view rest = text;
    while (rest.size() > kLongest) {
        // A line must not begin with a full stop, nor with a blank.
        std::size_t end = rest.rfind(' ', kLongest);
        while (end != std::string_view::npos && end != 0 &&
               (rest[end + 1] == '.' || rest[end + 1] == ' ' || rest[end - 1] == ' ')) {
            end = rest.rfind(' ', end - 1);
        }
        if (end == std::string_view::npos || end == 0) {
            break;
        }
        raw(rest.substr(0, end));
        rest.remove_prefix(end + 1);
    }
    raw(rest);
    breaks_ = true;
    gaps_ = true;
}

void ManualPage::indentTo(std::size_t indent)
{
    if (indent_ == indent) {
        return;
    }
    if (indent_ != 0) {
        raw(".RE");
    }
    if (indent != 0) {
        raw(".RS " + std::to_string(indent) + "n");
    }
    indent_ = indent;
    breaks_ = false;
}

void ManualPage::section(std::string_view heading)
{
    indentTo(0);
    raw(".SH " + roff(heading));
    breaks_ = gaps_ = false;
}

void ManualPage::subsection(std::string_view heading)
{
    indentTo(0);
    raw(".SS " + roff(heading));
    breaks_ = gaps_ = false;
}

void ManualPage::paragraph(std::string_view text)
{
    gap();
    for (const Line& line : lines(text)) {
        flow(roffWithBoldOptions(line.text));
    }
}

void ManualPage::line(std::size_t indent, std::string_view text, bool bold)
{
    indentTo(indent);
    if (breaks_) {
        raw(".br");
    }
    flow(bold ? "\\fB" + roff(text) + "\\fR" : roffWithBoldOptions(text));
}

void ManualPage::gap()
{
    indentTo(0);
    if (gaps_) {
        raw(".PP");
    }
    breaks_ = gaps_ = false;
}

void ManualPage::entry(std::string_view term, std::string_view meaning)
{
    indentTo(0);
    raw(".TP");
    raw(roffWithBoldOptions(term));
    for (const Line& line : lines(meaning)) {
        flow(roffWithBoldOptions(line.text));
    }
}

}  // namespace qrx::pages
