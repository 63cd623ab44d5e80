// `dumphba`: the controller's stored settings, as bytes, in a file, or some of them in words.
#include "cli/Functions/simple/simple_dumphba.h"

#include <array>

#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/lines.h"
#include "cli/Public/frame/output_file.h"
#include "cli/Public/utility.h"

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

constexpr char kOutputFile = '1';

constexpr char kLetters[] = "1:a:\x01:h";
constexpr option kLong[] = {
    {"outputfile", required_argument, nullptr, kOutputFile},
    {"action", required_argument, nullptr, 'a'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr qrx::Keyword kActions[] = {{"show", 0}};
constexpr QRX_U8 kSubReadHbaInfo = 0x0F;
constexpr QRX_U32 kWholePage = 1023;  // CDW10: dwords less 1

const char* onOff(QRX_U8 value)
{
    return value != 0 ? "On" : "Off";
}

// What the command ends with when there is no file to write to: the length of what is said of it.
int refuseFile()
{
    constexpr char kMissing[] = "File is not exist.\n";
    return qrx::refuse(sizeof(kMissing) - 1, kMissing);
}

// Shows the page, or fills the file with it. False when the file is not whole.
bool deliver(std::span<const QRX_U8, qrx::wire::kPageSize> page, qrx::OutputFile& output, bool readable)
{
    if (output.isNamed()) {
        return output.write(page) && output.close();
    }
    if (readable) {
        _showSpecificData(*qrx::wire::read<_hba_info>(page));
    } else {
        _showRAWData(page.data(), static_cast<int>(page.size()));
    }
    return true;
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
    qrx::OutputFile output;
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    if (const auto result = qrx::passOptions(scan, pCmdInfo, "1a", 0, [&](int letter) {
            if (letter == kOutputFile) {
                (void)output.open(scan.word());  // a failure is told when all options are good
                return true;
            }
            return qrx::keyword(scan.word(), kActions) || qrx::complain("-a : invalid action '%s'.\n", scan.word());
        })) {
        return *result;
    }
    if (scan.repeated("a")) {
        return qrx::duplicateOption();
    }
    if (output.isNamed() && !output.isOpen()) {
        return refuseFile();
    }
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubReadHbaInfo).word(10, kWholePage);
    command.debug();
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    if (const int status = command.receive(page)) {
        return qrx::refuse(status, "\nUnable to dump NVMe Controller info from NVMe Controller %d\n", gCurrentAdapter);
    }
    if (!deliver(page, output, scan.has('a'))) {
        return output.refuse(pCmdInfo);
    }
    qrx::print("cmd success\n");
    return 0;
}
