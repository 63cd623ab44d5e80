// Manual pages, in the macros of man(7).
#pragma once

#include <string>
#include <string_view>

#include "tools/pages/text.h"

namespace qrx::pages {

// Text that reads as it stands, wherever it stands in a line.
std::string roff(std::string_view text);
// The same, with the words that begin with a dash in bold.
std::string roffWithBoldOptions(std::string_view text);

class ManualPage {
public:
    ManualPage(std::string_view name, int section, std::string_view title);

    void section(std::string_view heading);
    void subsection(std::string_view heading);
    // A paragraph; its lines are joined.
    void paragraph(std::string_view text);
    // A line that begins anew, `indent` blanks to the right.
    void line(std::size_t indent, std::string_view text, bool bold = false);
    // An empty line before what comes next.
    void gap();
    // A term and what it means.
    void entry(std::string_view term, std::string_view meaning);
    // A macro line or text of roff as it is.
    void raw(std::string_view text);

    [[nodiscard]] const std::string& text() const { return text_; }

private:
    void indentTo(std::size_t indent);
    // Text that is joined with what stands before and behind it, in short lines.
    void flow(const std::string& text);

    std::string text_;
    std::size_t indent_ = 0;
    bool breaks_ = false;  // the next line needs a break in front
    bool gaps_ = false;    // something stands above that a gap would part from what comes
};

}  // namespace qrx::pages
