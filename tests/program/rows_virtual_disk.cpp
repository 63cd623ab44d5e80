// Rows of the earlier commands for virtual disks.
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::virtualDiskRows()
{
    return {};
}
