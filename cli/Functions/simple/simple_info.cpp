// `info`: its options, and what is shown for them.
#include "cli/Functions/simple/simple_info.h"

#include "api/src/interface/globals.h"
#include "cli/Functions/simple/info_options.h"
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
using qrx::info::BareWord;
using qrx::info::Wish;
using qrx::info::zeroBased;

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

int show(const OptionScan& scan, const Wish& wish)
{
    switch (wish.object) {
    case qrx::info::kHba:
        if (scan.has('i')) {
            return refuse(1, "\n'info -o hba' does not support '-i' action\n");
        }
        getAdapterInfoSA(gSpecificAdapterFlag == 1 ? gCurrentAdapter : QRX_U8{kAllInstances}, scan.has('a'));
        break;
    case qrx::info::kPd:
        getHDInfoSA(zeroBased(scan, wish.id));
        break;
    case qrx::info::kVd:
        getLDInfoSA(zeroBased(scan, wish.id));
        break;
    default:
        if (wish.type == qrx::info::kOfVd) {
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
    const auto result = qrx::info::readWish(scan, pCmdInfo, BareWord::kShowsHelp, wish);
    return result ? *result : show(scan, wish);
}
