// Rows of diagnostics of the controller.
#include "cli/Functions/simple/simple_diagnostics.h"
#include "cli/Functions/simple/simple_ioq.h"
#include "cli/Functions/simple/simple_log.h"
#include "cli/Functions/simple/simple_test.h"
#include "cli/Functions/smart/idpd.h"
#include "tests/program/rows.h"

namespace {

constexpr Command_Info kRows[] = {
    qrx::commandRow("err_status", doSErrStatus, simple_err_status_help,
                    ":Get or clear error status of NVMe Controller."),
    qrx::commandRow("crash", doSCrash, simple_crash_help, ":Make firmware of NVMe Controller crash."),
    qrx::commandRow("ioq", doIOQ, simple_ioq_help, ":Show IO queue number of each host."),
    qrx::commandRow("delay", doSDelay, simple_delay_help, ":Make NVMe Controller stall for some seconds."),
    qrx::commandRow("offline", doSoffline, simple_offline_help, ":Take a physical disk offline."),
    qrx::commandRow("chkalive", doChkAlive, simple_chkalive_help, ":Check whether NVMe Controller is alive."),
    qrx::commandRow("sf", doSSwitchFeature, simple_sf_help, ":Switch between single port and dual port."),
    qrx::commandRow("log_vdm", doSLogVDM, simple_log_vdm_help, ":For show/on/off VDM log"),
    qrx::commandRow("test", doSTest, simple_test_help, ":Query all adapters and their physical disks repeatedly."),
    qrx::commandRow("id", doPDID, id_help, id_sh),
    qrx::commandRow("sbsms", doSBSMS, simple_sbsms_help, ":Do nothing."),
};

}  // namespace

std::span<const Command_Info> qrx::test::diagnosticsRows()
{
    return kRows;
}
