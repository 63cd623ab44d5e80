// Rows of the multi-function device.
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::mfndRows()
{
    return {};
}
