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
        commandRow("mi_send", doMISend, mi_send_help, ":Standard MI-Send for management interface command set"),
        commandRow("mi_receive", doMIReceive, mi_receive_help,
                   ":Standard MI-Receive for management interface command set"),
        commandRow("mi_admin_send", doMIAdminSend, mi_admin_send_help, ":Standard MI-Send for admin command set"),
        commandRow("mi_admin_receive", doMIAdminReceive, mi_admin_receive_help,
                   ":Standard MI-Receive for admin command set"),
        commandRow("new_vpdread", doNewVPDRead, new_vpdread_help, ":Read VPD via standard 1.1 MI-Send and MI-Receive"),
        commandRow("new_vpdwrite", doNewVPDWrite, new_vpdwrite_help, ":Write VPD via standard 1.1 MI-Send"),
        commandRow("new_mi_send", doNewMISend, new_mi_send_help,
                   ":Standard 1.1 MI-Send for management interface command set"),
        commandRow("new_mi_receive", doNewMIReceive, new_mi_receive_help,
                   ":Standard 1.1 MI-Receive for management interface command set"),
        commandRow("vpd", doVPD, old_vpd_help, ":Read and write VPD data"),
    };
    return kRows;
}
