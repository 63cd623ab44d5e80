// Rows of the earlier `get`, `set` and `info`.
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::settingsRows()
{
    return {};
}
