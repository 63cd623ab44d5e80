// Rows of diagnostics of the controller.
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::diagnosticsRows()
{
    return {};
}
