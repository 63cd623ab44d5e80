// `info`: its options, and what is shown for them.
#include "cli/Functions/simple/simple_info.h"

#include <array>

#include "api/src/interface/globals.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/report.h"

const char simple_info_help[] = R"(
info -o <hba|vd|pd|ns> [-i <id>] [-t <host | vd>[-v <vd_id>]] [--all] [-h]

Options:
    -o, --object <hba|vd|pd|ns>
        hba - NVMe Controller
        vd  - Virtual Disk
        pd  - Physical Disk
        ns  - Name Space
    -i, --id <VD id|PD id|NS id>
        Virtual disk id, Physcial disk id or Namespace id.
        If not specified, all instances of the HBA, VD, PD or NS will be retrieved.
    -t, --type <Host | VD>
        For ns info only.
        Host, namespace information which report for OS.
        VD, namespace information which can be list from specific VD ID.
        If not specified, default type is Host. CLI will list all namespace information which report for OS.
    -v, --vd_id <VD id>
        For ns info of VD only. This is for list all namespace information of specific VD ID.
        If not specified, all instances of the NS will be retrieved.
    --all, Display SUBNQN when get HBA info.
    -h, --help

Examples:
    info -o hba
    Information of NVMe controller.

    info -o vd -i 0
    Information of VD ID 0.

    info -o pd -i 0
    Information of PD ID 0.

    info -o ns
    Information of all namespace which NVMe controller report to OS.

    info -o ns -t vd -v 0
    Information of all namespace which VD ID 0 contains.

    info -o hba --all
    Information of NVMe controller include SUBNQN.

)";

namespace {

using qrx::OptionScan;
using qrx::refuse;
using qrx::take;

constexpr char kLetters[] = "o:i:t:v:u:\x01:h";
constexpr option kLong[] = {
    {"object", required_argument, nullptr, 'o'},
    {"id", required_argument, nullptr, 'i'},
    {"type", required_argument, nullptr, 't'},
    {"vdid", required_argument, nullptr, 'v'},
    {"all", no_argument, nullptr, 'a'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Object { kHba, kPd, kVd, kNs };
constexpr std::array<qrx::Keyword, 6> kObjects{
    {{"hba", kHba}, {"pd", kPd}, {"hd", kPd}, {"vd", kVd}, {"ld", kVd}, {"ns", kNs}}};
enum Type { kOfHost, kOfVd };
constexpr std::array<qrx::Keyword, 3> kTypes{{{"host", kOfHost}, {"vd", kOfVd}, {"ld", kOfVd}}};

struct Wish {
    int object = kHba;
    int id = kAllInstances;
    int type = kOfHost;
    int vd = kAllInstances;
};

// Stores the option's argument. 0, or the result of the complaint about it.
int read(int letter, OptionScan& scan, Wish& wish)
{
    switch (letter) {
    case 'o':
        return take(qrx::keyword(scan.word(), kObjects), wish.object)
                   ? 0
                   : refuse(1, "-o : invalid object '%s'\n", scan.word());
    case 'i':
        return take(qrx::readNumber(scan.word()), wish.id) ? 0 : refuse(1, "-i : id should be a number\n");
    case 't':
        return take(qrx::keyword(scan.word(), kTypes), wish.type) ? 0
                                                                  : refuse(1, "-t : invalid type '%s'\n", scan.word());
    case 'v':
        return take(qrx::readNumber(scan.word()), wish.vd) ? 0 : refuse(1, "-v : VD id should be a number\n");
    default:
        return 0;
    }
}

// The 16-bit id to ask for. In one-based mode a typed 0 is told about, and asked for all the same.
QRX_U16 zeroBased(const OptionScan& scan, int id)
{
    if (scan.has('i')) {
        id -= qrx::idBase();
        if (id < 0) {
            qrx::print("-i : id should be a number\n");
        }
    }
    return static_cast<QRX_U16>(id);
}

int show(const OptionScan& scan, const Wish& wish)
{
    switch (wish.object) {
    case kHba:
        if (scan.has('i')) {
            return refuse(1, "\n'info -o hba' does not support '-i' action\n");
        }
        getAdapterInfoSA(gSpecificAdapterFlag == 1 ? gCurrentAdapter : QRX_U8{kAllInstances}, scan.has('a'));
        break;
    case kPd:
        getHDInfoSA(zeroBased(scan, wish.id));
        break;
    case kVd:
        getLDInfoSA(zeroBased(scan, wish.id));
        break;
    default:
        if (wish.type == kOfVd) {
            getNSInfoOfVDSA(static_cast<QRX_U16>(wish.id), static_cast<QRX_U16>(wish.vd));
        } else {
            getNSInfoSA(static_cast<QRX_U16>(wish.id), false);
        }
        break;
    }
    return 0;
}

}  // namespace

int doSInfo(int argc, char** argv, PCommand_Info pCmdInfo)
{
    OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    int failed = 0;  // the first bad option ends the scan, not yet the command
    for (int letter; failed == 0 && (letter = scan.next()) != OptionScan::kEnd;) {
        switch (letter) {
        case 'o':
        case 'i':
        case 't':
        case 'v':
        case 'a':
            failed = read(letter, scan, wish);
            break;
        case OptionScan::kError:
            failed = 1;
            break;
        default:
            return qrx::showHelp(pCmdInfo, 0);
        }
    }

    if (argc == 1) {
        return qrx::showHelp(pCmdInfo, argc);
    }
    if (scan.repeated("oitva")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('o')) {
        return qrx::optionRequired(pCmdInfo, 'o', 1);
    }
    return failed != 0 ? failed : show(scan, wish);
}
