// `vpd`.
#include "cli/Functions/simple/simple_vpd.h"

#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"

const char simple_vpd_help[] = R"(
vpd <-t eeprom|spi > [-h]

Options:
    -t,  --target set access EEPROM or SPI.
           eeprom, set access target to EEPROM
           spi, set access target to SPI
    -h,  --help
Examples:
    vpd -t eeprom
    Set access target to EEPROM

    vpd -t spi
    Set access target to SPI

)";

namespace {

constexpr char kLetters[] = "t:\x01:h";
constexpr option kLong[] = {
    {"target", required_argument, nullptr, 't'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Target { kEeprom, kSpi };
constexpr qrx::Keyword kTargets[] = {{"eeprom", kEeprom}, {"spi", kSpi}};
constexpr QRX_U8 kSubVpdTarget = 0x10;

}  // namespace

int doSVPD(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    QRX_U32 target = kEeprom;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "t", 0, [&](int) {
            const auto named = qrx::keyword(scan.word(), kTargets);
            if (named == kSpi) {  // of several, one that names SPI decides
                target = kSpi;
            }
            return named || qrx::complain("-t : invalid target '%s'.\n", scan.word());
        })) {
        return *result;
    }
    if (!scan.has('t')) {
        return qrx::optionRequired(pCmdInfo, 't');
    }
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubVpdTarget).word(14, target);
    return target == kSpi ? qrx::carryOut(command, "VPD access to SPI failed.\n", "VPD access to SPI success.\n")
                          : qrx::carryOut(command, "VPD access to EEPROM failed.\n", "VPD access to EEPROM success.\n");
}
