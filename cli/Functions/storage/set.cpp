// The earlier `set`: it changes the settings of the current controller, or the name of a virtual disk.
#include <cstdio>

#include "api/src/interface/adapter.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/vd.h"
#include "cli/Functions/simple/config_changes.h"
#include "cli/Functions/storage/config.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/name.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/raid_only.h"
#include "cli/Public/frame/read_one.h"

const char set_help[] = R"(
set -o <hba|vd> [-i <VD id>] [-n <name>] [-a <on|off>] [-r <high|medium|low>] [-h]

Options:
    -o, --object <hba|vd>
        hba - NVMe Controller
        vd  - Virtual Disk
    -i, --id <VD id>
        Virtual disk id, for vd only.
    -n, --name <name>
        Name of the VD, for vd only.
        No more than 16 digits, letters, blanks or underlines.
    -a, --autorebuild <on|off>
        For hba only.
    -r, --bgarate <high|medium|low>
        For hba only.
    -h, --help

Examples:
    set -o hba -a on
    Enable autorebuild on NVMe Controller.

    set -o hba -r high
    Update BGA rate as high on NVMe Controller.

    set -o vd -i 0 -n DATA
    Name VD ID 0 as DATA.

)";

const char set_sh[] = ":For setting configuration parameters of NVMe Controller or virtual disk.";

namespace {

using qrx::complain;
using qrx::refuse;
using qrx::take;

constexpr char kLetters[] = "a:c:o:i:n:r:\x01:h";  // -c shows the help
constexpr option kLong[] = {
    {"autorebuild", required_argument, nullptr, 'a'},
    {"object", required_argument, nullptr, 'o'},
    {"id", required_argument, nullptr, 'i'},
    {"name", required_argument, nullptr, 'n'},
    {"bgarate", required_argument, nullptr, 'r'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Object { kNothing, kHba, kVd };
constexpr qrx::Keyword kObjects[] = {{"hba", kHba}, {"vd", kVd}, {"ld", kVd}};
constexpr QRX_U16 kNoVd = 255;

// What a bad option comes to in the option pass; the handler has a last word about it.
constexpr int kBadOption = -1;

struct Wish {
    int object = kNothing;
    QRX_U16 id = kNoVd;
    std::string name;
    qrx::config::Changes changes;
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'a':
        return qrx::config::readAutoRebuild(word, wish.changes);
    case 'r':
        return qrx::config::readRate(word, wish.changes);
    case 'n':
        return take(qrx::readName(word), wish.name);
    case 'i':
        return take(qrx::readId(word), wish.id) || complain("-i : invalid id '%s'\n", word);
    default:
        return take(qrx::keyword(word, kObjects), wish.object) || complain("-o : invalid object '%s'\n", word);
    }
}

int setController(const qrx::OptionScan& scan, const Wish& wish)
{
    if (scan.has('n')) {
        return refuse(1, "Invalid setting(s) for HBA\n");
    }
    if (scan.has('i')) {
        return refuse(1, "'-o hba' does not support '-i' action\n");
    }
    NVME_Adapter_Config config{};
    if (QRX_Adapter_GetConfig(gCurrentAdapter, &config) != 0) {
        return refuse(1, "\nUnable to get configuration info\n");
    }
    if (!qrx::config::apply(wish.changes, config)) {
        return 0;
    }
    if (QRX_Adapter_SetConfig(gCurrentAdapter, &config) != 0) {
        return refuse(1, "\nFailed to configure hba\n");
    }
    return refuse(0, qrx::config::kUpdated);
}

int setVd(const qrx::OptionScan& scan, const Wish& wish)
{
    if (scan.has('a') || scan.has('r')) {
        return refuse(1, "Invalid setting(s) for VD\n");
    }
    const int shown = wish.id + qrx::idBase();
    if (wish.id == kNoVd) {
        return refuse(1, "Invalid virtual disk id :%d.\n", shown);
    }
    NVME_VD_Config_Request request{};
    if (qrx::readOne(QRX_VD_GetConfig, wish.id, request) != 0) {
        return refuse(1, "\nUnable to get configuration info of VD %d\n", shown);
    }
    request.header = qrx::oneOf(wish.id);  // whatever header came back: one record is written
    if (scan.has('n')) {
        qrx::storeName(wish.name, request.vd_config.Name);
    }
    if (const QRX_U32 status = QRX_VD_SetConfig(gCurrentAdapter, &request)) {
        return refuse(static_cast<int>(status), "\nFailed to configure VD %d\n", shown);
    }
    return refuse(0, "VD configuration is updated.\n");
}

}  // namespace

int doSet(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "oiarn", kBadOption,
                                             [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result == kBadOption ? std::puts("error!") : *result;
    }
    if (scan.repeated("oinr")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('i') && wish.object != kHba) {
        return qrx::optionRequired(pCmdInfo, 'i', 1);
    }
    if (!scan.has('o')) {
        return qrx::optionRequired(pCmdInfo, 'o', 1);
    }
    if (!qrx::checkName(wish.name)) {
        return 1;
    }
    if (qrx::refusedInJbof()) {
        return qrx::kJbofResult;
    }
    return wish.object == kHba ? setController(scan, wish) : setVd(scan, wish);
}
