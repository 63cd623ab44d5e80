// Rows of the management interface.
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::managementRows()
{
    return {};
}
