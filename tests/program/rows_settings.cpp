// Rows of the earlier `get`, `set` and `info`.
#include "cli/Functions/storage/config.h"
#include "cli/Functions/storage/info.h"
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::settingsRows()
{
    static const Command_Info rows[] = {
        commandRow("get", doGet, get_help, get_sh),
        commandRow("set", doSet, set_help, set_sh),
        commandRow("info", doInfo, info_help, info_sh),
    };
    return rows;
}
