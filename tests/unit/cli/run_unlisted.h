// How tests call a command that only tests/program has a row for.
#pragma once

#include <cstdio>
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

// The help page of a row.
inline std::string helpOf(const std::string& word)
{
    for (const Command_Info& row : unlistedRows()) {
        if (row.cmd == word) {
            return std::string("Description") + row.cmdShortHelp + row.cmdHelp;
        }
    }
    return "no row";
}

// Bytes as the plain hex dump shows them, in rows of sixteen.
inline std::string raw(const Bytes& bytes)
{
    std::string text;
    char piece[8];
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::snprintf(piece, sizeof(piece), "0x%02x ", bytes[i]);
        text += (i % 16 == 0 ? "\n" : "") + std::string(piece);
    }
    return text + "\n";
}

}  // namespace qrx::test
