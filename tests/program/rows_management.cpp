// Rows of the management interface.
#include "cli/Functions/standard/mi_admin_receive.h"
#include "cli/Functions/standard/mi_admin_send.h"
#include "cli/Functions/standard/mi_receive.h"
#include "cli/Functions/standard/mi_send.h"
#include "cli/Functions/standard/new_mi_receive.h"
#include "cli/Functions/standard/new_mi_send.h"
#include "cli/Functions/standard/new_mi_vpdread.h"
#include "cli/Functions/standard/new_mi_vpdwrite.h"
#include "cli/Functions/vpd/vpd.h"
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::managementRows()
{
    static constexpr Command_Info kRows[] = {
        commandRow("mi_send", doMISend, mi_send_help, mi_send_sh),
        commandRow("mi_receive", doMIReceive, mi_receive_help, mi_receive_sh),
        commandRow("mi_admin_send", doMIAdminSend, mi_admin_send_help, mi_admin_send_sh),
        commandRow("mi_admin_receive", doMIAdminReceive, mi_admin_receive_help, mi_admin_receive_sh),
        commandRow("new_vpdread", doNewVPDRead, new_vpdread_help, new_vpdread_sh),
        commandRow("new_vpdwrite", doNewVPDWrite, new_vpdwrite_help, new_vpdwrite_sh),
        commandRow("new_mi_send", doNewMISend, new_mi_send_help, new_mi_send_sh),
        commandRow("new_mi_receive", doNewMIReceive, new_mi_receive_help, new_mi_receive_sh),
        commandRow("vpd", doVPD, old_vpd_help, old_vpd_sh),
    };
    return kRows;
}
