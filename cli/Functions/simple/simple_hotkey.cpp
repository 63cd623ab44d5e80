// `hotkey`: its options, and the words it knows.
#include "cli/Functions/simple/simple_hotkey.h"

#include <cctype>

#include "cli/Public/frame/handler.h"

const char simple_hotkey_help[] =
    "\n"
    "hotkey -k <hotkey combination> [-h]\n"
    "\n"
    "Options:\n"
    "    -k <hotkey combination>.\n"
    "    \n"
    "    -h,  --help\n"
    "\n"
    "Examples:\n"
    "    hotkey -k 01ag\n"
    "    create RAID0 with 1 free drive and stripe block size is 128KB\n"
    "\n"
    "    hotkey -k 12bg\n"
    "    create RAID1 with 2 free drive and stripe block size is 256KB\n"
    "\n"
    "    hotkey -k 14cg\n"
    "    create RAID10 with 4 free drive and stripe block size is 512KB\n"
    "\n"
    "    hotkey -k 04g\n"
    "    create RAID0 with 4 free drive and stripe block size is using default 128KB\n"
    "\n"
    "    hotkey -k w\n"
    "    List all available RC and EP\n"
    "\n"
    "    hotkey -k s\n"
    "    Erase PD ID 0\n"
    "\n"
    "    hotkey -k t\n"
    "    Erase PD ID 1\n"
    "\n"
    "    hotkey -k u\n"
    "    Erase PD ID 2\n"
    "\n"
    "    hotkey -k v\n"
    "    Erase PD ID 3\n"
    "\n"
    "\n";

namespace {

constexpr char kWaive = 'y';  // long only

constexpr char kLetters[] = "k:\x01:h";
constexpr option kLong[] = {
    {"waiveconfirmation", no_argument, nullptr, kWaive},
    {"hotkey", required_argument, nullptr, 'k'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

bool isDigit(char c)
{
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// RAID level, number of disks, and stripe code where it is not the first; each stands for itself, and then a "g".
bool parseCreate(const char* word)
{
    const bool named = (word[0] == '0' || word[0] == '1') && isDigit(word[1]);
    const bool striped = named && word[2] >= 'a' && word[2] <= 'c';
    if (!named || word[striped ? 3 : 2] != 'g') {
        return false;
    }
    (void)hotkey_createVD(static_cast<QRX_U8>(word[0] - '0'), static_cast<QRX_U8>(word[1] - '0'),
                          static_cast<QRX_U8>(striped ? word[2] - 'a' : 0));
    return true;
}

}  // namespace

bool parseHotkey(const char* word, int /*length*/, bool waiveconfirmation)
{
    switch (word[0]) {
    case 'D':
        (void)hotkey_deleteVD();
        return true;
    case 's':
    case 't':
    case 'u':
    case 'v':
        (void)hotkey_erasePD(static_cast<QRX_U16>(word[0] - 's'), waiveconfirmation);
        return true;
    case 'w':
        (void)hotkey_read_RC_EP();
        return true;
    default:
        return parseCreate(word);
    }
}

int doHotkey(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "ky", 1, [&](int letter) {
            return letter == kWaive ||
                   parseHotkey(scan.word(), static_cast<int>(std::char_traits<char>::length(scan.word())),
                               scan.has(kWaive)) ||
                   qrx::complain("-k : invalid type '%s'\n", scan.word());
        })) {
        return *result;
    }
    if (scan.repeated("k")) {
        return qrx::duplicateOption();
    }
    return scan.has('k') ? 0 : qrx::optionRequired(pCmdInfo, 'k', 1);
}
