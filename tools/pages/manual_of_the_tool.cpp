// qrx_cli.8
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "tools/pages/pages.h"
#include "tools/pages/roff.h"
#include "tools/pages/text.h"

namespace qrx::pages {
namespace {

bool isHeading(const Line& line)
{
    return line.indent == 0 && (line.text == "Options:" || line.text == "Examples:");
}

// The lines of a help text, with what they are shown by: the forms of the command and its examples in bold, and each
// line as far in as it stands.
void writeHelp(ManualPage& page, const Command& command)
{
    for (const Line& line : lines(command.help)) {
        if (line.blank()) {
            page.gap();
            continue;
        }
        const bool form = line.text == command.word || line.text.starts_with(command.word + " ");
        if (isHeading(line)) {
            page.gap();
        }
        page.line(line.indent, line.text, form || isHeading(line));
    }
}

// What the scanner takes beyond the help: a sentence, or nothing.
std::string unexplained(const Command& command)
{
    std::vector<std::string> found;
    for (const Option& option : usefulOptions(command)) {
        for (const std::string& spelling : option.spellings()) {
            if (spelling.starts_with("--") && command.help.find(spelling) == std::string::npos) {
                found.push_back(spelling + (option.takesArgument(spelling) ? " <value>" : ""));
            }
        }
    }
    return joined(found, ", ");
}

void writeWords(ManualPage& page, const Command& command)
{
    for (const Option& option : usefulOptions(command)) {
        if (!option.words.empty()) {
            page.paragraph("Words of " + joined(option.spellings(), ", ") + ": " + joined(option.words, ", ") + ".");
        }
    }
}

void writeCommand(ManualPage& page, const Command& command)
{
    page.subsection(command.word);
    const std::vector<Line> brief = lines(command.brief);
    for (std::size_t i = 0; i < brief.size(); ++i) {
        page.line(brief[i].indent, i == 0 ? sentence(command.brief) : brief[i].text);
    }
    page.gap();
    writeHelp(page, command);
    writeWords(page, command);
    if (const std::string more = unexplained(command); !more.empty()) {
        page.paragraph("Also taken: " + more + ".");
    }
}

constexpr std::string_view kHead = R"roff(.SH NAME
qrx_cli \- manage a PCIe NVMe RAID controller
.SH SYNOPSIS
.B qrx_cli
[\fIid\fR] \fIcommand\fR [\fIoption\fR ...] [\fB\-output\fR \fIfile\fR]
.br
.B qrx_cli
[\fIid\fR]
.SH DESCRIPTION
.B qrx_cli
manages a RAID controller and the drives behind it: it shows controllers,
physical disks, virtual disks and namespaces, and changes them, through the
controller\(aqs own
.IR /dev/nvmeN .
With a command it carries out that command; without one it opens a shell with
line editing and history, which
.B exit
and
.B quit
end.
.PP
The
.I id
is the
.I N
of the controller\(aqs
.IR /dev/nvmeN ;
without it the controller of the lowest number is meant.
.PP
A command may be abbreviated where that is unique, and its case does not matter.
A long option may be abbreviated too, but its case does matter.
.B \-output
.I file
behind the command appends what it prints to a file.
With
.BI \-\-vid=0x number
controllers of that PCI vendor are looked for instead.
.PP
Managing a controller needs the rights of root.
)roff";

void writeTail(ManualPage& page)
{
    page.section("EXIT STATUS");
    page.entry("0",
               "The command was carried out, or the help was shown because it was asked for. Many commands also "
               "give 0 after telling of a slip in their options.");
    page.entry("1", "The command is unknown or ambiguous, stood alone, or an option was refused.");
    page.entry("255", "A call of the driver failed; or the command was exit or quit.");
    page.entry("other", "The low eight bits of the NVMe status that the controller or a drive answered with.");
    page.section("ENVIRONMENT");
    page.entry("POSIXLY_CORRECT", "When it is set, options end at the first word that is none.");
    page.section("FILES");
    page.entry("/dev/nvmeN, /dev/nvmeNnM", "The controllers, and their namespaces.");
    page.entry("/sys/devices, /sys/firmware/dmi/tables", "Where controllers and their slots are found.");
    page.entry("/etc/mtab", "Tells which disks the running system stands on: commands that would destroy them refuse.");
    page.section("SEE ALSO");
    page.raw(".BR qrx_sim (1),");
    page.raw(".BR nvme (1)");
}

}  // namespace

std::string manualOfTheTool(const std::vector<Command>& commands)
{
    ManualPage page("qrx_cli", 8, "System Administration");
    page.raw(kHead);
    page.section("COMMANDS");
    for (const Command& command : commands) {
        if (command.listed) {
            writeCommand(page, command);
        }
    }
    if (!std::all_of(commands.begin(), commands.end(), [](const Command& command) { return command.listed; })) {
        page.section("SERVICE COMMANDS");
        page.paragraph("These work like the others, but help does not list them.");
        for (const Command& command : commands) {
            if (!command.listed) {
                writeCommand(page, command);
            }
        }
    }
    writeTail(page);
    return page.text();
}

}  // namespace qrx::pages
