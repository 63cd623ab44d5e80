// How tests call a command that only tests/program has a row for.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "tests/program/rows.h"
#include "tests/unit/cli/run.h"

namespace qrx::test {

// One command on the rows of tests/program.
inline Outcome unlisted(std::initializer_list<std::string> words)
{
    pCmdTable = generalCmdTableV1;
    cmdTableSize = static_cast<QRX_U16>(generalCmdTableV1Size());
    std::vector<Command_Info> rows = unlistedRows();
    Words mine(words);
    return outcomeOf([&] { return dispatch(mine.argc(), mine.argv(), rows, {}); });
}

}  // namespace qrx::test
