// Rows of namespace I/O and standard admin commands.
#include "cli/Functions/standard/compare.h"
#include "cli/Functions/standard/format.h"
#include "cli/Functions/standard/read.h"
#include "cli/Functions/standard/vf_management.h"
#include "cli/Functions/standard/write.h"
#include "cli/Functions/standard/writeuncor.h"
#include "cli/Functions/standard/writezero.h"
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::ioRows()
{
    static constexpr Command_Info kRows[] = {
        commandRow("read", doRead, read_help, ":Read data from a namespace. JBOF Support Only."),
        commandRow("write", doWrite, write_help, ":Write data to a namespace. JBOF Support Only."),
        commandRow("compare", doCompare, compare_help, ":Compare data of a namespace. JBOF Support Only."),
        commandRow("writezero", doWritezero, writezero_help, ":Write zeros to a namespace. JBOF Support Only."),
        commandRow("writeuncor", doWriteuncor, writeuncor_help,
                   ":Make blocks of a namespace uncorrectable. JBOF Support Only."),
        commandRow("format", doFormat, format_help, ":Format a namespace. JBOF Support Only."),
        commandRow("vf-manage", doVFManage, vf_management_help, ":For virtualization management control."),
    };
    return kRows;
}
