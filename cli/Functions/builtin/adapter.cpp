// `adapter`.
#include "cli/Functions/builtin/adapter.h"

#include <array>
#include <cstring>

#include "api/src/interface/api.h"
#include "api/src/interface/globals.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/report.h"

const char adapter_help[] =
    "\n"
    "adapter [-i <NVMe Controller ID> | -s <bus slot> | -n <SUBNQN> | --list]\n"
    "\n"
    "Options:\n"
    "    -i, --id <NVMe Controller ID>\n"
    "        ID of the NVMe Controller to be selected. \n"
    "        If -i is not specified, display current NVMe Controller ID\n"
    "    -s, --slot <bus slot>\n"
    "        The value format is \"bus:slot.func\"(In some OS, slot means device)\n"
    "    -n, --SUBNQN <SUBNQN>\n"
    "        For example \"nqn.2014-08.org.nvmexpress:7a513317-QRX0000000000000001\"\n"
    "    --list \n"
    "        Show current NVMe Controller ID and total NVMe Controllers.\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    adapter --list\n"
    "    Show current NVMe Controller ID and total NVMe Controllers.\n"
    "\n"
    "    adapter -i 0\n"
    "    Select the NVMe Controller ID 0.\n"
    "\n"
    "    adapter -s 03:00.00\n"
    "    Select the NVMe Controller at bus 03, slot 00, function 00.\n"
    "\n"
    "    adapter -n \"nqn.2014-08.org.nvmexpress:7a513317-QRX0000000000000001\"\n"
    "    Select the NVMe Controller which has this SUBNQN.\n"
    "\n";

namespace {

using qrx::OptionScan;

// The short `-l` takes an argument, which is dropped; the long form takes none.
constexpr char kLetters[] = "i:s:l:n:\x01:h";
constexpr option kLong[] = {
    {"id", required_argument, nullptr, 'i'},
    {"slot", required_argument, nullptr, 's'},
    {"SUBNQN", required_argument, nullptr, 'n'},
    {"list", no_argument, nullptr, 'l'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};
constexpr std::size_t kSlotMax = 12;     // characters
constexpr std::size_t kSubnqnMax = 255;  // characters

int deviceNumber(int index)
{
    int number = index;
    GetAdapterIdFromDeviceName(index, &number);
    return number;
}

void select(int index)
{
    gCurrentAdapter = static_cast<QRX_U8>(index);
    qrx::print("Updated current NVMe Controller id : %d\n", deviceNumber(index));
}

}  // namespace

int doAdapter(int argc, char** argv, PCommand_Info pCmdInfo)
{
    OptionScan scan(argc, argv, kLetters, kLong);
    int adapterId = gCurrentAdapter;
    std::array<char, 32> slot{};
    std::array<char, 256> subnqn{};

    for (int letter; (letter = scan.next()) != OptionScan::kEnd;) {
        switch (letter) {
        case 'i': {
            const auto id = qrx::readNumber(scan.word());
            if (!id) {
                return qrx::refuse(1, "-i : invalid NVMe Controller id '%s'\n", scan.word());
            }
            int number = *id;
            if (!SetAdapterIdFromDeviceName(&number, &adapterId)) {
                return qrx::refuse(1, "NVMe Controller %d does not exist.\n", *id);
            }
            break;
        }
        case 's':
            qrx::noQuoteCopy(slot, scan.word());
            if (std::strlen(scan.word()) > kSlotMax) {
                return qrx::refuse(1, "-s : length of slot should be no more than %d characters\n",
                                   static_cast<int>(kSlotMax));
            }
            break;
        case 'n':
            qrx::noQuoteCopy(subnqn, scan.word());
            if (std::strlen(scan.word()) > kSubnqnMax) {
                return qrx::refuse(1, "-n : length of subnqn should be no more than %d characters\n",
                                   static_cast<int>(kSubnqnMax));
            }
            if (!SetAdapterIdFromSUBNQN(subnqn.data(), &adapterId)) {
                return qrx::refuse(1, "SUBNQN \"%s\" does not exist.\n", subnqn.data());
            }
            break;
        case 'l':
            break;
        case OptionScan::kError:
            return 1;
        default:
            return qrx::showHelp(pCmdInfo, 0);
        }
    }

    if (argc == 1) {
        return qrx::showHelp(pCmdInfo, argc);
    }
    if (scan.repeated("isln")) {
        return qrx::duplicateOption();
    }
    if (scan.has('l')) {
        gNumAdaptersFound = static_cast<QRX_U8>(QRX_Adapter_GetCount());
        qrx::print("Total number of NVMe Controllers: %d\n", gNumAdaptersFound);
        qrx::print("Current default NVMe Controller ID for CLI commands: %d\n", deviceNumber(adapterId));
        return 0;
    }
    if (scan.has('i') && scan.has('s')) {
        return qrx::refuse(1, "argument '-s' not allow use in the same time.\n");
    }
    if (scan.has('s')) {
        if (!findAdapterId(slot.data(), &adapterId)) {
            return qrx::refuse(0, "%s is not NVMe Controller\n", slot.data());
        }
        select(adapterId);
    } else if (scan.has('n') || scan.has('i')) {
        select(adapterId);
    }
    return 0;
}
