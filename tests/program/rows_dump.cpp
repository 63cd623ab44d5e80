// Rows of the binary event log and the debug dump.
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::dumpRows()
{
    return {};
}
