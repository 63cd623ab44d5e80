// `sec_provide`.
#include "cli/Functions/simple/simple_oem_sed.h"

#include "cli/Functions/simple/oem_security.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/one_option.h"

const char simple_sed_sh[] = ":For set security help provided of PDs";
const char simple_sed_help[] =
    "\n"
    "sec_provide -i <PD ID hexmap> [-h]\n"
    "\n"
    "Options:\n"
    "    -i, --pdid <PD ID hexmap>\n"
    "        One bit for each PD, that of PD 0 is the lowest.\n"
    "        Accept value by decimal or hexadecimal.\n"
    "    -h, --help\n"
    "Examples:\n"
    "    sec_provide -i 0x3\n"
    "    Set security help provided of PD 0 and PD 1\n"
    "\n";

namespace {

constexpr char kLetters[] = "i:\x01:h";
constexpr option kLong[] = {
    {"pdid", required_argument, nullptr, 'i'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr unsigned kDrives = 32;  // in a bitmap

}  // namespace

int doSED(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    QRX_U32 drives = 0;
    if (const auto result = qrx::readOneOption(scan, pCmdInfo, 'i', [&] {
            return qrx::take(qrx::readExact(scan.word(), kDrives), drives) ||
                   qrx::complain("-i : invalid PD ID map '%s'\n", scan.word());
        })) {
        return *result;
    }
    return qrx::carryOut(qrx::security::command(kSecurityPresence).word(14, drives), "Security Help Provided failed.\n",
                         "Security Help Provided success.");
}
