// Rows of the multi-function device.
#include <array>

#include "cli/Functions/msft/mfnd.h"
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::mfndRows()
{
    static constexpr auto kRows = std::to_array<Command_Info>({
        commandRow("mfnd-manage", doMFND_manage, mfnd_manage_help, mfnd_manage_sh),
        commandRow("mfnd-identify", doMFND_identify, mfnd_identify_help, mfnd_identify_sh),
        commandRow("mfnd-opertation", doMFND_operation, mfnd_operation_help, mfnd_operation_sh),
        commandRow("mfnd-properties", doMFND_properties, mfnd_properties_help, mfnd_properties_sh),
        commandRow("mfnd-event", doMFND_event, mfnd_event_help, mfnd_event_sh),
        commandRow("mfnd-child-ctrl", doMFND_child_ctrl, mfnd_child_ctrl_help, mfnd_child_ctrl_sh),
        commandRow("mfnd-child-ctrl-log-page", doMFND_child_ctrl_log_page, mfnd_child_ctrl_log_page_help,
                   mfnd_child_ctrl_log_page_sh),
        commandRow("mfnd-cmdpermission", doMFND_cmdpermission, mfnd_cmdpermission_help, mfnd_cmdpermission_sh),
    });
    return kRows;
}
