// The two command tables. Row order is the order of the `help` page.
#include "cli/qxsetup/command_table.h"

#include <iterator>

#include "cli/Functions/builtin/adapter.h"
#include "cli/Functions/builtin/debug.h"
#include "cli/Functions/builtin/help.h"
#include "cli/Functions/builtin/version.h"
#include "cli/Functions/flash/flash.h"
#include "cli/Functions/gen/gen.h"
#include "cli/Functions/passthru/passthru.h"
#include "cli/Functions/simple/simple_bga.h"
#include "cli/Functions/simple/simple_config.h"
#include "cli/Functions/simple/simple_dumphba.h"
#include "cli/Functions/simple/simple_eom.h"
#include "cli/Functions/simple/simple_event.h"
#include "cli/Functions/simple/simple_gpio.h"
#include "cli/Functions/simple/simple_hotkey.h"
#include "cli/Functions/simple/simple_i2c.h"
#include "cli/Functions/simple/simple_import.h"
#include "cli/Functions/simple/simple_info.h"
#include "cli/Functions/simple/simple_inverse.h"
#include "cli/Functions/simple/simple_led.h"
#include "cli/Functions/simple/simple_log.h"
#include "cli/Functions/simple/simple_ns.h"
#include "cli/Functions/simple/simple_oemdata.h"
#include "cli/Functions/simple/simple_pcie.h"
#include "cli/Functions/simple/simple_register.h"
#include "cli/Functions/simple/simple_reset.h"
#include "cli/Functions/simple/simple_switch.h"
#include "cli/Functions/simple/simple_vd.h"
#include "cli/Functions/simple/simple_vpd.h"
#include "cli/Functions/smart/smart.h"
#include "cli/Functions/spi/spi.h"
#include "cli/Functions/standard/identify.h"
#include "cli/Functions/standard/mi_passthruread.h"
#include "cli/Functions/standard/mi_passthruwrite.h"
#include "cli/Functions/standard/mi_vpdread.h"
#include "cli/Functions/standard/mi_vpdwrite.h"

using qrx::commandRow;

// clang-format off
Command_Info generalCmdTableV1[] = {
    commandRow("?", doHelp, help_help, ":Get brief help for all commands."),
    commandRow("help", doHelp, help_help, ":Get brief help for all commands or detail help for one command."),
    commandRow("adapter", doAdapter, adapter_help, ":Default NVMe Controller the following CLI commands refers to."),
    commandRow("version", doVersion, version_help, ":Show API, CLI and support firmware version"),
    commandRow("smart", doSmart, smart_help, ":Get SSD backend RC/Slot SMART info."),
    commandRow("flash", doFlash, flash_help, ":Update flash image."),
    commandRow("log", doSLog, simple_log_help, ":For show/on/off SPI log"),
    commandRow("info", doSInfo, simple_info_help,
        ":For display NVMe Controller(hba), virtual disk(vd), physical disk(pd) or Namespace(ns) information."),
    commandRow("event", doSEvent, simple_event_help, ":For getting event from NVMe Controller."),
    commandRow("import", doSImport, simple_import_help, ":For import VD"),
    commandRow("init", doSINIT, simple_init_help, ":For start or stop VD initialization."),
    commandRow("mp", doSMP, simple_mp_help, ":For start or stop media patrol for a virtual disk."),
    commandRow("rebuild", doSRebuild, simple_rebuild_help, ":For start or stop VD rebuild."),
    commandRow("debuglv", doSDEBUGLV, simple_debuglv_help, ":For switch debug level target"),
    commandRow("get", doSGet, simple_get_help, ":For getting configuration information of NVMe Controller."),
    commandRow("set", doSSet, simple_set_help, ":For setting configuration parameters of NVMe Controller."),
    commandRow("vpdwrite", doVPDWrite, vpdwrite_help, ":Write VPD via standard MI-Send"),
    commandRow("oemdata", doSOEMdata, simple_oemdata_help, ":For write OEM data."),
    commandRow("passthru", doPassthru, passthru_help, ":Passthrough NVMe admin command to backend device"),
    commandRow("spi", doSPI, spi_help, ":Read and write SPI data. Maximal size of SPI data is 4096 bytes."),
    commandRow("vd", doSVD, simple_vd_help, ":For VD create and delete"),
    commandRow("reset", doSReset, simple_reset_help, simple_reset_short_help),
    commandRow("led", doSLed, simple_led_help, ":For control LED of device"),
    commandRow("vpd", doSVPD, simple_vpd_help, ":For switch VPD access target"),
    commandRow("dumphba", doSDUMPHBA, simple_dumphba_help, ":For dump hba info data structure"),
    commandRow("gpio", doSGPIO, simple_gpio_help, ":For GPIO setting in HBA info (Only for GPIO 4 to 7)"),
    commandRow("ns", doSNS, simple_ns_help, ":For namespace management"),
    commandRow("identify", doIdentify, identify_help, ":Get controller identify info."),
    commandRow("inverse", doInverse, simple_inverse_help, ":For GPIO 8,9,10 and 11 inverse control."),
    commandRow("vpdread", doVPDRead, vpdread_help, ":Read VPD via standard MI-Send and MI-Receive"),
};

Command_Info hiddenCmdTableV1[] = {
    commandRow("--debug", doDebug, debug_help, debug_sh),
    commandRow("gen", doGen, gen_help,
        ":Using for generate PRP data which file name is prp_data and size is 4K for nvme standard admin command"),
    commandRow("reg", doSReg, simple_reg_help, ":For read and write PCIe register. Maximal size of data is 4 bytes."),
    commandRow("qxf", doSQXF, simple_qxf_help, ":For control manufacture flash tool"),
    commandRow("protect", doSProtect, simple_protect_help, ":For control protection area"),
    commandRow("i2c", doSi2c, simple_i2c_help, ":For test i2c device"),
    commandRow("pcie", doSpcie, simple_pcie_help, ":For get PCIe information from backend device"),
    commandRow("eom", doSeom, simple_eom_help, ":Draw RC/EP EOM eye pattern"),
    commandRow("sriov", doSSRIOV, simple_sriov_help, ":For control SRIOV feature"),
    commandRow("hotkey", doHotkey, simple_hotkey_help, ":For hotkey."),
    commandRow("getoemdata", doSGetOEMdata, simple_getoemdata_help, ":For read OEM data."),
    commandRow("mi_passthruread", doMIPassthruRead, mi_passthruread_help,
        ":Read pass-through command via standard MI-Send and MI-Receive"),
    commandRow("mi_passthruwrite", doMIPassthruWrite, mi_passthruwrite_help, ":Write pass-through command via standard MI-Send"),
};
// clang-format on

const char HIDDEN_CMDS[23][20] = {
    "log",      "import",  "rebuild", "debuglv",      "get",         "set",         "oemdata",        "passthru",
    "spi",      "vd",      "reset",   "led",          "vpd",         "dumphba",     "gpio",           "ns",
    "identify", "inverse", "linfo",   "new_vpdwrite", "new_vpdread", "new_mi_send", "new_mi_receive",
};

unsigned generalCmdTableV1Size()
{
    return std::size(generalCmdTableV1);
}

unsigned hiddenCmdTableV1Size()
{
    return std::size(hiddenCmdTableV1);
}
