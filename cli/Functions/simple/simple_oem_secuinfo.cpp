// `secuinfo`.
#include "cli/Functions/simple/simple_oem_secuinfo.h"

#include <array>

#include "cli/Functions/simple/oem_security.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/utility.h"

const char simple_secuinfo_sh[] = ":For get and set security info";
const char simple_secuinfo_help[] =
    "\n"
    "secuinfo [--outputfile <outputfile>] [-a show] [-h]\n"
    "\n"
    "Options:\n"
    "    -a, --action <get|set>\n"
    "    -t, --type <adapter|pd>\n"
    "    -i, --devId <PD id>\n"
    "    -m, --secmode <enable|disable>\n"
    "        Secure mode of the adapter.\n"
    "    -c, --sechelpcomp <enable|disable>\n"
    "        Security help complete of the adapter.\n"
    "    -p, --helppro <enable|disable>\n"
    "        Security help provided of the PD.\n"
    "    -h, --help\n"
    "Examples:\n"
    "    secuinfo -a get\n"
    "    Get security info\n"
    "\n"
    "    secuinfo -a set -t adapter -m enable\n"
    "    Enable secure mode of the adapter\n"
    "\n"
    "    secuinfo -a set -t pd -i 1 -p enable\n"
    "    Set security help provided of PD 1\n"
    "\n";

namespace {

using qrx::complain;
using qrx::keyword;
using qrx::take;
using qrx::security::kSwitch;

constexpr char kLetters[] = "a:t:i:m:c:p:\x01:h";
constexpr option kLong[] = {
    {"action", required_argument, nullptr, 'a'},
    {"type", required_argument, nullptr, 't'},
    {"devId", required_argument, nullptr, 'i'},
    {"secmode", required_argument, nullptr, 'm'},
    {"sechelpcomp", required_argument, nullptr, 'c'},
    {"helppro", required_argument, nullptr, 'p'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Action : QRX_U8 { kGet, kSet };
constexpr qrx::Keyword kActions[] = {{"get", kGet}, {"set", kSet}};
constexpr unsigned kSelectorShift = 24;

struct Wish {
    Action action = kGet;
    qrx::security::Type type = qrx::security::kAdapter;
    QRX_U16 drive = 0;
    QRX_U32 mode = 0;
    QRX_U32 complete = 0;
    QRX_U32 provided = 0;
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'a':
        return take(keyword(word, kActions), wish.action) || complain("-a : invalid action '%s'.\n", word);
    case 't':
        return take(keyword(word, qrx::security::kTypes), wish.type) || complain("-t : invalid type '%s'.\n", word);
    case 'i':
        return qrx::security::readDrive(word, wish.drive, "-i : Device id should be a number\n");
    case 'm':
        return take(keyword(word, kSwitch), wish.mode) ||
               complain("-m : invalid control value for '%s' for secure mode.\n", word);
    case 'c':
        return take(keyword(word, kSwitch), wish.complete) ||
               complain("-c : invalid control value for '%s' for secure help complete.\n", word);
    default:
        return take(keyword(word, kSwitch), wish.provided) ||
               complain("-p : invalid control value for '%s' for help provide.\n", word);
    }
}

int get()
{
    const auto command = qrx::security::command(kSecurityInfo).word(10, qrx::kWholePage);
    command.debug();
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    const int status = command.receive(page);
    if (status == 0 && dbg_enable != 0) {
        _showRAWData(page.data(), static_cast<int>(page.size()));
    }
    return qrx::security::tell(status, "get security info");
}

int set(QRX_U32 subject, QRX_U32 flag)
{
    return qrx::security::set(qrx::security::command(kSecuritySet).word(13, subject).word(14, flag),
                              "set security info");
}

int setAdapter(const qrx::OptionScan& scan, const Wish& wish)
{
    if (scan.has('m') && scan.has('c')) {
        return qrx::refuse(1, "-m and -c cannot in the same time\n");
    }
    if (scan.has('m')) {
        return set(QRX_U32{kSelectSecureMode} << kSelectorShift, wish.mode);
    }
    return scan.has('c') ? set(QRX_U32{kSelectHelpComplete} << kSelectorShift, wish.complete)
                         : qrx::refuse(1, "The -m or -c must choose one.\n");
}

}  // namespace

int doSecuInfo(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "atimcp", 0,
                                             [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("atimcp")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('a')) {
        return qrx::optionRequired(pCmdInfo, 'a');
    }
    if (wish.action == kGet) {
        return get();
    }
    if (!scan.has('t')) {
        return qrx::optionRequired(pCmdInfo, 't');
    }
    if (wish.type == qrx::security::kAdapter) {
        return setAdapter(scan, wish);
    }
    if (const auto result = qrx::requireOptions(scan, pCmdInfo, "ip", 1)) {
        return *result;
    }
    return set(qrx::security::ofDrive(wish.drive), wish.provided);
}
