// Rows of OEM security, light info, switches and SATA.
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::securityRows()
{
    return {};
}
