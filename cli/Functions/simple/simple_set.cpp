// `set`: reads the settings of the current controller, changes what is asked for, and writes them back whole.
#include "api/src/interface/globals.h"
#include "cli/Functions/simple/config_changes.h"
#include "cli/Functions/simple/simple_config.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/raid_only.h"

const char simple_set_help[] =
    "\n"
    "set -o hba [-a on | off] [-r < high|medium|low >][-h] \n"
    "\n"
    "Options:\n"
    "    -o, --object <hba>\n"
    "        Configure NVMe Controller.\n"
    "    -i, --id <NVMe Controller id>\n"
    "        NVMe Controller id.\n"
    "    -a, --autorebuild <on | off>\n"
    "    -r, --bgarate <high|medium|low>\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    set -o hba -a on\n"
    "    Enable autorebuild on NVMe Controller 0.\n"
    "\n"
    "    set -o hba -r high\n"
    "    Update BGA rate as high on NVMe Controller 0.\n";

namespace {

using qrx::complain;
using qrx::config::Changes;

// The short string has more than the help tells of: -n and -s show the help, -v is checked and dropped.
constexpr char kLetters[] = "a:o:r:n:v:s:\x01:h";
constexpr option kLong[] = {
    {"autorebuild", required_argument, nullptr, 'a'},
    {"object", required_argument, nullptr, 'o'},
    {"bgarate", required_argument, nullptr, 'r'},
    {"name", required_argument, nullptr, 'n'},
    {"vid", required_argument, nullptr, 'v'},
    {"secure", required_argument, nullptr, 's'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr qrx::Keyword kObjects[] = {{"hba", 0}};
constexpr QRX_U8 kSubWriteConfig = 2;

bool isVdId(const char* word)
{
    const auto number = qrx::readNumber(word);
    return number && static_cast<QRX_U16>(*number - qrx::idBase()) <= gNumAdaptersFound - 1;
}

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Changes& changes)
{
    switch (letter) {
    case 'a':
        return qrx::config::readAutoRebuild(word, changes);
    case 'r':
        return qrx::config::readRate(word, changes);
    case 'v':
        return isVdId(word) || complain("-v : invalid vd id '%s'\n", word);
    default:
        return qrx::keyword(word, kObjects) || complain("-o : invalid object '%s'\n", word);
    }
}

int write(const NVME_Adapter_Config& config)
{
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubWriteConfig)
                             .word(10, 0)
                             .word(14, config.AutoRebuildOn | static_cast<QRX_U32>(config.BGARate) << 8);
    command.debug();
    if (command.send() != 0) {
        return qrx::refuse(1, "\nFailed to configure hba %d\n", gCurrentAdapter);
    }
    return qrx::refuse(0, qrx::config::kUpdated);
}

}  // namespace

int doSSet(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Changes changes;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "aorv", 1,
                                             [&](int letter) { return read(letter, scan.word(), changes); })) {
        return *result;
    }
    if (scan.repeated("or")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('o')) {
        return qrx::optionRequired(pCmdInfo, 'o', 1);
    }
    if (qrx::refusedInJbof()) {
        return 1;
    }
    NVME_Adapter_Config config{};
    if (qrx::readConfig(gCurrentAdapter, config) != 0) {
        return qrx::refuse(1, "\nUnable to get configuration info of adapter %d\n", gCurrentAdapter);
    }
    return qrx::config::apply(changes, config) ? write(config) : 0;
}
