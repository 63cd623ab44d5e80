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
        commandRow("read", doRead, read_help, read_sh),
        commandRow("write", doWrite, write_help, write_sh),
        commandRow("compare", doCompare, compare_help, compare_sh),
        commandRow("writezero", doWritezero, writezero_help, writezero_sh),
        commandRow("writeuncor", doWriteuncor, writeuncor_help, writeuncor_sh),
        commandRow("format", doFormat, format_help, format_sh),
        commandRow("vf-manage", doVFManage, vf_management_help, vf_management_sh),
    };
    return kRows;
}
