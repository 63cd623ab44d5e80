// Rows of the earlier background, namespace and device commands.
#include "cli/Functions/storage/bga.h"
#include "cli/Functions/storage/device.h"
#include "cli/Functions/storage/import.h"
#include "cli/Functions/storage/ns.h"
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::activityRows()
{
    static const Command_Info rows[] = {
        commandRow("ns", doNS, ns_help, ns_sh),
        commandRow("init", doInit, init_help, init_sh),
        commandRow("mp", doMP, mp_help, mp_sh),
        commandRow("rebuild", doRebuild, rebuild_help, rebuild_sh),
        commandRow("import", doImport, import_help, import_sh),
        commandRow("locate", doLocate, locate_help, locate_sh),
        commandRow("reset", doReset, reset_help, reset_sh),
    };
    return rows;
}
