// Rows of the earlier background, namespace and device commands.
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::activityRows()
{
    return {};
}
