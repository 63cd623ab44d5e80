// The earlier `info`: its options, and what is shown for them.
#include "cli/Functions/storage/info.h"

#include "api/src/interface/globals.h"
#include "cli/Functions/simple/info_options.h"
#include "cli/Public/frame/report.h"

const char info_help[] = R"(
info -o <hba|vd|pd|ns> [-i <id>] [-t <host | vd> -v <VD id>] [-a <all>] [-h]

Options:
    -o, --object <hba|vd|pd|ns>
        hba - NVMe Controller
        vd  - Virtual Disk
        pd  - Physical Disk
        ns  - Name Space
    -i, --id <NVMe Controller id|VD id|PD id|NS id>
        NVMe Controller id, virtual disk id, physical disk id or namespace id.
        If not specified, all instances of the HBA, VD, PD or NS will be retrieved.
    -t, --type=<host | vd>
        For ns info only.
        host, namespace information which report for OS.
        vd, namespace information which can be list from specific VD ID.
        If not specified, default type is host.
    -v, --vdid=<VD id>
        For ns info of VD only. 255 is for all VDs.
    -a, --all <all>
        Display SUBNQN when get HBA info.
    -h, --help

Examples:
    info -o hba
    Information of all NVMe controllers.

    info -o hba -i 1
    Information of NVMe controller 1.

    info -o vd -i 0
    Information of VD ID 0.

    info -o ns -t vd -v 0
    Information of all namespace which VD ID 0 contains.

)";

const char info_sh[] =
    ":For display NVMe Controller(hba), virtual disk(vd), physical disk(pd) or Namespace(ns) information.";

namespace {

constexpr char kLetters[] = "o:i:t:v:a:\x01:h";
constexpr option kLong[] = {
    {"object", required_argument, nullptr, 'o'},
    {"id", required_argument, nullptr, 'i'},
    {"type", optional_argument, nullptr, 't'},  // as --type=<value> alone
    {"vdid", optional_argument, nullptr, 'v'},
    {"all", required_argument, nullptr, 'a'},  // of any value
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

QRX_U16 adapterOf(const qrx::OptionScan& scan, QRX_U16 id)
{
    return !scan.has('i') && gSpecificAdapterFlag == 1 ? gCurrentAdapter : id;
}

}  // namespace

int doInfo(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    qrx::info::Wish wish;
    if (const auto result = qrx::info::readWish(scan, pCmdInfo, qrx::info::BareWord::kIsIncomplete, wish)) {
        return *result;
    }
    const bool ofVd = wish.object == qrx::info::kNs && wish.type == qrx::info::kOfVd;
    if (ofVd && !scan.has('v')) {
        return qrx::optionRequired(pCmdInfo, 'v', 1);
    }
    const QRX_U16 id = qrx::info::zeroBased(scan, wish.id);
    switch (wish.object) {
    case qrx::info::kHba:
        getAdapterInfo(adapterOf(scan, id), scan.has('a'));
        break;
    case qrx::info::kPd:
        getHDInfo(id);
        break;
    case qrx::info::kVd:
        getLDInfo(id);
        break;
    default:
        if (ofVd) {
            getNSInfoOfVD(id, static_cast<QRX_U16>(wish.vd));
        } else {
            getNSInfo(id);
        }
        break;
    }
    return 0;
}
