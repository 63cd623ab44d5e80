// Rows of OEM security, light info, switches and SATA.
#include "cli/Functions/passthru/list_pd_allocated_ns.h"
#include "cli/Functions/passthru/passthruSATA.h"
#include "cli/Functions/simple/simple_eeprom.h"
#include "cli/Functions/simple/simple_hide_temperature.h"
#include "cli/Functions/simple/simple_oem_ack.h"
#include "cli/Functions/simple/simple_oem_linfo.h"
#include "cli/Functions/simple/simple_oem_secuinfo.h"
#include "cli/Functions/simple/simple_oem_sed.h"
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::securityRows()
{
    static const Command_Info rows[] = {
        commandRow("linfo", doLINFO, simple_linfo_help, simple_linfo_sh),
        commandRow("sec_provide", doSED, simple_sed_help, simple_sed_sh),
        commandRow("ack", doAck, simple_ack_help, simple_ack_sh),
        commandRow("secuinfo", doSecuInfo, simple_secuinfo_help, simple_secuinfo_sh),
        commandRow("eeprom", doSEEPROM, simple_eeprom_help, simple_eeprom_sh),
        commandRow("hidetemp", doSHideTemperature, simple_hide_temperature_help, simple_hide_temperature_sh),
        commandRow("passthru_sata", doPassthru_sata, passthru_sata_help, passthru_sata_sh),
        commandRow("list_pd_allocated_ns", dolist_pd_allocated_ns, list_pd_allocated_ns_help, list_pd_allocated_ns_sh),
    };
    return rows;
}
