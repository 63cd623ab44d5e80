// qrx_sim.1
#include <string>

#include "sim/firmware/factory.h"
#include "sim/launcher/control_command.h"
#include "sim/launcher/image_command.h"
#include "sim/launcher/options.h"
#include "tools/pages/pages.h"
#include "tools/pages/roff.h"
#include "tools/pages/usage_text.h"

namespace qrx::pages {
namespace {

constexpr std::string_view kExitValue = "Exit value: ";

void writeForms(ManualPage& page, const UsageText& usage)
{
    for (const std::string& form : usage.forms) {
        page.line(0, form, true);
    }
}

void writeEntries(ManualPage& page, const std::vector<UsageText::Entry>& entries)
{
    for (const UsageText::Entry& entry : entries) {
        page.entry(entry.term, entry.meaning);
    }
}

void writeTool(ManualPage& page, std::string_view heading, std::string_view text)
{
    const UsageText usage = readUsage(text);
    page.section(heading);
    writeForms(page, usage);
    page.gap();
    for (const std::string& paragraph : usage.paragraphs) {
        page.paragraph(paragraph);
    }
    writeEntries(page, usage.entries);
}

}  // namespace

std::string manualOfTheSimulator()
{
    const UsageText usage = readUsage(sim::usage());
    ManualPage page("qrx_sim", 1, "User Commands");
    page.section("NAME");
    page.raw("qrx_sim \\- run a program on a machine with a simulated RAID controller");
    page.section("SYNOPSIS");
    writeForms(page, usage);
    page.section("DESCRIPTION");
    std::string exitValue;
    for (const std::string& paragraph : usage.paragraphs) {
        if (paragraph.starts_with(kExitValue)) {
            exitValue = "The exit value is " + paragraph.substr(kExitValue.size());
        } else {
            page.paragraph(paragraph);
        }
    }
    page.section("OPTIONS");
    writeEntries(page, usage.entries);
    page.section("SCENARIOS");
    for (const sim::Scenario& scenario : sim::scenarios()) {
        page.entry(scenario.name, scenario.description);
    }
    writeTool(page, "CONTROL", sim::control_usage());
    writeTool(page, "FIRMWARE IMAGES", sim::image_usage());
    page.section("EXIT STATUS");
    page.paragraph(exitValue);
    page.section("EXAMPLES");
    for (const UsageText::Entry& example : usage.examples) {
        page.entry(example.term, example.meaning);
    }
    page.section("ENVIRONMENT");
    page.entry("QRX_SIM_CONTROL", "Set for the program: where qrx_sim ctl finds the machine.");
    page.section("SEE ALSO");
    page.raw(".BR qrx_cli (8),");
    page.raw(".BR nvme (1)");
    return page.text();
}

}  // namespace qrx::pages
