// `dumphba`: the controller's stored settings, as bytes, in a file, or some of them in words.
#include "cli/Functions/simple/simple_dumphba.h"

#include "cli/Functions/simple/page_dump.h"
#include "cli/Public/frame/lines.h"
#include "cli/Public/frame/report.h"

const char simple_dumphba_help[] =
    "\n"
    "dumphba [--outputfile <outputfile>] [-a show] [-h]\n"
    "\n"
    "Options:\n"
    "    --outputfile <outputfile>\n"
    "         Output data into output file.\n"
    "    -a, --show\n"
    "        show parts value of HBA info readable.\n"
    "    -h, --help\n"
    "Examples:\n"
    "    dumphba \n"
    "    Output raw data\n"
    "\n"
    "    dumphba --outputfile=raw_data\n"
    "    Output raw data into file \"raw_data\"\n"
    "\n"
    "    dumphba -a show\n"
    "    Output parts value of HBA info.\n"
    "\n";

namespace {

constexpr QRX_U8 kSubReadHbaInfo = 0x0F;

const char* onOff(QRX_U8 value)
{
    return value != 0 ? "On" : "Off";
}

// What the command ends with when there is no file to write to: the length of what is said of it.
constexpr int kMissingFile = 19;

void show(std::span<const QRX_U8, qrx::wire::kPageSize> page)
{
    _showSpecificData(*qrx::wire::read<_hba_info>(page));
}

}  // namespace

void _showSpecificData(const _hba_info& info)
{
    const qrx::Lines lines(32);
    const _hba_info_adapter_page& adapter = info.adatper;
    const _gpio_settings& gpio = info.gpio.switch_setting;
    qrx::print("\n\n");
    lines.text("QXF Function:", onOff(adapter.flash_tools_enable));
    lines.text("SRIOV Function:", onOff(adapter.sriov_enable));
    lines.text("Debug message in SPI:", onOff(adapter.debug_dump));
    lines.text("MI-VPD buffer switch:", adapter.vpd_buf_switch != 0 ? "SPI" : "EEPROM");
    lines.text("Debug Level:", adapter.fw_log_level != 0 ? "Error only" : "Normal");
    lines.text("[GPIO Feature]", "");
    lines.hex("  Function Switch:", gpio.enable);
    lines.hex("  Level:", gpio.active_high_low);
    lines.hex("  Value:", gpio.default_value);
    lines.text("  Set Default:", onOff(gpio.set_default_from_hba_info));
    qrx::print("\n\n");
}

int doSDUMPHBA(int argc, char** argv, PCommand_Info pCmdInfo)
{
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubReadHbaInfo).word(10, qrx::kWholePage);
    return qrx::dumpPage(argc, argv, pCmdInfo, {command, show, kMissingFile});
}
