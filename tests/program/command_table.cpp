// The tables of the test program: the rows that `qrx_cli` does not have, beside what a shell needs.
#include <algorithm>
#include <cassert>
#include <span>
#include <vector>

#include "cli/Functions/builtin/adapter.h"
#include "cli/Functions/builtin/debug.h"
#include "cli/Functions/builtin/help.h"
#include "cli/Public/common.h"
#include "tests/program/rows.h"

using qrx::commandRow;

Command_Info generalCmdTableV1[128];  // filled below, before main
Command_Info hiddenCmdTableV1[] = {commandRow("--debug", doDebug, debug_help, debug_sh)};

namespace {

unsigned fillTable()
{
    std::vector<Command_Info> rows = qrx::test::unlistedRows();
    rows.push_back(commandRow("help", doHelp, help_help, ":Get brief help for all commands or detail help for one."));
    rows.push_back(commandRow("adapter", doAdapter, adapter_help, ":Default NVMe Controller."));
    assert(rows.size() <= std::size(generalCmdTableV1));
    std::copy(rows.begin(), rows.end(), generalCmdTableV1);
    return static_cast<unsigned>(rows.size());
}

const unsigned kRows = fillTable();

}  // namespace

unsigned generalCmdTableV1Size()
{
    return kRows;
}

unsigned hiddenCmdTableV1Size()
{
    return std::size(hiddenCmdTableV1);
}
