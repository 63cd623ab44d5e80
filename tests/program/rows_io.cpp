// Rows of namespace I/O and standard admin commands.
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::ioRows()
{
    return {};
}
