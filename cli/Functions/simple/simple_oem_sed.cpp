// `sec_provide`.
#include "cli/Functions/simple/simple_oem_sed.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>

#include "cli/Functions/simple/oem_security.h"
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

// A bitmap of drives has all 32 bits. One that is cut or read by half would name other drives, so it is none.
std::optional<QRX_U32> readBitmap(const char* text)
{
    const bool hexadecimal = std::strstr(text, "0x") != nullptr;
    if (!hexadecimal && !isNumber(text)) {
        return std::nullopt;
    }
    char* end = nullptr;
    const unsigned long long value = std::strtoull(text, &end, hexadecimal ? 16 : 10);
    const bool whole = *end == '\0' && *text != '-';
    return whole && value <= std::numeric_limits<QRX_U32>::max() ? std::optional(static_cast<QRX_U32>(value))
                                                                 : std::nullopt;
}

}  // namespace

int doSED(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    QRX_U32 drives = 0;
    if (const auto result = qrx::readOneOption(scan, pCmdInfo, 'i', [&] {
            return qrx::take(readBitmap(scan.word()), drives) ||
                   qrx::complain("-i : invalid PD ID map '%s'\n", scan.word());
        })) {
        return *result;
    }
    return qrx::carryOut(qrx::security::command(kSecurityPresence).word(14, drives), "Security Help Provided failed.\n",
                         "Security Help Provided success.");
}
