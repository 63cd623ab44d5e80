// Rows of the earlier commands for virtual disks.
#include <array>

#include "cli/Functions/storage/assign.h"
#include "cli/Functions/storage/create.h"
#include "cli/Functions/storage/delete.h"
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::virtualDiskRows()
{
    static const std::array kRows{
        commandRow("create", doCreate, create_help, ":For create VD with a name and namespaces of given sizes."),
        commandRow("screate", doSCreate, simple_create_help, ":For create VD with all physical disks that are free."),
        commandRow("delete", doDelete, delete_help, ":For delete VD that is not in use."),
        commandRow("sdelete", doSDelete, simple_delete_help, ":For delete VD."),
        commandRow("assign", doAssign, assign_help, ":For assign physical disk."),
    };
    return kRows;
}
