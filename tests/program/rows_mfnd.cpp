// Rows of the multi-function device.
#include <array>

#include "cli/Functions/msft/mfnd.h"
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::mfndRows()
{
    static constexpr auto kRows = std::to_array<Command_Info>({
        commandRow("mfnd-manage", doMFND_manage, mfnd_manage_help, ":For MFND management"),
        commandRow("mfnd-identify", doMFND_identify, mfnd_identify_help, ":For MFND identify"),
        commandRow("mfnd-opertation", doMFND_operation, mfnd_operation_help,
                   ":For getting and setting MFND operation."),
        commandRow("mfnd-properties", doMFND_properties, mfnd_properties_help,
                   ":For getting and setting MFND properties."),
        commandRow("mfnd-event", doMFND_event, mfnd_event_help, ":For getting MFND event log."),
        commandRow("mfnd-child-ctrl", doMFND_child_ctrl, mfnd_child_ctrl_help, ":For MFND child controller control"),
        commandRow("mfnd-child-ctrl-log-page", doMFND_child_ctrl_log_page, mfnd_child_ctrl_log_page_help,
                   ":For MFND child controller control get log page"),
        commandRow("mfnd-cmdpermission", doMFND_cmdpermission, mfnd_cmdpermission_help,
                   ":For getting and setting MFND operation."),
    });
    return kRows;
}
